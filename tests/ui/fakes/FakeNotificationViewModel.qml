import QtQuick

QtObject {
    property bool hasUnread: false
    property var currentNotifications: []
    property var opened: []

    function fill() {
        hasUnread = true
        currentNotifications = [{
            id: "1.5.0-saffron",
            version: "1.5",
            title: "Tavlin 1.5 is here!",
            body: "Check out what's new in this release.",
            url: "https://example.org/changelog/saffron"
        }]
    }
    function markAsRead() {
        hasUnread = false
    }
    function open(url: url) {
        opened.push(String(url))
    }
}
