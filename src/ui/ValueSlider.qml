import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// A slider; arrow keys move it by its step.
T.Slider {
    id: slider

    required property string name

    implicitWidth: 120
    implicitHeight: 20
    padding: 2
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    snapMode: T.Slider.SnapAlways

    // Left and Right may belong to the screen.
    Keys.onUpPressed: step(increase)
    Keys.onDownPressed: step(decrease)

    /// Without a step of its own it goes by tenths, which are too small for a long range.
    function step(once) {
        const times = stepSize > 0 ? 1 : Math.max(1, Math.round((to - from) / 10))
        for (let i = 0; i < times; ++i)
            once.call(slider)
        moved()
    }

    Accessible.role: Accessible.Slider
    Accessible.name: name

    background: Rectangle {
        x: slider.leftPadding
        y: (slider.height - height) / 2
        width: slider.availableWidth
        height: 4
        radius: 2
        color: AppPalette.at(AppPalette.white, 0.1)

        Rectangle {
            width: slider.visualPosition * (parent.width - 14) + 7
            height: parent.height
            radius: 2
            color: AppPalette.accent
        }
    }
    handle: Rectangle {
        x: slider.leftPadding + slider.visualPosition * (slider.availableWidth - width)
        y: (slider.height - height) / 2
        width: 14
        height: 14
        radius: 7
        color: slider.pressed ? AppPalette.primaryText : AppPalette.white
        border.color: AppPalette.at(AppPalette.black, 0.35)

        FocusRing {
            shown: slider.visualFocus
            cornerRadius: 7
        }
    }
    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }
}
