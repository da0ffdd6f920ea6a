import QtQuick
import Tavi.Editor
import Tavi.Ui

/// An open take: toolbar, canvas over timeline, and the inspector.
Rectangle {
    id: view

    required property QtObject appViewModel
    required property QtObject screen
    property alias selectedTab: inspector.selectedTab
    /// Leaving would lose a film that is being made.
    readonly property bool isExporting: screen.exportState === "exporting"

    /// Calls `go`, or lets the user keep what runs.
    function leave(go: var) {
        leaveAlert.leave(go)
    }

    color: AppPalette.background

    KeyMonitor {
        editor: view.screen.editor
        leavesArrows: canvas.isPointing
    }
    EditorToolbar {
        id: toolbar
        width: parent.width
        z: 1
        appViewModel: view.appViewModel
        screen: view.screen
        onBack: view.leave(() => view.appViewModel.leaveEditor())
    }
    Item {
        id: left
        anchors.top: toolbar.bottom
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: divider.left

        EditorCanvas {
            id: canvas
            anchors.top: parent.top
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: rule.top
            canvas: view.screen.canvas
        }
        Rule {
            id: rule
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: timeline.top
        }
        TimelineView {
            id: timeline
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            timeline: view.screen.timeline
        }
        ExportOverlayView {
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 24
            screen: view.screen
        }
    }
    Rule {
        id: divider
        anchors.top: toolbar.bottom
        anchors.bottom: parent.bottom
        anchors.right: inspector.left
    }
    KeyframePropertiesView {
        id: inspector
        anchors.top: toolbar.bottom
        anchors.bottom: parent.bottom
        anchors.right: parent.right
        width: 300
        screen: view.screen
    }
    LeaveAlert {
        id: leaveAlert
        isExporting: view.isExporting
    }
}
