import QtQuick
import Tavi.Ui

/// The way back, at the left of a header.
PlainButton {
    outlined: false
    symbol: "chevron.left"
    symbolSize: 12
    textSize: 13
    foreground: hovered ? AppPalette.primaryText : AppPalette.secondaryText
}
