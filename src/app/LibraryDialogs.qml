import QtQuick
import QtQuick.Layouts
import Tavi.Ui

/// The questions and messages of the library.
Item {
    id: dialogs

    required property QtObject homeViewModel
    property var itemToDelete
    property var itemToRename
    property alias renameText: field.text
    property string errorMessage: ""
    signal finished

    function askForName(item: var) {
        itemToRename = item
        renameText = item.name
        renameDialog.open()
    }
    function askToDelete(item: var) {
        itemToDelete = item
        deleteAlert.open()
    }
    function askToDeleteSelection() {
        batchDeleteAlert.open()
    }
    function tell(message: string) {
        errorMessage = message
        if (message !== "")
            errorAlert.open()
        else
            finished()
    }

    AlertDialog {
        id: renameDialog
        title: qsTr("Rename Recording")
        text: qsTr("Enter a new name for this recording.")
        cancelText: qsTr("Cancel")
        confirmText: qsTr("Rename")
        firstFocus: field
        onOpened: field.selectAll()
        onConfirmed: {
            const problem = dialogs.homeViewModel.rename(dialogs.itemToRename.id, field.text)
            renameAgain.wanted = problem !== ""
            if (problem !== "")
                renameAgain.restart()
            dialogs.tell(problem)
        }
        onCancelled: dialogs.finished()

        InputField {
            id: field
            Layout.fillWidth: true
            name: qsTr("Name")
            placeholderText: qsTr("Name")
            onAccepted: renameDialog.confirm()
        }
    }
    // The dialog returns with the text as typed once the message was read.
    Timer {
        id: renameAgain

        property bool wanted: false

        interval: 300
        onTriggered: reopen()

        function reopen() {
            if (wanted && !running && !errorAlert.visible) {
                wanted = false
                renameDialog.open()
            }
        }
    }
    AlertDialog {
        id: errorAlert
        title: qsTr("Error")
        text: dialogs.errorMessage
        confirmText: qsTr("OK")
        onClosed: renameAgain.wanted ? renameAgain.reopen() : dialogs.finished()
    }
    AlertDialog {
        id: deleteAlert
        title: qsTr("Delete Recording?")
        text: qsTr("\"%1\" will be permanently deleted.").arg(dialogs.itemToDelete?.name ?? "")
        cancelText: qsTr("Cancel")
        confirmText: qsTr("Delete")
        destructive: true
        onConfirmed: dialogs.tell(dialogs.homeViewModel.deleteItem(dialogs.itemToDelete.id))
        onCancelled: dialogs.finished()
    }
    AlertDialog {
        id: batchDeleteAlert

        readonly property int count: dialogs.homeViewModel.selectedCount

        title: count === 1 ? qsTr("Delete %1 Recording?").arg(count) : qsTr("Delete %1 Recordings?").arg(count)
        text: count === 1 ? qsTr("%1 recording will be permanently deleted.").arg(count)
                          : qsTr("%1 recordings will be permanently deleted.").arg(count)
        cancelText: qsTr("Cancel")
        confirmText: qsTr("Delete")
        destructive: true
        onConfirmed: dialogs.tell(dialogs.homeViewModel.deleteSelected())
        onCancelled: dialogs.finished()
    }
}
