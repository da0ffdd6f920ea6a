import QtQuick
import QtQuick.Layouts
import Tavi.Ui

/// The bell with what the running version brought.
IconButton {
    id: bell

    required property QtObject notificationViewModel
    property alias showPopover: popover.visible
    readonly property alias popover: popover
    readonly property alias dot: dot

    symbol: "bell.fill"
    symbolSize: 13
    hint: qsTr("What's new")
    Accessible.description: notificationViewModel.hasUnread ? qsTr("Unread") : ""
    onClicked: {
        popover.visible = !popover.visible
        notificationViewModel.markAsRead()
    }

    Rectangle {
        id: dot
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 3
        width: 7
        height: 7
        radius: 3.5
        color: AppPalette.accent
        visible: bell.notificationViewModel.hasUnread
        opacity: 0.4 + 0.6 * pulseAnimation.value

        Pulse {
            id: pulseAnimation
            seconds: 1
            running: bell.notificationViewModel.hasUnread && bell.visible && !Theme.still
                     && Qt.application.state === Qt.ApplicationActive
        }
    }

    Popover {
        id: popover
        name: bell.hint
        x: bell.width - width
        y: bell.height + 6
        width: 260
        padding: 16

        contentItem: ColumnLayout {
            spacing: 14

            TextLabel {
                visible: bell.notificationViewModel.currentNotifications.length === 0
                text: qsTr("No notifications")
                size: 12
                color: AppPalette.secondaryText
            }
            Repeater {
                model: bell.notificationViewModel.currentNotifications

                ColumnLayout {
                    id: item

                    required property var modelData

                    spacing: 4

                    TextLabel {
                        Layout.fillWidth: true
                        text: item.modelData.title
                        weight: Font.DemiBold
                        wrapMode: Text.Wrap
                    }
                    TextLabel {
                        Layout.fillWidth: true
                        text: item.modelData.body
                        size: 11
                        color: AppPalette.secondaryText
                        wrapMode: Text.Wrap
                    }
                    PlainButton {
                        Layout.leftMargin: -8
                        outlined: false
                        foreground: AppPalette.accent
                        textSize: 11
                        text: qsTr("Read more")
                        hint: item.modelData.title
                        onClicked: bell.notificationViewModel.open(item.modelData.url)
                    }
                }
            }
        }
    }
}
