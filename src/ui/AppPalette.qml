pragma Singleton
import QtQuick

/// The fixed colours of the program, sRGB.
QtObject {
    readonly property color background: Qt.rgba(0.067, 0.067, 0.075, 1)
    readonly property color surface: Qt.rgba(0.11, 0.11, 0.118, 1)
    readonly property color raisedSurface: Qt.rgba(0.145, 0.145, 0.155, 1)
    readonly property color border: Qt.rgba(1, 1, 1, 0.06)
    readonly property color accent: Qt.rgba(0.94, 0.71, 0.16, 1)
    readonly property color primaryText: Qt.rgba(0.91, 0.91, 0.93, 1)
    readonly property color secondaryText: Qt.rgba(0.56, 0.56, 0.58, 1)
    readonly property color danger: Qt.rgba(1.0, 0.27, 0.23, 1)
    readonly property color success: Qt.rgba(0.19, 0.82, 0.35, 1)
    readonly property color white: Qt.rgba(1, 1, 1, 1)
    readonly property color black: Qt.rgba(0, 0, 0, 1)
    readonly property color clear: Qt.rgba(0, 0, 0, 0)

    /// A colour at an opacity of its own.
    function at(tone: color, opacity: real): color {
        return Qt.rgba(tone.r, tone.g, tone.b, opacity)
    }
}
