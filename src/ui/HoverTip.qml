import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// A small text beside the pointer's control, after a moment of rest.
T.ToolTip {
    id: tip

    required property bool shown

    visible: shown
    delay: 600
    x: Math.round((parent.width - width) / 2)
    y: parent.height + 6
    margins: 6
    padding: 6
    leftPadding: 8
    rightPadding: 8
    implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    closePolicy: T.Popup.NoAutoClose

    contentItem: TextLabel {
        text: tip.text
        size: 11
    }
    background: Rectangle {
        radius: Theme.smallRadius
        color: AppPalette.raisedSurface
        border.color: AppPalette.at(AppPalette.white, 0.12)
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.hover }
    }
}
