import QtQuick
import Tavi.Ui

/// A device's switch and the chevron that opens the list of its kind.
Row {
    id: control

    required property bool on
    required property string onSymbol
    required property string offSymbol
    required property string hint
    required property string heading
    required property string headingSymbol
    required property var devices
    required property int selectedIndex
    property alias showPicker: picker.visible
    signal toggled
    signal picked(int index)

    spacing: 2

    DeviceToggle {
        on: control.on
        symbol: control.on ? control.onSymbol : control.offSymbol
        hint: control.hint
        onClicked: control.toggled()
    }
    IconButton {
        id: chevron
        boxWidth: 20
        boxHeight: 44
        symbol: "chevron.up"
        symbolSize: 9
        hint: qsTr("Choose: %1").arg(control.heading)
        onClicked: picker.visible = !picker.visible

        DevicePicker {
            id: picker
            x: Math.round((chevron.width - width) / 2)
            y: -height - 6
            name: control.heading
            symbol: control.headingSymbol
            devices: control.devices
            selectedIndex: control.selectedIndex
            onPicked: index => control.picked(index)
        }
    }
}
