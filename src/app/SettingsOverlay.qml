import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// The settings over the screen of any mode; Escape and a click beside the panel
/// close them. What lies under it takes neither clicks nor keys.
T.Popup {
    id: overlay

    required property QtObject appViewModel
    required property QtObject settingsViewModel

    readonly property bool wanted: appViewModel.showSettings && parent?.Window.window

    anchors.centerIn: T.Overlay.overlay
    modal: true
    focus: true
    width: panel.implicitWidth
    height: panel.implicitHeight
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
    onAboutToShow: settingsViewModel.appear()
    onAboutToHide: settingsViewModel.disappear()
    onClosed: appViewModel.showSettings = false
    onWantedChanged: wanted ? Qt.callLater(open) : close()

    T.Overlay.modal: Rectangle {
        color: AppPalette.at(AppPalette.black, 0.4)
        Behavior on opacity { NumberAnimation { duration: Theme.fade; easing.type: Easing.InOutQuad } }
    }
    background: Item {
        Shadow {
            anchors.fill: parent
            radius: 30
            offsetY: 10
            cornerRadius: 10
            color: AppPalette.at(AppPalette.black, 0.5)
        }
        Rectangle {
            anchors.fill: parent
            radius: 10
            color: AppPalette.surface
            border.width: 1
            border.color: AppPalette.border
        }
    }
    contentItem: SettingsView {
        id: panel
        focus: true
        settingsViewModel: overlay.settingsViewModel
        onClosed: overlay.close()
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.fade; easing.type: Easing.InOutQuad }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.fade; easing.type: Easing.InOutQuad }
    }
}
