import QtQuick
import Tavi.Ui

/// Where the keyboard points at on the canvas: bright lines with a dark edge, to be seen on anything.
Item {
    /// Four lines around a gap in the middle.
    component Lines: Item {
        id: lines

        required property color tint
        property real edge: 0
        readonly property real arm: 16
        readonly property real middle: 4 + arm / 2

        Repeater {
            model: 4

            Rectangle {
                required property int index
                readonly property bool isFlat: index < 2
                readonly property real offset: index % 2 === 0 ? -lines.middle : lines.middle

                width: (isFlat ? lines.arm : 2) + 2 * lines.edge
                height: (isFlat ? 2 : lines.arm) + 2 * lines.edge
                x: (isFlat ? offset : 0) - width / 2
                y: (isFlat ? 0 : offset) - height / 2
                color: lines.tint
            }
        }
    }

    Lines {
        tint: AppPalette.at(AppPalette.black, 0.7)
        edge: 1
    }
    Lines {
        tint: AppPalette.accent
    }
}
