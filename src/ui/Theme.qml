pragma Singleton
import QtQuick

/// Sizes, typefaces and times that every screen shares. Lengths in points.
QtObject {
    readonly property string family: "Tavlin Sans"
    readonly property string tabularFamily: "Tavlin Sans Tabular"

    readonly property real headerHeight: 44
    readonly property real spacing: 8
    readonly property real gap: 14      // between cards
    readonly property real margin: 16   // at the edges of panels
    readonly property real screenMargin: 20
    readonly property real smallRadius: 5
    readonly property real radius: 7
    readonly property real largeRadius: 10

    /// Nothing moves by itself: for pictures that are the same at every run.
    property bool still: false

    // Milliseconds.
    readonly property int hover: 150
    readonly property int fade: 200
}
