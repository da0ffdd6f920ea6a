import QtQuick
import Tavi.Ui

/// A display or a window that can be recorded.
Item {
    id: card

    required property string symbol
    required property string title
    required property string subtitle
    property var thumbnail
    /// Stands where the picture would, as long as there is none.
    property string placeholder: ""
    /// Names at 12 and 10 points instead of 13 and 11.
    property bool small: false
    required property bool selected
    required property bool current
    signal clicked

    Accessible.role: Accessible.RadioButton
    Accessible.name: [title, placeholder, subtitle].filter(part => part !== "").join(", ")
    Accessible.checkable: true
    Accessible.checked: selected
    Accessible.onPressAction: clicked()

    Rectangle {
        anchors.fill: parent
        radius: Theme.largeRadius
        color: card.selected ? AppPalette.at(AppPalette.accent, 0.08)
             : mouse.containsMouse ? AppPalette.raisedSurface : AppPalette.surface
        border.width: card.selected ? 1.5 : 1
        border.color: card.selected ? AppPalette.at(AppPalette.accent, 0.4) : AppPalette.border
        Behavior on color { ColorAnimation { duration: Theme.hover } }
    }
    Rectangle {
        anchors.fill: picture
        radius: 6
        color: AppPalette.at(AppPalette.white, 0.04)
        visible: picture.empty
    }
    Picture {
        id: picture
        x: 8
        y: 8
        width: parent.width - 16
        height: Math.round(card.width * 0.6) - 8
        topRadius: 6
        bottomRadius: 6
        stretched: true
        source: card.thumbnail
    }
    Column {
        anchors.centerIn: picture
        visible: picture.empty
        spacing: 8

        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            name: card.symbol
            size: 28
            color: AppPalette.at(AppPalette.white, 0.25)
        }
        TextLabel {
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(implicitWidth, picture.width - 16)
            visible: text !== ""
            text: card.placeholder
            size: 12
            color: AppPalette.secondaryText
            userText: true
            Accessible.ignored: true
        }
    }
    Icon {
        id: icon
        x: 12
        anchors.verticalCenter: name.verticalCenter
        name: card.symbol
        size: 11
        color: card.selected ? AppPalette.accent : AppPalette.secondaryText
    }
    TextLabel {
        id: name
        x: 32
        y: picture.y + picture.height + (card.small ? 9 : 8)
        width: card.width - x - 12 - (card.small ? size.implicitWidth + 8 : 0)
        text: card.title
        size: card.small ? 12 : 13
        weight: Font.Medium
        userText: true
        Accessible.ignored: true
    }
    TextLabel {
        id: size
        anchors.right: parent.right
        anchors.rightMargin: 12
        anchors.baseline: name.baseline
        visible: card.small
        text: card.small ? card.subtitle : ""
        size: 10
        tabular: true
        color: AppPalette.secondaryText
        Accessible.ignored: true
    }
    TextLabel {
        x: 32
        anchors.top: name.bottom
        anchors.topMargin: 2
        width: card.width - x - 12
        visible: !card.small && text !== ""
        text: card.subtitle
        size: 11
        color: AppPalette.secondaryText
        userText: true
        Accessible.ignored: true
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
        onClicked: card.clicked()
    }
}
