import QtQuick
import Tavi.Ui

/// A field whose text is taken when it loses the focus, by Return too. While it is edited nothing
/// from outside writes over it.
InputField {
    id: field

    /// What it shows while it isn't edited.
    required property string shown
    signal blurred(string text)

    implicitHeight: 20
    font.pixelSize: 12
    font.family: Theme.tabularFamily

    Component.onCompleted: text = shown
    onShownChanged: {
        if (!activeFocus)
            text = shown
    }
    onActiveFocusChanged: {
        if (activeFocus) {
            selectAll()
        } else {
            blurred(text)
            deselect()
        }
    }
    onAccepted: focus = false
}
