import QtQuick
import Tavi.Ui

/// The selected keyframe.
Column {
    id: view

    required property QtObject zoom
    required property bool showZoomDetails
    signal detailsToggled

    spacing: 12

    Column {
        spacing: 4

        SectionTitle {
            text: view.zoom.title
        }
        TextLabel {
            text: view.zoom.startText + " – " + view.zoom.endText
            size: 11
            tabular: true
            color: AppPalette.secondaryText
        }
    }
    SliderRow {
        width: parent.width
        label: qsTr("Speed")
        valueText: view.zoom.speedText
        from: 0.1
        to: 2
        stepSize: 0.1
        value: view.zoom.speed
        onMoved: value => view.zoom.speed = value
    }
    Labelled {
        width: parent.width
        label: qsTr("Animation")

        ChoiceFlow {
            width: parent.width
            name: qsTr("Animation")
            choices: view.zoom.easings.map(text => ({ text: text }))
            currentIndex: view.zoom.easing
            onChosen: index => view.zoom.easing = index
        }
    }
    AccentButton {
        width: parent.width
        tone: AppPalette.at(AppPalette.danger, 0.8)
        strength: 0.1
        symbol: "trash"
        text: qsTr("Delete")
        onClicked: view.zoom.deleteKeyframe()
    }
    PlainButton {
        outlined: false
        leftPadding: 0
        symbol: view.showZoomDetails ? "chevron.down" : "chevron.right"
        symbolSize: 9
        text: qsTr("Details")
        textSize: 11
        foreground: hovered ? AppPalette.primaryText : AppPalette.secondaryText
        onClicked: view.detailsToggled()
    }
    Column {
        visible: view.showZoomDetails
        width: parent.width
        spacing: 6

        Repeater {
            model: ["W", "H", "X", "Y"]

            Item {
                required property int index
                required property string modelData

                width: parent.width
                height: 16

                TextLabel {
                    text: parent.modelData
                    size: 11
                    color: AppPalette.secondaryText
                }
                TextLabel {
                    anchors.right: parent.right
                    text: view.zoom.details[parent.index] ?? ""
                    size: 11
                    tabular: true
                }
            }
        }
    }
}
