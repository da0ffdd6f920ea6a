import QtQuick
import Tavi.Ui

/// A switch between a few views: a thumb slides under the chosen one.
Rectangle {
    id: control

    required property string name
    /// Objects with `text` and perhaps `symbol`.
    required property var choices
    property int currentIndex: 0
    signal chosen(int index)

    readonly property real segmentWidth: {
        let widest = 0
        for (let i = 0; i < segments.count; ++i)
            widest = Math.max(widest, segments.itemAt(i)?.implicitWidth ?? 0)
        return widest
    }

    implicitWidth: segmentWidth * choices.length + 4
    implicitHeight: 32
    radius: Theme.radius + 1
    color: AppPalette.surface
    border.color: AppPalette.border

    Accessible.role: Accessible.PageTabList
    Accessible.name: name

    /// The keyboard goes along with the choice.
    function choose(index: int) {
        if (segments.itemAt(currentIndex)?.activeFocus)
            segments.itemAt(index).forceActiveFocus(Qt.TabFocusReason)
        chosen(index)
    }
    function step(by: int) {
        const next = Math.max(0, Math.min(choices.length - 1, currentIndex + by))
        if (next !== currentIndex)
            choose(next)
    }

    Keys.onLeftPressed: step(-1)
    Keys.onRightPressed: step(1)

    Spring {
        id: place
        to: control.currentIndex
        response: 0.3
        damping: 0.85
    }
    Rectangle {
        x: 2 + place.value * control.segmentWidth
        y: 2
        width: control.segmentWidth
        height: control.height - 4
        radius: Theme.radius - 1
        color: AppPalette.at(AppPalette.white, 0.1)
    }
    Row {
        x: 2
        y: 2

        Repeater {
            id: segments
            model: control.choices

            ButtonBase {
                required property int index
                required property var modelData
                readonly property bool current: index === control.currentIndex

                width: control.segmentWidth
                height: control.height - 4
                leftPadding: 16
                rightPadding: 16
                text: modelData.text
                symbol: modelData.symbol ?? ""
                textSize: 12
                symbolSize: 12
                foreground: current || hovered ? AppPalette.primaryText : AppPalette.secondaryText
                cornerRadius: Theme.radius - 1
                focusPolicy: current || activeFocus ? Qt.TabFocus : Qt.NoFocus
                onClicked: control.choose(index)

                markable: true
                marked: current
                Accessible.role: Accessible.PageTab
                Accessible.selectable: true
                Accessible.selected: current
            }
        }
    }
}
