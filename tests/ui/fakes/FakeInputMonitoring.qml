import QtQuick

QtObject {
    property bool isGranted: false
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
