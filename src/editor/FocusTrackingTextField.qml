import QtQuick
import Tavi.Ui

/// A field whose text is taken when it loses the focus, by Return too, if it was edited. While it
/// is edited nothing from outside writes over it.
InputField {
    id: field

    /// What it shows while it isn't edited.
    required property string shown
    /// Whose changed() writes that again over what was typed and not taken.
    required property QtObject subject
    property bool isEditing: false
    signal blurred(string text)

    function showAgain() {
        if (isEditing || text === shown)
            return
        text = shown
        if (activeFocus)
            selectAll()
    }

    implicitHeight: 20
    font.pixelSize: 12
    font.family: Theme.tabularFamily

    Component.onCompleted: text = shown
    onShownChanged: showAgain()
    onTextEdited: isEditing = true
    onActiveFocusChanged: {
        if (activeFocus) {
            selectAll()
            return
        }
        deselect()
        if (isEditing) {
            isEditing = false
            blurred(text)
        }
    }
    onAccepted: focus = false

    Connections {
        target: field.subject

        function onChanged() {
            field.showAgain()
        }
    }
}
