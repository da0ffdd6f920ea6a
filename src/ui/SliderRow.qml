import QtQuick
import Tavi.Ui

/// A label at the left, the formatted value at the right, the slider under them.
Item {
    id: row

    required property string label
    required property string valueText
    property alias from: slider.from
    property alias to: slider.to
    property alias stepSize: slider.stepSize
    property alias value: slider.value
    signal moved(real value)

    implicitWidth: 200
    implicitHeight: title.implicitHeight + slider.implicitHeight + 4

    TextLabel {
        id: title
        anchors.left: parent.left
        text: row.label
        Accessible.ignored: true
        size: 11
        color: AppPalette.secondaryText
    }
    TextLabel {
        anchors.right: parent.right
        text: row.valueText
        Accessible.ignored: true
        size: 11
        tabular: true
    }
    ValueSlider {
        id: slider
        name: row.label
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: -2
        anchors.bottomMargin: 0
        onMoved: row.moved(value)
    }
}
