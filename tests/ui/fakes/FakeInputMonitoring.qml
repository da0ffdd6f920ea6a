import QtQuick

QtObject {
    property bool isGranted: false
    property string accessCommand: ""
    property var calls: []

    function startProbe() {
        calls.push("startProbe")
    }
    function stopProbe() {
        calls.push("stopProbe")
    }
    function openInputMonitoringSettings() {
        calls.push("openInputMonitoringSettings")
    }
}
