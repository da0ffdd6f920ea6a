import QtQuick
import Tavi.Ui

/// The library: a grid of all recordings.
FocusScope {
    id: view

    required property QtObject appViewModel
    required property QtObject homeViewModel
    required property QtObject notificationViewModel
    required property QtObject thumbnails

    readonly property alias grid: grid
    readonly property alias menu: menu
    readonly property alias dialogs: dialogs
    readonly property alias bell: bell
    readonly property alias selectionBar: selectionBar
    readonly property alias newRecordingButton: newRecordingButton
    readonly property bool empty: homeViewModel.recordings.length === 0
    readonly property bool selecting: homeViewModel.selectedCount > 0

    // The focused item gets its keys first, so a text field keeps its own.
    Keys.onPressed: event => {
        if (event.key === Qt.Key_A && event.modifiers & Qt.ControlModifier) {
            grid.selectAllByKeys()
            event.accepted = true
        } else if (selecting && (event.key === Qt.Key_Delete || event.key === Qt.Key_Backspace)) {
            dialogs.askToDeleteSelection()
            event.accepted = true
        } else if (selecting && event.key === Qt.Key_Escape) {
            grid.clearSelectionByKeys()
            event.accepted = true
        }
    }

    Rectangle {
        anchors.fill: parent
        color: AppPalette.background
    }
    HeaderBar {
        id: header
        width: parent.width
        z: 1

        TextLabel {
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Library")
            weight: Font.DemiBold
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Row {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: !view.selecting
            spacing: 6

            NotificationBellView {
                id: bell
                anchors.verticalCenter: parent.verticalCenter
                notificationViewModel: view.notificationViewModel
            }
            IconButton {
                anchors.verticalCenter: parent.verticalCenter
                symbol: "gearshape"
                hint: qsTr("Settings")
                onClicked: view.appViewModel.showSettings = true
            }
            Item {
                width: 2
                height: 1
            }
            NewRecordingButton {
                id: newRecordingButton
                anchors.verticalCenter: parent.verticalCenter
                onClicked: view.appViewModel.newRecording()
            }
        }
        SelectionBar {
            id: selectionBar
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: view.selecting
            homeViewModel: view.homeViewModel
            onDeleteAsked: dialogs.askToDeleteSelection()
        }
    }

    EmptyLibrary {
        id: emptyLibrary
        anchors.centerIn: parent
        anchors.verticalCenterOffset: header.height / 2
        visible: view.empty
        focus: view.empty
        onNewRecordingAsked: view.appViewModel.newRecording()
    }
    TakeGrid {
        id: grid
        anchors.top: header.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        focus: !view.empty
        visible: !view.empty
        homeViewModel: view.homeViewModel
        thumbnails: view.thumbnails
        onOpened: item => view.appViewModel.openRecording(item.url)
        onMenuAsked: (item, card, x, y) => menu.openFor(item, card, x, y)
        onRenameAsked: item => dialogs.askForName(item)
    }

    TakeMenu {
        id: menu
        onRenameAsked: item => dialogs.askForName(item)
        onRevealAsked: item => view.appViewModel.reveal(item.path)
        onDeleteAsked: item => dialogs.askToDelete(item)
        onClosed: grid.forceActiveFocus(Qt.OtherFocusReason)
    }
    LibraryDialogs {
        id: dialogs
        homeViewModel: view.homeViewModel
        onFinished: view.forceActiveFocus(Qt.OtherFocusReason)
    }
}
