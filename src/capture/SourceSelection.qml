import QtQuick
import QtQuick.Layouts
import Tavi.Ui

/// What will be recorded: the source, the devices, and the button that starts.
FocusScope {
    id: body

    required property QtObject viewModel
    required property QtObject inputMonitoring
    required property bool showPermissionGranted

    readonly property bool loading: viewModel.availableDisplays.length === 0
                                    && viewModel.availableWindows.length === 0
    readonly property bool windows: viewModel.captureMode === "Window"

    Row {
        anchors.centerIn: parent
        visible: body.loading
        spacing: 10

        Spinner {
            anchors.verticalCenter: parent.verticalCenter
            visible: body.loading
        }
        TextLabel {
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Loading sources...")
            size: 12
            color: AppPalette.secondaryText
        }
    }

    ColumnLayout {
        anchors.fill: parent
        visible: !body.loading
        spacing: 0

        SegmentedSwitch {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 18
            Layout.bottomMargin: 4
            name: qsTr("Source")
            choices: [{ text: qsTr("Display"), symbol: "display" },
                      { text: qsTr("Window"), symbol: "macwindow" }]
            currentIndex: body.windows ? 1 : 0
            onChosen: index => body.viewModel.captureMode = index === 1 ? "Window" : "Display"
        }
        SourceGrid {
            Layout.fillWidth: true
            Layout.fillHeight: true
            focus: true
            viewModel: body.viewModel
            windows: body.windows
        }
        TextLabel {
            Layout.alignment: Qt.AlignHCenter
            Layout.maximumWidth: body.width - 2 * Theme.margin
            Layout.topMargin: 6
            visible: text !== ""
            text: body.viewModel.failureText
            size: 12
            color: AppPalette.danger
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
        }
        TextLabel {
            Layout.alignment: Qt.AlignHCenter
            Layout.maximumWidth: body.width - 2 * Theme.margin
            Layout.topMargin: 6
            visible: text !== ""
            text: body.viewModel.pointerWarning
            size: 11
            color: AppPalette.secondaryText
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
        }
        RecordToolbar {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 14
            Layout.bottomMargin: keystrokes.visible ? 12 : 20
            viewModel: body.viewModel
        }
        KeystrokeRow {
            id: keystrokes
            Layout.alignment: Qt.AlignHCenter
            Layout.fillWidth: true
            Layout.leftMargin: Theme.margin
            Layout.rightMargin: Theme.margin
            Layout.bottomMargin: 16
            inputMonitoring: body.inputMonitoring
            showPermissionGranted: body.showPermissionGranted
        }
    }
}
