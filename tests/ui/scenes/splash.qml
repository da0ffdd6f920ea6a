import QtQuick
import "../fakes"

import Tavi.App

SplashView {
    implicitWidth: 960
    implicitHeight: 640
}
