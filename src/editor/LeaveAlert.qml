import QtQuick
import Tavi.Ui

/// Asks before a running export is lost. What was to be done is done at once where none runs.
AlertDialog {
    id: alert

    required property bool isExporting
    property var next: null

    function leave(go: var) {
        if (!isExporting) {
            go()
            return
        }
        next = go
        open()
    }

    title: qsTr("Stop Exporting?")
    text: qsTr("The film isn't finished yet. Leaving the recording now cancels its export.")
    cancelText: qsTr("Keep Exporting")
    confirmText: qsTr("Stop and Leave")
    destructive: true
    onIsExportingChanged: if (!isExporting) close() // nothing is lost any more
    onConfirmed: next()
}
