import QtQuick
import Tavi.Ui

/// What stands where a keyframe's controls would.
Column {
    spacing: 8
    topPadding: 24
    bottomPadding: 24
    opacity: 0.6

    Icon {
        anchors.horizontalCenter: parent.horizontalCenter
        name: "diamond"
        size: 24
        color: AppPalette.secondaryText
    }
    TextLabel {
        anchors.horizontalCenter: parent.horizontalCenter
        text: qsTr("No Keyframe Selected")
        size: 11
        weight: Font.Medium
    }
    TextLabel {
        anchors.horizontalCenter: parent.horizontalCenter
        text: qsTr("Click a keyframe on the timeline\nor add a new one")
        size: 11
        color: AppPalette.secondaryText
        horizontalAlignment: Text.AlignHCenter
    }
}
