import QtQuick
import Tavi.Ui

/// One recording of the library.
Item {
    id: card

    /// id, url, name, dateText, durationText.
    required property var item
    required property QtObject thumbnails
    required property bool selected
    /// Where the keyboard is.
    required property bool current
    /// The selection is being changed by the keyboard, which moves a little more slowly.
    required property bool selectedByKeys
    signal clicked(bool toggles)
    signal menuAsked(real x, real y)

    readonly property url url: item.url
    readonly property alias picture: picture
    readonly property alias selection: selection

    function load() {
        picture.source = thumbnails.image(url)
        if (picture.empty)
            thumbnails.want(url)
    }

    onUrlChanged: load()
    onSelectedChanged: selection.isSlow = selectedByKeys
    GridView.onPooled: thumbnails.forget(url)
    GridView.onReused: load()
    Component.onDestruction: thumbnails?.forget(url)

    Accessible.role: Accessible.ListItem
    Accessible.name: item.name
    Accessible.description: item.durationText + ", " + item.dateText
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.onPressAction: clicked(false)

    Connections {
        target: card.thumbnails

        function onReady(url: url) {
            if (url.toString() === card.url.toString())
                picture.source = card.thumbnails.image(url)
        }
    }
    Spring {
        id: selection

        property bool isSlow: false

        to: card.selected ? 1 : 0
        response: isSlow ? 0.3 : 0.25
        damping: isSlow ? 0.85 : 0.8
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.largeRadius
        color: AppPalette.surface
    }
    Rectangle {
        anchors.fill: parent
        radius: Theme.largeRadius
        color: AppPalette.at(AppPalette.accent, 0.08)
        opacity: Math.max(0, Math.min(1, selection.value))
        visible: opacity > 0
    }
    Icon {
        anchors.horizontalCenter: parent.horizontalCenter
        y: 90 - height / 2
        visible: picture.empty
        name: "film"
        size: 28
        color: AppPalette.secondaryText
        opacity: 0.4
    }
    Picture {
        id: picture
        width: parent.width
        height: 180
        topRadius: Theme.largeRadius
    }
    Rectangle {
        anchors.right: picture.right
        anchors.bottom: picture.bottom
        anchors.margins: 8
        width: duration.implicitWidth + 14
        height: 20
        radius: 10
        color: AppPalette.at(AppPalette.black, 0.7)

        TextLabel {
            id: duration
            anchors.centerIn: parent
            text: card.item.durationText
            size: 11
            weight: Font.Medium
            tabular: true
            color: AppPalette.white
            Accessible.ignored: true
        }
    }
    Rectangle {
        x: 8
        y: 8
        width: 22
        height: 22
        radius: 11
        color: AppPalette.accent
        scale: selection.value
        opacity: Math.max(0, Math.min(1, selection.value))
        visible: opacity > 0

        Icon {
            anchors.centerIn: parent
            name: "checkmark"
            size: 11
            color: AppPalette.background
        }
    }
    TextLabel {
        id: name
        x: 12
        y: 189
        width: parent.width - 24
        text: card.item.name
        weight: Font.Medium
        userText: true
        Accessible.ignored: true
    }
    TextLabel {
        x: 12
        y: 209
        width: parent.width - 24
        text: card.item.dateText
        size: 11
        color: AppPalette.secondaryText
        userText: true
        Accessible.ignored: true
    }
    Rectangle {
        anchors.fill: parent
        radius: Theme.largeRadius
        color: AppPalette.clear
        border.width: 1
        border.color: mouse.containsMouse ? AppPalette.accent
                    : card.selected ? AppPalette.at(AppPalette.accent, 0.4) : AppPalette.border
    }
    FocusRing {
        shown: card.current
        cornerRadius: Theme.largeRadius
    }
    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        onClicked: event => {
            if (event.button === Qt.RightButton)
                card.menuAsked(event.x, event.y)
            else
                card.clicked(event.modifiers & Qt.ControlModifier)
        }
    }
}
