import QtQuick
import Tavi.Editor

/// The editor of a made-up take; not a picture of its own.
EditorView {
    implicitWidth: 1280
    implicitHeight: 800
    appViewModel: QtObject {
        property bool showSettings: false

        function leaveEditor() {}
    }
    screen: testEditor.screen
}
