import QtQuick
import Tavi.Ui

/// A text in the program's typeface.
Text {
    /// Points.
    property real size: 13
    property int weight: Font.Normal
    /// Digits of one width, for numbers that change.
    property bool tabular: false
    /// A text that the user wrote, of any length: cut at the end rather than wrapped.
    property bool userText: false

    color: AppPalette.primaryText
    font.family: tabular ? Theme.tabularFamily : Theme.family
    font.pixelSize: size
    font.weight: weight
    elide: userText ? Text.ElideRight : Text.ElideNone
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter

    // What only says how a control is called is ignored where it stands.
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.ignored: text === ""
}
