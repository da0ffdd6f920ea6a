import QtQuick
import Tavi.Ui

/// The small capitals over a group of rows.
TextLabel {
    size: 11
    weight: Font.DemiBold
    color: AppPalette.secondaryText
    font.letterSpacing: 0.6
    Accessible.role: Accessible.Heading
    Accessible.name: text
}
