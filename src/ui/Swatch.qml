import QtQuick
import Tavi.Ui

/// A colour or gradient to choose.
ButtonBase {
    id: swatch

    required property bool chosen
    property color tone: AppPalette.raisedSurface
    property Gradient gradient: null

    implicitWidth: 44
    implicitHeight: 28

    markable: true
    marked: chosen
    Accessible.role: Accessible.RadioButton

    contentItem: Item {}
    background: Rectangle {
        radius: swatch.cornerRadius
        color: swatch.tone
        gradient: swatch.gradient
        border.width: swatch.chosen ? 2 : 1
        border.color: swatch.chosen ? AppPalette.accent
                                    : AppPalette.at(AppPalette.white, swatch.hovered ? 0.3 : 0.12)
    }
}
