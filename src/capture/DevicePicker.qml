import QtQuick
import Tavi.Ui

/// The devices of one kind.
Popover {
    id: picker

    required property string symbol
    required property var devices
    required property int selectedIndex
    signal picked(int index)

    onOpened: rows.itemAt(selectedIndex)?.forceActiveFocus(Qt.TabFocusReason)

    contentItem: Column {
        Row {
            height: 28
            leftPadding: 8
            spacing: 6

            Icon {
                anchors.verticalCenter: parent.verticalCenter
                name: picker.symbol
                size: 11
                color: AppPalette.secondaryText
            }
            TextLabel {
                anchors.verticalCenter: parent.verticalCenter
                text: picker.name
                size: 11
                weight: Font.DemiBold
                color: AppPalette.secondaryText
            }
        }
        TextLabel {
            visible: picker.devices.length === 0
            leftPadding: 8
            rightPadding: 8
            bottomPadding: 6
            text: qsTr("None is connected.")
            size: 12
        }
        Repeater {
            id: rows
            model: picker.devices

            PickerRow {
                required property int index
                required property var modelData

                text: modelData.name
                chosen: index === picker.selectedIndex
                onClicked: {
                    picker.close()
                    picker.picked(index)
                }
                Keys.onUpPressed: rows.itemAt(index - 1)?.forceActiveFocus(Qt.TabFocusReason)
                Keys.onDownPressed: rows.itemAt(index + 1)?.forceActiveFocus(Qt.TabFocusReason)
            }
        }
    }
}
