import QtQuick
import Tavi.Editor
import Tavi.Ui

/// A layer of the timeline in the program's colours.
TimelineLayer {
    anchors.fill: parent
    background: AppPalette.background
    surface: AppPalette.surface
    accent: AppPalette.accent
    danger: AppPalette.danger
    secondaryText: AppPalette.secondaryText
    family: Theme.tabularFamily
}
