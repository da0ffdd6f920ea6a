import QtQuick
import Tavi.Editor
import "../fakes"

EditorScene {
    id: scene

    component State: QtObject {
        property string exportState
        property real exportProgress: 0.42
        property string exportPercentText: "42%"
        property string exportRemainingText: "1m 5s left"
        property string exportError: "No space left on the disk. Free some space, or choose another folder: /home/ada/Videos"
    }

    Column {
        x: 380
        y: 110
        spacing: 24

        ExportOverlayView { screen: State { exportState: "exporting" } }
        ExportOverlayView { screen: State { exportState: "finished" } }
        ExportOverlayView { screen: State { exportState: "failed" } }
    }
}
