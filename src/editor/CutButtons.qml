import QtQuick
import QtQuick.Layouts
import Tavi.Ui

/// Marks a cut at the playhead and ends it there.
RowLayout {
    id: row

    required property QtObject screen
    readonly property QtObject editor: screen.editor

    spacing: 2

    ButtonBase {
        id: cut
        readonly property bool marking: row.editor.isMarkingCut

        Layout.minimumWidth: 28
        Layout.minimumHeight: 28
        symbol: "scissors"
        symbolSize: 11
        text: marking ? qsTr("End Cut") : ""
        textSize: 11
        textWeight: Font.DemiBold
        leftPadding: marking ? 8 : 0
        rightPadding: leftPadding
        foreground: marking ? AppPalette.danger
                  : hovered ? AppPalette.primaryText : AppPalette.secondaryText
        hint: marking ? qsTr("Finish cut at playhead (⌘B)") : qsTr("Start cut at playhead (⌘B)")
        onClicked: row.editor.toggleCut()
        Behavior on foreground { ColorAnimation { duration: Theme.hover } }

        background: Rectangle {
            radius: cut.cornerRadius
            color: cut.marking ? AppPalette.at(AppPalette.danger, cut.hovered ? 0.22 : 0.15)
                               : AppPalette.at(AppPalette.white, cut.hovered ? 0.07 : 0)
            Behavior on color { ColorAnimation { duration: Theme.hover } }
        }
    }
    IconButton {
        visible: row.editor.isMarkingCut
        symbol: "xmark"
        symbolSize: 10
        boxWidth: 24
        hint: qsTr("Cancel cut (Esc)")
        onClicked: row.editor.cancelCut()
    }
    IconButton {
        visible: row.screen.isTrimmed && !row.editor.isMarkingCut
        symbol: "arrow.uturn.backward"
        symbolSize: 12
        hint: qsTr("Reset all trims & cuts")
        onClicked: row.editor.resetTrims()
    }
}
