import QtQuick
import QtQuick.Layouts
import Tavi.Ui

/// Every control in its states.
Rectangle {
    implicitWidth: 960
    implicitHeight: 700
    color: AppPalette.background

    HeaderBar {
        id: header
        width: parent.width

        BackButton {
            anchors.verticalCenter: parent.verticalCenter
            anchors.left: parent.left
            anchors.leftMargin: -8
            text: "Library"
        }
        TextLabel {
            anchors.centerIn: parent
            text: "Controls"
            weight: Font.DemiBold
        }
        IconButton {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            symbol: "gearshape"
            hint: "Settings"
        }
    }

    GridLayout {
        anchors.top: header.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.margins: 24
        columns: 3
        columnSpacing: 40
        rowSpacing: 24

        ColumnLayout {
            Layout.alignment: Qt.AlignTop
            spacing: 10

            SectionTitle { text: "BUTTONS" }
            RowLayout {
                PrimaryButton { text: "New Recording"; symbol: "record.circle"; textSize: 12; symbolSize: 12 }
                PrimaryButton { text: "Delete"; destructive: true }
            }
            RowLayout {
                PlainButton { text: "Check Again" }
                PlainButton { text: "Delete"; symbol: "trash"; destructive: true }
                PlainButton { text: "Quiet"; outlined: false }
            }
            RowLayout {
                PrimaryButton { text: "Off"; enabled: false }
                PlainButton { text: "Off"; enabled: false }
                PlainButton { id: focused; text: "Focus"; Component.onCompleted: forceActiveFocus(Qt.TabFocusReason) }
            }
            RowLayout {
                IconButton { symbol: "gearshape"; hint: "Settings" }
                IconButton { symbol: "bell.fill"; hint: "News" }
                IconButton { symbol: "xmark"; hint: "Close"; boxWidth: 24; symbolSize: 11 }
                DeviceToggle { symbol: "mic.fill"; hint: "Mute microphone"; on: true }
                DeviceToggle { symbol: "video.slash.fill"; hint: "Turn on camera"; on: false }
            }
        }
        ColumnLayout {
            Layout.alignment: Qt.AlignTop
            spacing: 10

            SectionTitle { text: "CHOICES" }
            SegmentedSwitch {
                name: "Source"
                choices: [{ text: "Display", symbol: "display" }, { text: "Window", symbol: "macwindow" }]
            }
            ChoiceRow {
                Layout.preferredWidth: 268
                name: "Smoothing"
                choices: [{ text: "None" }, { text: "Slow" }, { text: "Medium" }, { text: "Fast" }]
                currentIndex: 2
            }
            ChoiceRow {
                Layout.preferredWidth: 268
                name: "Style"
                choices: [{ text: "Pointer", symbol: "cursorarrow.rays" }, { text: "System", symbol: "cursorarrow" },
                          { text: "Circle", symbol: "circle.fill" }]
            }
            RowLayout {
                Swatch { text: "Ember"; chosen: true; tone: "#c2410c" }
                Swatch { text: "Ocean"; chosen: false; tone: "#0e4d64" }
                Swatch {
                    text: "Aurora"
                    chosen: false
                    gradient: Gradient {
                        orientation: Gradient.Horizontal
                        GradientStop { position: 0; color: "#2dd4bf" }
                        GradientStop { position: 1; color: "#6d28d9" }
                    }
                }
            }
            SwitchRow { Layout.preferredWidth: 268; label: "Shadow"; checked: true }
            SwitchRow { Layout.preferredWidth: 268; label: "Animate" }
        }
        ColumnLayout {
            Layout.alignment: Qt.AlignTop
            spacing: 10

            SectionTitle { text: "VALUES" }
            SliderRow { Layout.preferredWidth: 240; label: "Corner Radius"; valueText: "12px"; from: 0; to: 40; value: 12; stepSize: 1 }
            SliderRow { Layout.preferredWidth: 240; label: "Opacity"; valueText: "100%"; from: 0; to: 1; value: 1; stepSize: 0.1 }
            InputField { Layout.preferredWidth: 240; name: "Name"; placeholderText: "Name" }
            InputField { Layout.preferredWidth: 240; name: "Width"; text: "1920" }
            ProgressLine { Layout.preferredWidth: 240; name: "Exporting"; value: 0.42 }
            RowLayout {
                Spinner { visible: true; size: 20 }
                TextLabel { text: "Loading sources..."; size: 12; color: AppPalette.secondaryText }
            }
        }
        Flow {
            Layout.columnSpan: 3
            Layout.fillWidth: true
            spacing: 16

            Repeater {
                model: ["aqi.medium", "arrow.uturn.backward", "backward.frame.fill", "bell.fill", "camera.fill",
                    "checkmark", "checkmark.circle.fill", "chevron.down", "chevron.left", "chevron.right",
                    "chevron.up", "circle.fill", "cursorarrow", "cursorarrow.rays", "diamond", "display", "film",
                    "film.stack", "folder", "forward.frame.fill", "gearshape", "keyboard", "link", "macwindow",
                    "mic.fill", "mic.slash.fill", "paintbrush.fill", "pause.fill", "pencil", "play.fill", "plus",
                    "record.circle", "scissors", "sparkle.magnifyingglass", "square.and.arrow.up", "trash",
                    "video.fill", "video.slash", "video.slash.fill", "wand.and.stars", "xmark", "xmark.circle.fill"]

                Icon {
                    required property string modelData
                    name: modelData
                    size: 15
                    color: AppPalette.primaryText
                }
            }
        }
        RowLayout {
            Layout.columnSpan: 3
            spacing: 24

            TextLabel { text: "Thin 0123456789"; size: 11; color: AppPalette.secondaryText }
            TextLabel { text: "00:11:17"; tabular: true; weight: Font.Medium }
            TextLabel { text: "00:00:48"; tabular: true; weight: Font.Medium }
            TextLabel { text: "Semibold Ångström Größe ⌃⌥⇧⌘↩"; weight: Font.DemiBold }
            TextLabel { text: "Regular Привет Ελλάς 日本"; size: 15 }
        }
    }
}
