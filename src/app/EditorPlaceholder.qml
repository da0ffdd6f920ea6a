import QtQuick
import Tavi.Ui

/// What opening a take shows while this version has no editor: the take, the
/// way back and what can be done with it.
FocusScope {
    id: view

    required property QtObject appViewModel
    /// The take's folder as a word of a shell.
    readonly property string folder: "'" + appViewModel.editingPath.replace(/'/g, "'\\''") + "'"

    Rectangle {
        anchors.fill: parent
        color: AppPalette.background
    }
    HeaderBar {
        id: header
        width: parent.width

        BackButton {
            anchors.verticalCenter: parent.verticalCenter
            anchors.left: parent.left
            anchors.leftMargin: -8
            focus: true
            text: qsTr("Library")
            onClicked: view.appViewModel.leaveEditor()
        }
        TextLabel {
            anchors.centerIn: parent
            width: Math.min(implicitWidth, parent.width - 240)
            text: view.appViewModel.editingName
            weight: Font.DemiBold
            userText: true
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        IconButton {
            anchors.right: parent.right
            anchors.rightMargin: -6 // the symbol, not its box, stands at the margin
            anchors.verticalCenter: parent.verticalCenter
            symbol: "gearshape"
            hint: qsTr("Settings")
            onClicked: view.appViewModel.showSettings = true
        }
    }
    Column {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: header.height / 2
        width: Math.min(640, parent.width - 2 * Theme.margin)
        spacing: 12

        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            name: "film"
            size: 36
            color: AppPalette.at(AppPalette.secondaryText, 0.5)
        }
        TextLabel {
            width: parent.width
            text: qsTr("This recording is saved.")
            size: 15
            weight: Font.Medium
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        TextLabel {
            width: Math.min(parent.width, 420)
            anchors.horizontalCenter: parent.horizontalCenter
            text: qsTr("This version has no editor yet. Zoom and export the recording in a terminal:")
            lineHeight: 17
            lineHeightMode: Text.FixedHeight
            color: AppPalette.secondaryText
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
        }
        Rectangle {
            width: parent.width
            height: commands.implicitHeight + 24
            radius: Theme.radius
            color: AppPalette.surface
            border.color: AppPalette.border

            TextEdit {
                id: commands
                x: 14
                y: 12
                width: parent.width - 28
                readOnly: true
                selectByMouse: true
                activeFocusOnTab: true
                wrapMode: TextEdit.Wrap
                color: AppPalette.primaryText
                selectionColor: AppPalette.at(AppPalette.accent, 0.4)
                font.family: Theme.tabularFamily
                font.pixelSize: 12
                text: "tavi zoom " + view.folder + "\ntavi export " + view.folder + " -o film.mp4"
                Accessible.role: Accessible.EditableText
                Accessible.name: qsTr("Commands")
                Accessible.readOnly: true
            }
            FocusRing {
                shown: commands.activeFocus
                cornerRadius: Theme.radius
            }
        }
        Item {
            width: 1
            height: 4
        }
        PlainButton {
            anchors.horizontalCenter: parent.horizontalCenter
            symbol: "folder"
            text: qsTr("Show in Finder")
            onClicked: view.appViewModel.reveal(view.appViewModel.editingPath)
        }
    }
}
