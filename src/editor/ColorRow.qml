import QtQuick
import Tavi.Ui

/// A colour: its well opens hue, saturation, brightness and the code.
Item {
    id: row

    required property string label
    required property color value
    signal chosen(color tone)

    implicitHeight: 28

    // Kept apart from `value`: a grey has no hue, and a black no saturation to come back to.
    property real hue: 0
    property real saturation: 0
    property real brightness: 0

    function take() {
        if (value.hsvHue >= 0)
            hue = value.hsvHue
        if (value.hsvValue > 0)
            saturation = value.hsvSaturation
        brightness = value.hsvValue
    }
    function choose() {
        chosen(Qt.hsva(hue, saturation, brightness, 1))
    }

    TextLabel {
        anchors.verticalCenter: parent.verticalCenter
        text: row.label
        Accessible.ignored: true
        size: 11
        color: AppPalette.secondaryText
    }
    Swatch {
        id: well
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        chosen: picker.visible
        tone: row.value
        hint: row.label
        Accessible.role: Accessible.Button
        markable: false
        onClicked: {
            row.take()
            picker.visible = !picker.visible
        }
    }
    Popover {
        id: picker
        name: row.label
        x: row.width - width
        y: row.height + 4
        padding: 12

        contentItem: Column {
            spacing: 10

            SliderRow {
                width: 220
                label: qsTr("Hue")
                valueText: Math.round(row.hue * 360) + "°"
                from: 0
                to: 1
                value: row.hue
                onMoved: value => {
                    row.hue = value
                    row.choose()
                }
            }
            SliderRow {
                width: 220
                label: qsTr("Saturation")
                valueText: Math.round(row.saturation * 100) + "%"
                from: 0
                to: 1
                value: row.saturation
                onMoved: value => {
                    row.saturation = value
                    row.choose()
                }
            }
            SliderRow {
                width: 220
                label: qsTr("Brightness")
                valueText: Math.round(row.brightness * 100) + "%"
                from: 0
                to: 1
                value: row.brightness
                onMoved: value => {
                    row.brightness = value
                    row.choose()
                }
            }
            InputField {
                id: code
                width: 220
                name: qsTr("Color code")
                text: row.value.toString().toUpperCase()
                onEditingFinished: {
                    if (/^#[0-9a-f]{6}$/i.test(text)) {
                        row.chosen(text)
                        row.take()
                    }
                    text = Qt.binding(() => row.value.toString().toUpperCase())
                }
            }
        }
    }
}
