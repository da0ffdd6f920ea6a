import QtQuick
import QtQuick.Layouts
import Tavi.Ui

/// The panel with the place and size of the library and the program's version.
FocusScope {
    id: view

    required property QtObject settingsViewModel
    signal closed

    implicitWidth: 420
    implicitHeight: 380
    Accessible.role: Accessible.Dialog
    Accessible.name: qsTr("Settings")

    component Row: RowLayout {
        id: row

        required property string label
        required property string value

        Layout.fillWidth: true
        Layout.preferredHeight: 28
        spacing: 16
        Accessible.role: Accessible.StaticText
        Accessible.name: row.label + " " + row.value

        TextLabel {
            text: row.label
            size: 11
            color: AppPalette.secondaryText
            Accessible.ignored: true
        }
        TextLabel {
            Layout.fillWidth: true
            text: row.value
            size: 11
            tabular: true
            userText: true
            horizontalAlignment: Text.AlignRight
            Accessible.ignored: true
        }
    }

    Item {
        id: header
        width: parent.width
        height: Theme.headerHeight

        TextLabel {
            anchors.verticalCenter: parent.verticalCenter
            x: Theme.margin
            text: qsTr("Settings")
            weight: Font.DemiBold
            Accessible.ignored: true
        }
        IconButton {
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            anchors.rightMargin: Theme.margin - 6
            focus: true
            boxWidth: 24
            symbol: "xmark"
            symbolSize: 11
            hint: qsTr("Close")
            onClicked: view.closed()
        }
    }
    Rule {
        anchors.top: header.bottom
        width: parent.width
    }

    ColumnLayout {
        anchors.top: header.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.margins: Theme.margin
        spacing: 4

        SectionTitle { text: qsTr("STORAGE") }
        ButtonBase {
            id: location
            Layout.fillWidth: true
            Layout.leftMargin: -8
            Layout.rightMargin: -8
            implicitHeight: 28
            text: qsTr("Location")
            hint: qsTr("Show in Finder")
            Accessible.description: view.settingsViewModel.locationText
            onClicked: view.settingsViewModel.revealLibrary()

            contentItem: RowLayout {
                spacing: 8

                TextLabel {
                    Layout.leftMargin: 8
                    text: location.text
                    size: 11
                    color: AppPalette.secondaryText
                }
                TextLabel {
                    Layout.fillWidth: true
                    Layout.leftMargin: 8
                    text: view.settingsViewModel.locationText
                    size: 11
                    userText: true
                    elide: Text.ElideMiddle
                    horizontalAlignment: Text.AlignRight
                }
                Icon {
                    Layout.rightMargin: 8
                    name: "folder"
                    size: 11
                    color: location.hovered ? AppPalette.primaryText : AppPalette.secondaryText
                }
            }
            background: Rectangle {
                radius: Theme.smallRadius
                color: AppPalette.at(AppPalette.white, location.down ? 0.1 : location.hovered ? 0.06 : 0)
            }
        }
        Row {
            label: qsTr("Total Size")
            value: view.settingsViewModel.storageSizeText
        }
        Rule {
            Layout.fillWidth: true
            Layout.topMargin: 8
            Layout.bottomMargin: 12
        }
        SectionTitle { text: qsTr("ABOUT") }
        Row {
            label: qsTr("Version")
            value: view.settingsViewModel.versionText
        }
        Row {
            label: qsTr("Build")
            value: view.settingsViewModel.buildText
        }
        PlainButton {
            Layout.topMargin: 8
            text: qsTr("Check for Updates...")
            textSize: 12
            onClicked: view.settingsViewModel.checkForUpdates()
        }
    }
}
