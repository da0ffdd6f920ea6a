import QtQuick
import Tavi.Ui

/// A command for a terminal: to be selected, or copied whole.
Item {
    id: box

    required property string command
    /// At most this wide; the box is as wide as its command where there is room.
    property real room: 600
    /// The command lies on the clipboard, and was put there just now.
    readonly property bool isCopied: copied.running

    implicitWidth: Math.min(room, measure.width + 24 + copy.width + 6)
    implicitHeight: Math.max(text.implicitHeight + 12, copy.height + 4)

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius
        color: AppPalette.at(AppPalette.white, 0.04)
        border.color: AppPalette.border
    }
    TextMetrics {
        id: measure
        font: text.font
        text: box.command
    }
    TextEdit {
        id: text
        anchors.verticalCenter: parent.verticalCenter
        x: 12
        width: copy.x - x - 6
        text: box.command
        readOnly: true
        selectByMouse: true
        activeFocusOnPress: false
        wrapMode: TextEdit.Wrap
        textFormat: TextEdit.PlainText
        color: AppPalette.primaryText
        selectionColor: AppPalette.at(AppPalette.accent, 0.4)
        font.family: "monospace"
        font.pixelSize: 11
        Accessible.role: Accessible.StaticText
        Accessible.name: box.command
    }
    PlainButton {
        id: copy
        anchors.right: parent.right
        anchors.rightMargin: 2
        anchors.verticalCenter: parent.verticalCenter
        outlined: false
        textSize: 11
        text: box.isCopied ? qsTr("Copied") : qsTr("Copy")
        onClicked: {
            text.selectAll()
            text.copy()
            text.deselect()
            copied.restart()
        }
    }
    Timer {
        id: copied
        interval: 1500
    }
}
