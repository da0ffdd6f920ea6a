import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// What every button does: hover, press, the hand, the ring, Return as well as
/// Space, a tip where it is only an icon, and its name for assistive technology.
T.AbstractButton {
    id: button

    /// Told by a tip; also the name of a button without text.
    property string hint: ""
    property string symbol: ""
    property real symbolSize: 13
    property real textSize: 13
    property int textWeight: Font.Medium
    property real cornerRadius: Theme.smallRadius
    property color foreground: AppPalette.primaryText
    /// For assistive technology: whether it can be chosen, and is.
    property bool markable: false
    property bool marked: false
    /// Pressed since the pointer came: whoever did that needs no tip any more.
    property bool wasPressed: false
    /// Null while the pointer is elsewhere.
    readonly property alias tip: tipLoader.item

    /// What a click does.
    function press() {
        if (enabled)
            clicked()
    }

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    hoverEnabled: true
    onPressed: wasPressed = true
    onHoveredChanged: wasPressed = false
    focusPolicy: Qt.TabFocus
    opacity: enabled ? 1 : 0.5

    Accessible.role: Accessible.Button
    Accessible.checkable: markable
    Accessible.checked: marked
    // When assistive technology comes, Qt 6.4 makes a plain button of it again.
    Accessible.onCheckableChanged: {
        if (Accessible.checkable !== markable)
            Accessible.checkable = Qt.binding(() => markable)
    }
    Accessible.onCheckedChanged: {
        if (Accessible.checked !== marked)
            Accessible.checked = Qt.binding(() => marked)
    }
    Accessible.name: text !== "" ? text : hint
    Accessible.description: text !== "" ? hint : ""
    Accessible.onPressAction: press()

    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()

    contentItem: Item {
        implicitWidth: row.implicitWidth
        implicitHeight: Math.max(row.implicitHeight, 16)

        Row {
            id: row
            anchors.centerIn: parent
            spacing: Math.round(button.textSize * 0.45)

            Icon {
                anchors.verticalCenter: parent.verticalCenter
                visible: button.symbol !== ""
                name: button.symbol
                size: button.symbolSize
                color: button.foreground
            }
            TextLabel {
                anchors.verticalCenter: parent.verticalCenter
                visible: button.text !== ""
                text: button.text
                size: button.textSize
                weight: button.textWeight
                color: button.foreground
                Accessible.ignored: true
            }
        }
    }

    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }
    FocusRing {
        shown: button.visualFocus
        cornerRadius: button.cornerRadius
    }
    Loader {
        id: tipLoader
        active: button.hint !== "" && button.hovered
        sourceComponent: HoverTip {
            parent: button
            text: button.hint
            shown: button.hovered && !button.wasPressed
        }
    }
}
