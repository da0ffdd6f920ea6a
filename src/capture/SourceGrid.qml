import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// The displays or the windows as cards, one of them selected.
GridView {
    id: grid

    required property QtObject viewModel
    required property bool windows

    readonly property var sources: windows ? viewModel.availableWindows : viewModel.availableDisplays
    readonly property var pictures: windows ? viewModel.windowThumbnails : viewModel.displayThumbnails
    readonly property int selectedIndex: windows ? viewModel.selectedWindowIndex : viewModel.selectedDisplayIndex
    readonly property real gap: Theme.gap
    readonly property real room: width - 40
    readonly property int fitting: Math.max(1, Math.floor((room + gap) / (220 + gap)))
    // A few cards stand in the middle instead of growing over the whole width.
    readonly property int columns: Math.max(1, Math.min(fitting, count))
    readonly property real cardWidth: Math.floor(Math.min(400, (room + gap) / columns - gap))
    readonly property real sideMargin: Math.max(20, Math.floor((width - columns * (cardWidth + gap) + gap) / 2))

    function select(index: int) {
        if (windows)
            viewModel.selectedWindowIndex = index
        else
            viewModel.selectedDisplayIndex = index
    }

    leftMargin: sideMargin
    rightMargin: sideMargin - gap
    topMargin: 14
    bottomMargin: 14
    cellWidth: cardWidth + gap
    cellHeight: Math.round(cardWidth * 0.6) + (windows ? 56 : 38) + gap
    model: sources
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    activeFocusOnTab: true
    highlightFollowsCurrentItem: false
    currentIndex: selectedIndex
    onCurrentIndexChanged: positionViewAtIndex(currentIndex, GridView.Contain)

    function step(by: int) {
        select(Math.max(0, Math.min(count - 1, selectedIndex + by)))
    }
    Keys.onLeftPressed: step(-1)
    Keys.onRightPressed: step(1)
    Keys.onUpPressed: step(-columns)
    Keys.onDownPressed: step(columns)

    Accessible.role: Accessible.List
    Accessible.name: windows ? qsTr("Windows") : qsTr("Displays")
    T.ScrollBar.vertical: ScrollLine {}

    TextLabel {
        anchors.centerIn: parent
        visible: grid.count === 0
        text: grid.windows ? qsTr("No windows are open.") : qsTr("No display can be recorded.")
        size: 12
        color: AppPalette.secondaryText
    }

    delegate: SourceCard {
        required property int index
        required property var modelData

        width: grid.cardWidth
        height: grid.cellHeight - grid.gap
        symbol: grid.windows ? "macwindow" : "display"
        title: grid.windows ? modelData.appName : modelData.name
        subtitle: grid.windows ? modelData.title : modelData.width + "×" + modelData.height
        thumbnail: grid.pictures[index]
        placeholder: modelData.output ?? ""
        small: !grid.windows
        selected: index === grid.selectedIndex
        current: grid.activeFocus && selected && grid.keyUsed
        onClicked: {
            grid.select(index)
            grid.forceActiveFocus(Qt.MouseFocusReason)
        }
    }

    /// The ring is for who uses the keyboard; a click shows its choice by itself.
    property bool keyUsed: false
    Keys.onReleased: keyUsed = true
    onActiveFocusChanged: if (!activeFocus) keyUsed = false
}
