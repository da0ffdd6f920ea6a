import QtQuick
import Tavi.Ui

/// The export that runs or has ended, in a pill over the canvas.
FloatingPanel {
    id: view

    required property QtObject screen

    visible: screen.exportState !== ""
    width: 260
    height: body.height + 24
    cornerRadius: 14

    Loader {
        id: body
        x: 14
        y: 12
        width: parent.width - 28
        sourceComponent: view.screen.exportState === "exporting" ? exporting
                       : view.screen.exportState === "finished" ? finished
                       : view.screen.exportState === "failed" ? failed : null
    }
    Component {
        id: exporting
        ExportProgressView {
            screen: view.screen
        }
    }
    Component {
        id: finished
        Column {
            spacing: 10

            Item {
                width: parent.width
                height: 26

                Icon {
                    id: mark
                    anchors.verticalCenter: parent.verticalCenter
                    name: "checkmark.circle.fill"
                    size: 16
                    color: AppPalette.success
                }
                TextLabel {
                    anchors.left: mark.right
                    anchors.leftMargin: 8
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("Export Complete")
                    weight: Font.Medium
                }
                IconButton {
                    anchors.right: parent.right
                    symbol: "xmark"
                    symbolSize: 10
                    boxWidth: 26
                    hint: qsTr("Close")
                    onClicked: view.screen.dismissExport()
                }
            }
            PlainButton {
                width: parent.width
                symbol: "folder"
                text: qsTr("Show in Finder")
                textSize: 12
                onClicked: view.screen.revealExport()
            }
        }
    }
    Component {
        id: failed
        Column {
            spacing: 10

            Row {
                spacing: 8

                Icon {
                    anchors.verticalCenter: parent.verticalCenter
                    name: "xmark.circle.fill"
                    size: 16
                    color: AppPalette.danger
                }
                TextLabel {
                    text: qsTr("Export Failed")
                    weight: Font.Medium
                }
            }
            TextLabel {
                width: parent.width
                text: view.screen.exportError
                size: 11
                color: AppPalette.secondaryText
                wrapMode: Text.Wrap
            }
            PlainButton {
                width: parent.width
                text: qsTr("Dismiss")
                textSize: 12
                onClicked: view.screen.dismissExport()
            }
        }
    }
}
