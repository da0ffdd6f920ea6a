import QtQuick
import Tavi.Ui

/// What the keys do with the item that has the focus; it goes by itself, since it stands over others.
Loader {
    id: loader

    required property Item target
    required property string text

    active: target.activeFocus
    onTextChanged: if (item) item.open()
    sourceComponent: HoverTip {
        parent: loader.target
        text: loader.text
        shown: true
        timeout: 4000
    }
}
