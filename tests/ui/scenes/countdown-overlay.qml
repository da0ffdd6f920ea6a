import QtQuick
import "../fakes"

import Tavi.Capture
import Tavi.Ui

Item {
    implicitWidth: 960
    implicitHeight: 640

    Picture {
        anchors.fill: parent
        source: testPictures.screen(1)
    }
    CountdownOverlayView {
        anchors.fill: parent
        value: 3
    }
}
