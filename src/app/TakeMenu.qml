import QtQuick
import Tavi.Ui

/// What can be done with one recording.
ContextMenu {
    id: menu

    property var item
    signal renameAsked(var item)
    signal revealAsked(var item)
    signal deleteAsked(var item)

    /// Opens over a card, at a place in it.
    function openFor(take: var, card: Item, x: real, y: real) {
        item = take
        popup(card, x, y)
    }

    name: item?.name ?? ""

    MenuRow {
        text: qsTr("Rename...")
        symbol: "pencil"
        onTriggered: menu.renameAsked(menu.item)
    }
    MenuRow {
        text: qsTr("Show in Finder")
        symbol: "folder"
        onTriggered: menu.revealAsked(menu.item)
    }
    MenuRow {
        text: qsTr("Delete...")
        symbol: "trash"
        destructive: true
        onTriggered: menu.deleteAsked(menu.item)
    }
}
