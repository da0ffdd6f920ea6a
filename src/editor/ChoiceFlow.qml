import QtQuick
import Tavi.Ui

/// Pills of equal width in as many rows as they need.
Grid {
    id: grid

    required property string name
    required property var choices ///< Texts.
    property int currentIndex: 0
    signal chosen(int index)

    columns: 3
    spacing: 4
    Accessible.role: Accessible.Grouping
    Accessible.name: name

    function step(by: int) {
        const next = Math.max(0, Math.min(choices.length - 1, currentIndex + by))
        if (next === currentIndex)
            return
        pills.itemAt(next).forceActiveFocus(Qt.TabFocusReason)
        chosen(next)
    }

    Keys.onLeftPressed: step(-1)
    Keys.onRightPressed: step(1)
    Keys.onUpPressed: step(-1)
    Keys.onDownPressed: step(1)

    Repeater {
        id: pills
        model: grid.choices

        ChoicePill {
            required property int index
            required property string modelData

            width: (grid.width - (grid.columns - 1) * grid.spacing) / grid.columns
            text: modelData
            chosen: index === grid.currentIndex
            leftPadding: 2
            rightPadding: 2
            focusPolicy: chosen || activeFocus ? Qt.TabFocus : Qt.NoFocus
            onClicked: grid.chosen(index)
        }
    }
}
