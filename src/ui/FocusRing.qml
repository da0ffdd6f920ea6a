import QtQuick
import Tavi.Ui

/// The ring around the control that the keyboard speaks to.
Rectangle {
    required property bool shown
    /// Corner radius of the control inside.
    property real cornerRadius: Theme.smallRadius

    anchors.fill: parent
    anchors.margins: -3
    radius: cornerRadius + 3
    color: AppPalette.clear
    border.width: 2
    border.color: AppPalette.at(AppPalette.accent, 0.9)
    visible: shown
}
