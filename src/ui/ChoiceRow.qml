import QtQuick
import QtQuick.Layouts
import Tavi.Ui

/// A row of equal pills, one of them chosen; the arrow keys go from one to the next.
RowLayout {
    id: row

    /// What the choice is about, for assistive technology.
    required property string name
    /// Objects with `text` and perhaps `symbol`.
    required property var choices
    property int currentIndex: 0
    property int textWeight: Font.Medium
    signal chosen(int index)

    // Grows as the pills tell their widths.
    property real widest: 0

    spacing: 4

    Accessible.role: Accessible.Grouping
    Accessible.name: name

    /// The keyboard goes along with the choice.
    function choose(index: int) {
        if (pills.itemAt(currentIndex)?.activeFocus)
            pills.itemAt(index).forceActiveFocus(Qt.TabFocusReason)
        chosen(index)
    }
    function step(by: int) {
        const next = Math.max(0, Math.min(choices.length - 1, currentIndex + by))
        if (next !== currentIndex)
            choose(next)
    }

    Keys.onLeftPressed: step(-1)
    Keys.onRightPressed: step(1)
    Keys.onUpPressed: step(-1)
    Keys.onDownPressed: step(1)

    Repeater {
        id: pills
        model: row.choices

        ChoicePill {
            required property int index
            required property var modelData

            Layout.fillWidth: true
            Layout.preferredWidth: 1 // equal shares
            Layout.minimumWidth: row.widest
            text: modelData.text
            symbol: modelData.symbol ?? ""
            textWeight: row.textWeight
            chosen: index === row.currentIndex
            focusPolicy: chosen || activeFocus ? Qt.TabFocus : Qt.NoFocus
            onClicked: row.choose(index)
            onImplicitWidthChanged: row.widest = Math.max(row.widest, implicitWidth)
        }
    }
}
