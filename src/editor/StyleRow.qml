import QtQuick
import Tavi.Ui

/// One control of the first tab, of whatever kind.
Item {
    id: row

    required property QtObject style
    required property int index
    required property string kind
    required property string label
    required property string symbol
    required property real from
    required property real to
    required property real step
    required property real value
    required property string text
    required property var choices
    required property bool hasSwitch

    readonly property bool isTitle: kind === "title"

    implicitHeight: body.y + body.height + 12

    function set(value: real) {
        style.setValue(index, value)
    }

    Rule {
        visible: row.isTitle
        y: 6
        width: parent.width
    }
    Loader {
        id: body
        y: row.isTitle ? 20 : 0
        width: parent.width
        sourceComponent: {
            switch (row.kind) {
            case "title": return title
            case "slider": return slider
            case "choice": return choice
            case "tiles": return tiles
            case "color": return color
            case "gradients":
            case "wallpapers": return swatches
            case "toggle": return toggle
            default: return note
            }
        }
    }

    Component {
        id: title
        Item {
            implicitHeight: 18

            SectionTitle {
                anchors.verticalCenter: parent.verticalCenter
                text: row.label
            }
            ToggleSwitch {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                visible: row.hasSwitch
                name: row.label
                checked: row.value !== 0
                onToggled: row.set(checked ? 1 : 0)
            }
        }
    }
    Component {
        id: slider
        SliderRow {
            label: row.label
            valueText: row.text
            from: row.from
            to: row.to
            stepSize: row.step
            value: row.value
            onMoved: value => row.set(value)
        }
    }
    Component {
        id: choice
        Labelled {
            label: row.label

            ChoiceFlow {
                width: parent.width
                name: row.label
                choices: row.choices
                currentIndex: row.value
                onChosen: index => row.set(index)
            }
        }
    }
    Component {
        id: tiles
        Labelled {
            label: row.label

            PictureTiles {
                width: parent.width
                name: row.label
                choices: row.choices
                currentIndex: row.value
                onChosen: index => row.set(index)
            }
        }
    }
    Component {
        id: swatches
        Labelled {
            label: row.label

            PictureTiles {
                width: parent.width
                name: row.label
                choices: row.choices
                columns: row.choices.length > 6 ? 4 : 6
                pictureHeight: 28
                labelled: false
                currentIndex: row.value
                onChosen: index => row.set(index)
            }
        }
    }
    Component {
        id: color
        ColorRow {
            label: row.label
            value: row.text
            onChosen: tone => row.style.setSolidColor(tone.r, tone.g, tone.b, tone.a)
        }
    }
    Component {
        id: toggle
        SwitchRow {
            label: row.label
            checked: row.value !== 0
            onToggled: checked => row.set(checked ? 1 : 0)
        }
    }
    Component {
        id: note
        Row {
            spacing: 6

            Icon {
                anchors.verticalCenter: parent.verticalCenter
                name: row.symbol
                size: 11
                color: AppPalette.secondaryText
            }
            TextLabel {
                text: row.label
                size: 11
                color: AppPalette.secondaryText
            }
        }
    }
}
