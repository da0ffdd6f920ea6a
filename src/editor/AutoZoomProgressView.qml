import QtQuick
import Tavi.Ui

/// How far the generation of zooms is.
Column {
    id: view

    required property QtObject autoZoom

    spacing: 8

    Row {
        visible: !view.autoZoom.hasProgress
        spacing: 8

        Spinner {
            size: 16
        }
        TextLabel {
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Starting analysis...")
            size: 11
            weight: Font.Medium
            color: AppPalette.secondaryText
        }
    }
    TextLabel {
        visible: view.autoZoom.hasProgress
        text: view.autoZoom.phaseText
        size: 11
    }
    Row {
        visible: view.autoZoom.hasProgress
        width: parent.width
        spacing: 8

        ProgressLine {
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width - percent.width - parent.spacing
            name: view.autoZoom.phaseText
            value: view.autoZoom.overallProgress
        }
        TextLabel {
            id: percent
            text: view.autoZoom.percentText
            size: 10
            tabular: true
        }
    }
}
