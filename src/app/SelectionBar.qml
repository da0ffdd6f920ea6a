import QtQuick
import Tavi.Ui

/// What can be done with the selected recordings; it stands in place of the
/// header's right part.
Row {
    id: bar

    required property QtObject homeViewModel
    signal deleteAsked

    spacing: 8

    TextLabel {
        anchors.verticalCenter: parent.verticalCenter
        text: qsTr("%1 selected").arg(bar.homeViewModel.selectedCount)
        size: 12
        color: AppPalette.secondaryText
        rightPadding: 4
    }
    PlainButton {
        anchors.verticalCenter: parent.verticalCenter
        text: bar.homeViewModel.allSelected ? qsTr("Deselect All") : qsTr("Select All")
        textSize: 12
        onClicked: bar.homeViewModel.allSelected ? bar.homeViewModel.clearSelection()
                                                 : bar.homeViewModel.selectAll()
    }
    PlainButton {
        anchors.verticalCenter: parent.verticalCenter
        destructive: true
        text: qsTr("Delete")
        textSize: 12
        symbol: "trash"
        symbolSize: 12
        onClicked: bar.deleteAsked()
    }
    IconButton {
        anchors.verticalCenter: parent.verticalCenter
        boxWidth: 24
        symbol: "xmark"
        symbolSize: 11
        hint: qsTr("Clear selection")
        onClicked: bar.homeViewModel.clearSelection()
    }
}
