import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// One line of text. Left and Right stay in the field at the ends of its text.
T.TextField {
    id: field

    required property string name

    implicitWidth: 200
    implicitHeight: 28
    leftPadding: 8
    rightPadding: 8
    color: AppPalette.primaryText
    selectionColor: AppPalette.at(AppPalette.accent, 0.4)
    selectedTextColor: AppPalette.primaryText
    placeholderTextColor: AppPalette.secondaryText
    font.family: Theme.family
    font.pixelSize: 13
    verticalAlignment: TextInput.AlignVCenter
    selectByMouse: true

    Accessible.role: Accessible.EditableText
    Accessible.name: name

    Keys.onLeftPressed: event => event.accepted = cursorPosition === 0 && selectedText === ""
    Keys.onRightPressed: event => event.accepted = cursorPosition === length && selectedText === ""

    background: Rectangle {
        radius: Theme.smallRadius
        color: AppPalette.background
        border.color: field.activeFocus ? AppPalette.accent : AppPalette.at(AppPalette.white, 0.14)
        Behavior on border.color { ColorAnimation { duration: Theme.hover } }
    }
    TextLabel {
        anchors.fill: parent
        anchors.leftMargin: field.leftPadding
        visible: field.text === "" && field.preeditText === ""
        text: field.placeholderText
        color: field.placeholderTextColor
        Accessible.ignored: true
    }
}
