import QtQuick
import Tavi.Ui

/// Zooms: their generation, and the keyframe that is selected.
Column {
    id: tab

    required property QtObject screen
    required property bool showZoomDetails
    signal detailsToggled
    readonly property QtObject zoom: screen.zoom

    spacing: 12

    SectionTitle {
        text: qsTr("AUTO ZOOM")
    }
    SliderRow {
        width: parent.width
        label: qsTr("Intensity")
        valueText: tab.zoom.intensityText
        from: 0
        to: 1
        stepSize: 0.1
        value: tab.zoom.intensity
        onMoved: value => tab.zoom.intensity = value
    }
    AutoZoomProgressView {
        width: parent.width
        visible: tab.screen.autoZoom.isGenerating
        autoZoom: tab.screen.autoZoom
    }
    AccentButton {
        width: parent.width
        visible: !tab.screen.autoZoom.isGenerating
        symbol: "wand.and.stars"
        text: qsTr("Generate")
        onClicked: tab.screen.editor.generateKeyframes()
    }
    PlainButton {
        width: parent.width
        visible: !tab.screen.autoZoom.isGenerating && tab.zoom.hasKeyframes
        symbol: "xmark"
        symbolSize: 10
        text: qsTr("Clear")
        textSize: 12
        cornerRadius: Theme.smallRadius
        onClicked: tab.screen.editor.clearKeyframes()
    }
    TextLabel {
        visible: text !== "" && !tab.screen.autoZoom.isGenerating
        text: tab.zoom.resultText
        size: 10
        color: AppPalette.secondaryText
    }
    Rule {
        width: parent.width
    }
    Loader {
        width: parent.width
        sourceComponent: tab.zoom.hasSelection ? keyframe : nothing
    }

    Component {
        id: nothing
        NoKeyframe {}
    }
    Component {
        id: keyframe
        KeyframeControls {
            zoom: tab.zoom
            showZoomDetails: tab.showZoomDetails
            onDetailsToggled: tab.detailsToggled()
        }
    }
}
