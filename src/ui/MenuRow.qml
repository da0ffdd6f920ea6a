import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// One command of a menu.
T.MenuItem {
    id: row

    property string symbol: ""
    property bool destructive: false
    readonly property color foreground: destructive ? AppPalette.danger : AppPalette.primaryText

    implicitWidth: 44 + label.implicitWidth
    implicitHeight: 28
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus

    Accessible.role: Accessible.MenuItem
    Accessible.name: text

    contentItem: Item {
        Icon {
            x: 8
            anchors.verticalCenter: parent.verticalCenter
            name: row.symbol
            size: 12
            color: row.foreground
        }
        TextLabel {
            id: label
            x: 30
            anchors.verticalCenter: parent.verticalCenter
            text: row.text
            Accessible.ignored: true
            size: 12
            color: row.foreground
        }
    }
    background: Rectangle {
        radius: Theme.smallRadius
        color: row.highlighted ? AppPalette.at(row.destructive ? AppPalette.danger : AppPalette.white,
                                               row.down ? 0.18 : 0.1)
                               : AppPalette.clear
    }
}
