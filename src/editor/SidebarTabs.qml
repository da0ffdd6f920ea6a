import QtQuick
import Tavi.Ui

/// The inspector's tabs: a symbol over a small name.
Row {
    id: tabs

    property int currentIndex: 0
    signal chosen(int index)

    readonly property var entries: [
        { text: qsTr("Style"), symbol: "paintbrush.fill" },
        { text: qsTr("Zoom"), symbol: "sparkle.magnifyingglass" },
        { text: qsTr("Export"), symbol: "square.and.arrow.up" }
    ]

    height: 48
    Accessible.role: Accessible.PageTabList
    Accessible.name: qsTr("Inspector")

    function step(by: int) {
        const next = Math.max(0, Math.min(entries.length - 1, currentIndex + by))
        if (next === currentIndex)
            return
        repeater.itemAt(next).forceActiveFocus(Qt.TabFocusReason)
        chosen(next)
    }

    Keys.onLeftPressed: step(-1)
    Keys.onRightPressed: step(1)
    Keys.onUpPressed: step(-1)
    Keys.onDownPressed: step(1)

    Repeater {
        id: repeater
        model: tabs.entries

        ButtonBase {
            id: tab

            required property int index
            required property var modelData
            readonly property bool current: index === tabs.currentIndex

            width: tabs.width / tabs.entries.length
            height: tabs.height
            text: modelData.text
            cornerRadius: 4
            focusPolicy: current || activeFocus ? Qt.TabFocus : Qt.NoFocus
            foreground: current ? AppPalette.accent
                      : hovered ? AppPalette.primaryText : AppPalette.secondaryText
            onClicked: tabs.chosen(index)

            markable: true
            marked: current
            Accessible.role: Accessible.PageTab
            Accessible.selectable: true
            Accessible.selected: current

            background: Item {}
            contentItem: Item {
                Column {
                    anchors.centerIn: parent
                    spacing: 4

                    Icon {
                        anchors.horizontalCenter: parent.horizontalCenter
                        name: tab.modelData.symbol
                        size: 12
                        color: tab.foreground
                    }
                    TextLabel {
                        anchors.horizontalCenter: parent.horizontalCenter
                        text: tab.text
                        Accessible.ignored: true
                        size: 9
                        weight: Font.Medium
                        color: tab.foreground
                    }
                }
            }
        }
    }
}
