import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// The recordings as cards, as many in a row as fit. Only the cards around the screenful exist (a
/// Qt that pools those of grids reuses them), so thousands cost what a screenful costs.
GridView {
    id: grid

    required property QtObject homeViewModel
    required property QtObject thumbnails
    signal opened(var item)
    signal menuAsked(var item, Item card, real x, real y)
    signal renameAsked(var item)

    readonly property real gap: Theme.gap
    // The margin at the right is a gap narrower, since every cell ends with a gap.
    readonly property int columns: Math.max(1, Math.floor((width - leftMargin - rightMargin) / (280 + gap)))

    /// What a click, or Return, does with a recording.
    function activate(item: var, toggles: bool) {
        if (toggles || homeViewModel.selectedCount > 0)
            homeViewModel.toggleSelection(item.id)
        else
            opened(item)
    }
    function selectAllByKeys() {
        selectingByKeys = true
        homeViewModel.selectAll()
        selectingByKeys = false
    }
    function clearSelectionByKeys() {
        selectingByKeys = true
        homeViewModel.clearSelection()
        selectingByKeys = false
    }
    function currentTake(): var {
        return currentIndex >= 0 ? homeViewModel.recordings[currentIndex] : undefined
    }

    leftMargin: Theme.screenMargin
    rightMargin: Theme.screenMargin - gap
    topMargin: Theme.screenMargin
    bottomMargin: Theme.screenMargin - gap
    cellWidth: Math.floor((width - leftMargin - rightMargin) / columns)
    cellHeight: 180 + 54 + gap
    model: homeViewModel.recordings
    reuseItems: true
    cacheBuffer: cellHeight
    boundsBehavior: Flickable.StopAtBounds
    activeFocusOnTab: true
    keyNavigationEnabled: true
    highlightFollowsCurrentItem: false
    currentIndex: 0

    Keys.onPressed: event => {
        const item = currentTake()
        if (item === undefined)
            return
        event.accepted = true
        if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
            activate(item, event.modifiers & Qt.ControlModifier)
        else if (event.key === Qt.Key_Space)
            homeViewModel.toggleSelection(item.id)
        else if (event.key === Qt.Key_F2)
            renameAsked(item)
        else if (event.key === Qt.Key_Menu || (event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier))
            menuAsked(item, currentItem, 24, 24)
        else if (!step(event.key))
            event.accepted = false
    }

    /// Keys that go further than one card; false for any other key.
    function step(key: int): bool {
        const page = Math.max(1, Math.floor(height / cellHeight)) * columns
        const last = count - 1
        if (key === Qt.Key_Home)
            currentIndex = 0
        else if (key === Qt.Key_End)
            currentIndex = last
        else if (key === Qt.Key_PageUp)
            currentIndex = Math.max(0, currentIndex - page)
        else if (key === Qt.Key_PageDown)
            currentIndex = Math.min(last, currentIndex + page)
        else
            return false
        return true
    }

    onCurrentIndexChanged: positionViewAtIndex(currentIndex, GridView.Contain)

    Accessible.role: Accessible.List
    Accessible.name: qsTr("Recordings")

    T.ScrollBar.vertical: ScrollLine {}


    delegate: TakeCard {
        required property int index
        required property var modelData

        width: grid.cellWidth - grid.gap
        height: grid.cellHeight - grid.gap
        item: modelData
        thumbnails: grid.thumbnails
        selected: grid.homeViewModel.selectedItems.includes(modelData.id)
        selectedByKeys: grid.selectingByKeys
        current: grid.activeFocus && grid.keyboardUsed && index === grid.currentIndex

        onClicked: toggles => {
            grid.keyboardUsed = false
            grid.currentIndex = index
            grid.forceActiveFocus(Qt.MouseFocusReason)
            grid.activate(modelData, toggles)
        }
        onMenuAsked: (x, y) => {
            grid.currentIndex = index
            grid.menuAsked(modelData, this, x, y)
        }
    }

    property bool selectingByKeys: false

    /// The ring stands around the current card only for who uses the keyboard.
    property bool keyboardUsed: false
    Keys.onReleased: keyboardUsed = true
}
