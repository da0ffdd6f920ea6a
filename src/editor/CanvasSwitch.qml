import QtQuick
import Tavi.Ui

/// What the canvas shows.
ChoiceRow {
    id: row

    required property QtObject screen

    name: qsTr("Canvas")
    choices: [{ text: qsTr("Raw") }, { text: qsTr("Preview") }]
    currentIndex: screen.canvasMode
    textWeight: Font.DemiBold
    onChosen: index => screen.canvasMode = index
}
