import QtQuick
import Tavi.Ui

/// A label over a control.
Column {
    required property string label

    spacing: 6

    TextLabel {
        text: parent.label
        Accessible.ignored: true
        size: 11
        color: AppPalette.secondaryText
    }
}
