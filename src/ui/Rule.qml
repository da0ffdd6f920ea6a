import QtQuick
import Tavi.Ui

/// A line between two areas.
Rectangle {
    implicitWidth: 1
    implicitHeight: 1
    color: AppPalette.border
}
