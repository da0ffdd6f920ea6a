import QtQuick
import Tavi.Ui

/// Size and rate of the film.
Column {
    id: view

    required property QtObject settings

    spacing: 18

    Labelled {
        width: parent.width
        label: qsTr("Resolution")

        ChoiceFlow {
            width: parent.width
            name: qsTr("Resolution")
            choices: view.settings.resolutions.map(text => ({ text: text }))
            currentIndex: view.settings.resolution
            onChosen: index => view.settings.chooseResolution(index)
        }
        Row {
            visible: view.settings.isCustomResolution
            width: parent.width
            spacing: 8

            FocusTrackingTextField {
                width: (parent.width - link.width - 2 * parent.spacing) / 2
                name: qsTr("Width")
                subject: view.settings
                shown: view.settings.customWidth
                onBlurred: text => view.settings.commitWidth(text)
            }
            Icon {
                id: link
                anchors.verticalCenter: parent.verticalCenter
                name: "link"
                size: 11
                color: AppPalette.secondaryText
            }
            FocusTrackingTextField {
                width: (parent.width - link.width - 2 * parent.spacing) / 2
                name: qsTr("Height")
                subject: view.settings
                shown: view.settings.customHeight
                onBlurred: text => view.settings.commitHeight(text)
            }
        }
    }
    Labelled {
        width: parent.width
        label: qsTr("Frame Rate")

        ChoiceFlow {
            width: parent.width
            name: qsTr("Frame Rate")
            choices: view.settings.frameRates.map(text => ({ text: text }))
            currentIndex: view.settings.frameRate
            onChosen: index => view.settings.chooseFrameRate(index)
        }
        FocusTrackingTextField {
            visible: view.settings.isCustomFPS
            width: parent.width
            name: qsTr("Frames per second")
            subject: view.settings
            shown: view.settings.customFPSText
            onBlurred: text => view.settings.commitFPS(text)
        }
    }
}
