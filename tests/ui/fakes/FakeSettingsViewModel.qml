import QtQuick

QtObject {
    property string locationText: "/home/ada/Documents/Tavlin"
    property string storageSizeText: "1.34 GB"
    property string versionText: "0.1.0"
    property string buildText: "1"
    property var calls: []

    function appear() {
        calls.push("appear")
    }
    function disappear() {
        calls.push("disappear")
    }
    function revealLibrary() {
        calls.push("revealLibrary")
    }
    function checkForUpdates() {
        calls.push("checkForUpdates")
    }
}
