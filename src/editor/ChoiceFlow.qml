import QtQuick
import Tavi.Ui

/// Pills of equal width, one of them chosen, in as few rows as have room for the widest.
Grid {
    id: grid

    /// What the choice is about, for assistive technology.
    required property string name
    /// Objects with `text` and perhaps `symbol`.
    required property var choices
    property int currentIndex: 0
    signal chosen(int index)

    // Grows as the pills tell their widths.
    property real widest: 0
    readonly property int inARow: Math.max(1, Math.floor((width + spacing) / (widest + spacing)))
    readonly property int rowCount: Math.max(1, Math.ceil(choices.length / inARow))

    columns: Math.max(1, Math.ceil(choices.length / rowCount))
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
            required property var modelData

            width: (grid.width - (grid.columns - 1) * grid.spacing) / grid.columns
            text: modelData.text
            symbol: modelData.symbol ?? ""
            chosen: index === grid.currentIndex
            leftPadding: 4
            rightPadding: 4
            focusPolicy: chosen || activeFocus ? Qt.TabFocus : Qt.NoFocus
            onClicked: grid.chosen(index)
            onImplicitWidthChanged: grid.widest = Math.max(grid.widest, implicitWidth)
        }
    }
}
