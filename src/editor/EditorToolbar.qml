import QtQuick
import QtQuick.Layouts
import Tavi.Ui

/// The bar over the editor: the way back, playback, cuts and the two actions.
Rectangle {
    id: bar

    required property QtObject appViewModel
    required property QtObject screen
    readonly property QtObject editor: screen.editor
    /// Too narrow for the words of all buttons.
    readonly property bool isNarrow: width < 950

    /// The way to the library was chosen.
    signal back

    implicitHeight: Theme.headerHeight
    color: AppPalette.surface

    RowLayout {
        id: left
        anchors.left: parent.left
        anchors.leftMargin: 12
        height: parent.height
        spacing: 4

        BackButton {
            text: bar.isNarrow ? "" : qsTr("Library")
            hint: bar.isNarrow ? qsTr("Library") : ""
            onClicked: bar.back()
        }
        IconButton {
            symbol: "gearshape"
            hint: qsTr("Settings")
            onClicked: bar.appViewModel.showSettings = true
        }
        CanvasSwitch {
            Layout.leftMargin: 8
            Layout.fillWidth: false
            screen: bar.screen
        }
    }
    // In the middle of the bar where there is room, so that it stays under the pointer while
    // buttons beside it come and go.
    TransportButtons {
        readonly property real first: left.x + left.width + 4
        readonly property real last: right.x - width - 4

        x: Math.round(Math.max(first, Math.min(last, (bar.width - width) / 2)))
        height: parent.height
        screen: bar.screen
    }
    RowLayout {
        id: right
        anchors.right: parent.right
        anchors.rightMargin: 12
        height: parent.height
        spacing: 4

        CutButtons {
            screen: bar.screen
        }
        AccentButton {
            Layout.leftMargin: 4
            symbol: "plus"
            text: bar.isNarrow ? "" : qsTr("Keyframe")
            hint: bar.isNarrow ? qsTr("Keyframe") : ""
            onClicked: bar.editor.addKeyframe()
        }
        ExportButton {
            Layout.leftMargin: 4
            text: bar.isNarrow ? "" : qsTr("Export")
            hint: bar.isNarrow ? qsTr("Export") : ""
            enabled: bar.screen.exportState !== "exporting"
            onClicked: bar.screen.startExport()
        }
    }
    Rule {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
    }
}
