import QtQuick
import Tavi.Ui

/// The ground of what floats over a screen: raised, outlined, with a shadow.
Item {
    property real cornerRadius: Theme.largeRadius
    property color tone: AppPalette.raisedSurface

    Shadow {
        anchors.fill: parent
        radius: 16
        offsetY: 6
        cornerRadius: parent.cornerRadius
        color: AppPalette.at(AppPalette.black, 0.5)
    }
    Rectangle {
        anchors.fill: parent
        radius: parent.cornerRadius
        color: parent.tone
        border.color: AppPalette.at(AppPalette.white, 0.1)
    }
}
