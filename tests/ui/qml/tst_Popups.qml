import QtQuick
import QtTest
import Tavi.Ui

Item {
    id: root
    width: 600
    height: 400
    focus: true

    Item {
        id: anchor
        x: 200
        y: 100
        width: 40
        height: 40

        Popover {
            id: popover
            name: "Devices"
            contentItem: Column {
                PlainButton { id: first; text: "One" }
                PlainButton { text: "Two" }
            }
        }
    }
    ContextMenu {
        id: menu
        name: "Product tour"

        MenuRow { id: rename; text: "Rename..."; symbol: "pencil" }
        MenuRow { id: remove; text: "Delete..."; symbol: "trash"; destructive: true }
    }
    AlertDialog {
        id: alert
        title: "Delete Recording?"
        text: "It will be permanently deleted."
        cancelText: "Cancel"
        confirmText: "Delete"
        destructive: true
    }
    AlertDialog {
        id: question
        title: "Rename Recording"
        cancelText: "Cancel"
        confirmText: "Rename"
    }
    AlertDialog {
        id: message
        title: "Error"
        text: "Name cannot be empty."
        confirmText: "OK"
    }

    TestCase {
        name: "Popups"
        when: windowShown

        SignalSpy { id: confirmed; target: alert; signalName: "confirmed" }
        SignalSpy { id: cancelled; target: alert; signalName: "cancelled" }
        SignalSpy { id: answered; target: question; signalName: "confirmed" }
        SignalSpy { id: told; target: message; signalName: "confirmed" }
        SignalSpy { id: renamed; target: rename; signalName: "triggered" }
        SignalSpy { id: removed; target: remove; signalName: "triggered" }

        function init() {
            for (const spy of [confirmed, cancelled, answered, told, renamed, removed])
                spy.clear()
        }
        function cleanup() {
            for (const popup of [popover, menu, alert, question, message]) {
                popup.close()
                tryVerify(() => !popup.visible)
            }
        }
        function show(popup) {
            popup.open()
            tryVerify(() => popup.opened)
        }

        function test_escapeClosesAPopover() {
            show(popover)
            keyClick(Qt.Key_Escape)
            tryVerify(() => !popover.visible)
        }
        function test_aClickElsewhereClosesAPopover() {
            show(popover)
            mouseClick(root, 590, 390)
            tryVerify(() => !popover.visible)
        }
        function test_aPopoverStaysInsideTheWindow() {
            anchor.x = 595
            show(popover)
            verify(popover.contentItem.mapToItem(root, popover.contentItem.width, 0).x <= root.width)
            anchor.x = 200
        }
        function test_aMenuIsUsedByKeysAlone() {
            menu.popup(anchor, 0, 0)
            tryVerify(() => menu.opened)
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Return)
            compare(removed.count, 1)
            tryVerify(() => !menu.visible)
        }
        function test_aMenuIsUsedByThePointer() {
            menu.popup(anchor, 0, 0)
            tryVerify(() => menu.opened)
            mouseClick(rename)
            compare(renamed.count, 1)
            compare(removed.count, 0)
            tryVerify(() => !menu.visible)
        }
        function test_escapeClosesAMenu() {
            menu.popup(anchor, 0, 0)
            tryVerify(() => menu.opened)
            keyClick(Qt.Key_Escape)
            tryVerify(() => !menu.visible)
        }
        function test_returnConfirmsAnAlert() {
            show(question)
            keyClick(Qt.Key_Return)
            compare(answered.count, 1)
            tryVerify(() => !question.visible)
        }
        function test_noKeyDestroysAtOnce_data() {
            return [{ tag: "return", key: Qt.Key_Return }, { tag: "enter", key: Qt.Key_Enter },
                    { tag: "space", key: Qt.Key_Space }]
        }
        function test_noKeyDestroysAtOnce(data) {
            show(alert)
            keyClick(data.key)
            compare(confirmed.count, 0)
            compare(cancelled.count, 1)
            tryVerify(() => !alert.visible)
        }
        function test_escapeCancelsAnAlert() {
            show(alert)
            keyClick(Qt.Key_Escape)
            compare(confirmed.count, 0)
            compare(cancelled.count, 1)
            tryVerify(() => !alert.visible)
        }
        function test_tabReachesTheOtherButton() {
            show(alert)
            keyClick(Qt.Key_Tab)
            keyClick(Qt.Key_Space)
            compare(confirmed.count, 1)
            compare(cancelled.count, 0)
        }
        function test_aClickBesideAnAlertDoesNothing() {
            show(alert)
            mouseClick(root, 5, 5)
            verify(alert.visible)
            compare(cancelled.count, 0)
        }
        function test_aMessageHasOneAnswer() {
            show(message)
            keyClick(Qt.Key_Tab)
            keyClick(Qt.Key_Return)
            compare(told.count, 1)
        }
        function test_alertsTellWhatTheyAreAbout() {
            compare(alert.contentItem.Accessible.role, Accessible.Dialog)
            compare(alert.contentItem.Accessible.name, "Delete Recording?")
            compare(alert.contentItem.Accessible.description, "It will be permanently deleted.")
        }
    }
}
