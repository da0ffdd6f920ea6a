import QtQuick
import "../fakes"

AppScene {}
