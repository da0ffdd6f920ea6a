import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tavi.Ui

/// A question or a message that must be answered. Any button closes it; Escape
/// is its first button. What is put inside stands between text and buttons.
/// Return is what has the keyboard; nothing is destroyed by a Return that comes too soon.
T.Popup {
    id: alert

    required property string title
    property string text: ""
    /// Empty for a message that knows one answer only.
    property string cancelText: ""
    required property string confirmText
    property bool destructive: false
    /// What has the keyboard when it opens; by default the button that destroys nothing.
    property Item firstFocus: destructive && cancelText !== "" ? cancelButton : confirmButton
    default property alias extra: extras.data

    signal confirmed
    signal cancelled

    function confirm() {
        close()
        confirmed()
    }
    function cancel() {
        close()
        cancelled()
    }

    anchors.centerIn: T.Overlay.overlay
    width: Math.max(320, Math.min(420, buttons.implicitWidth + 2 * padding))
    padding: 20
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    modal: true
    focus: true
    closePolicy: T.Popup.NoAutoClose
    onOpened: firstFocus.forceActiveFocus(Qt.TabFocusReason)

    T.Overlay.modal: Rectangle {
        color: AppPalette.at(AppPalette.black, 0.5)
    }
    background: FloatingPanel {}

    contentItem: ColumnLayout {
        spacing: 6
        Accessible.role: Accessible.Dialog
        Accessible.name: alert.title
        Accessible.description: alert.text
        Keys.onEscapePressed: alert.cancel()

        TextLabel {
            Layout.fillWidth: true
            text: alert.title
            size: 14
            weight: Font.DemiBold
            wrapMode: Text.Wrap
        }
        TextLabel {
            Layout.fillWidth: true
            visible: text !== ""
            text: alert.text
            size: 12
            lineHeight: 17
            lineHeightMode: Text.FixedHeight
            color: AppPalette.secondaryText
            wrapMode: Text.Wrap
        }
        ColumnLayout {
            id: extras
            Layout.fillWidth: true
            Layout.topMargin: children.length > 0 ? 8 : 0
        }
        RowLayout {
            id: buttons
            Layout.alignment: Qt.AlignRight
            Layout.topMargin: 10
            spacing: 8

            PlainButton {
                id: cancelButton
                visible: alert.cancelText !== ""
                text: alert.cancelText
                leftPadding: 16
                rightPadding: 16
                onClicked: alert.cancel()
            }
            PrimaryButton {
                id: confirmButton
                text: alert.confirmText
                destructive: alert.destructive
                leftPadding: 16
                rightPadding: 16
                onClicked: alert.confirm()
            }
        }
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.hover }
        NumberAnimation { property: "scale"; from: 0.97; to: 1; duration: Theme.hover; easing.type: Easing.OutCubic }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: 100 }
    }
}
