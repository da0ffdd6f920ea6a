import QtQuick
import Tavi.Ui

/// The bar on top of a screen, with a rule under it.
Rectangle {
    default property alias content: inside.data

    implicitHeight: Theme.headerHeight
    color: AppPalette.surface

    Item {
        id: inside
        anchors.fill: parent
        anchors.leftMargin: Theme.screenMargin
        anchors.rightMargin: Theme.screenMargin
    }
    Rule {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
    }
}
