import QtQuick
import Tavi.Ui

/// The look of the film, one control under the other.
Column {
    id: tab

    required property QtObject style

    spacing: 0

    Repeater {
        model: tab.style

        StyleRow {
            width: tab.width
            style: tab.style
        }
    }
}
