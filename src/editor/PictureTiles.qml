import QtQuick
import Tavi.Ui

/// Backgrounds to choose from, each shown as it looks; the arrow keys go from one to the next.
Grid {
    id: grid

    required property string name
    /// Objects with `text` and `picture`.
    required property var choices
    property int currentIndex: 0
    property real pictureHeight: 52
    property bool labelled: true
    signal chosen(int index)

    columns: 3
    spacing: 6
    Accessible.role: Accessible.Grouping
    Accessible.name: name

    function step(by: int) {
        const next = Math.max(0, Math.min(choices.length - 1, currentIndex + by))
        if (next === currentIndex)
            return
        tiles.itemAt(next).forceActiveFocus(Qt.TabFocusReason)
        chosen(next)
    }

    Keys.onLeftPressed: step(-1)
    Keys.onRightPressed: step(1)
    Keys.onUpPressed: step(-1)
    Keys.onDownPressed: step(1)

    Repeater {
        id: tiles
        model: grid.choices.length

        PictureTile {
            required property int index

            width: (grid.width - (grid.columns - 1) * grid.spacing) / grid.columns
            choice: grid.choices[index]
            pictureHeight: grid.pictureHeight
            labelled: grid.labelled
            chosen: index === grid.currentIndex
            focusPolicy: chosen || activeFocus ? Qt.TabFocus : Qt.NoFocus
            onClicked: grid.chosen(index)
        }
    }
}
