import QtQuick
import Tavi.Ui

/// One background to choose.
ButtonBase {
    id: tile

    required property var choice
    required property bool chosen
    property real pictureHeight: 52
    property bool labelled: true

    hint: labelled ? "" : choice.text
    text: labelled ? choice.text : ""
    implicitHeight: pictureHeight + (labelled ? 18 : 0)

    markable: true
    marked: chosen
    Accessible.role: Accessible.RadioButton

    background: Item {}
    contentItem: Item {
        Picture {
            id: picture
            width: parent.width
            height: tile.pictureHeight
            source: tile.choice.picture
            topRadius: tile.cornerRadius
            bottomRadius: tile.cornerRadius
        }
        Icon {
            anchors.centerIn: picture
            visible: name !== ""
            name: tile.choice.symbol ?? ""
            size: 16
            color: AppPalette.at(AppPalette.white, 0.15)
        }
        Rectangle {
            anchors.fill: picture
            radius: tile.cornerRadius
            color: AppPalette.clear
            border.width: tile.chosen ? 2 : 1
            border.color: tile.chosen ? AppPalette.accent
                                      : AppPalette.at(AppPalette.white, tile.hovered ? 0.3 : 0.12)
        }
        TextLabel {
            visible: tile.labelled
            anchors.bottom: parent.bottom
            anchors.horizontalCenter: parent.horizontalCenter
            text: tile.text
            Accessible.ignored: true
            size: 10
            weight: Font.Medium
            color: tile.chosen ? AppPalette.accent
                 : tile.hovered ? AppPalette.primaryText : AppPalette.secondaryText
        }
    }
}
