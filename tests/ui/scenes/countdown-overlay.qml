import QtQuick
import "../fakes"

import Tavi.Capture

Item {
    implicitWidth: 960
    implicitHeight: 640

    Image {
        anchors.fill: parent
        fillMode: Image.PreserveAspectCrop
        source: testPictures.screenUrl
    }
    CountdownOverlayView {
        anchors.fill: parent
        value: 3
    }
}
