import QtQuick

QtObject {
    property string currentMode: "home"
    property bool showSettings: false
    property string notice: ""
    property string editingPath: "/home/ada/Documents/Tavlin/Recording_2026-11-20_15-04-05"
    property string editingName: "Recording_2026-11-20_15-04-05"

    /// What was called, in order.
    property var calls: []

    function newRecording() {
        calls.push("newRecording")
        currentMode = "recording"
    }
    function openRecording(url: url) {
        calls.push("open " + url)
        currentMode = "editing"
    }
    function leaveRecording() {
        calls.push("leaveRecording")
        currentMode = "home"
    }
    function leaveEditor() {
        calls.push("leaveEditor")
        currentMode = "home"
    }
    function requestPermission() {
        calls.push("requestPermission")
    }
    function recheckPermission() {
        calls.push("recheckPermission")
    }
    function reveal(path: string) {
        calls.push("reveal " + path)
    }
}
