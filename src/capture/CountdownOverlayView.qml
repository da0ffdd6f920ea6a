import QtQuick
import Tavi.Ui

/// The seconds left, over the area that will be recorded.
Rectangle {
    id: view

    required property int value

    color: AppPalette.at(AppPalette.black, 0.35)

    Column {
        anchors.centerIn: parent
        spacing: 16

        Item {
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.max(old.implicitWidth, number.implicitWidth)
            height: number.implicitHeight

            // The old number leaves as the new one comes, the way counters of digits roll.
            Digits {
                id: old
                opacity: 1 - change.progress
                y: 24 * change.progress
            }
            Digits {
                id: number
                opacity: change.progress
                y: -24 * (1 - change.progress)
            }
        }
        TextLabel {
            anchors.horizontalCenter: parent.horizontalCenter
            text: qsTr("Get ready...")
            size: 18
            weight: Font.Medium
            color: AppPalette.at(AppPalette.white, 0.7)
        }
    }

    component Digits: Item {
        property alias text: digits.text

        implicitWidth: digits.implicitWidth
        implicitHeight: digits.implicitHeight
        anchors.horizontalCenter: parent.horizontalCenter

        // A soft shadow out of a few faint copies: no effect is needed for it.
        Repeater {
            model: [[0, 4, 0.16], [-3, 4, 0.1], [3, 4, 0.1], [0, 8, 0.1], [-2, 1, 0.08], [2, 1, 0.08],
                    [-5, 6, 0.06], [5, 6, 0.06], [0, 12, 0.05]]

            TextLabel {
                required property var modelData

                x: modelData[0]
                y: modelData[1]
                text: digits.text
                size: 150
                weight: Font.ExtraLight
                tabular: true
                color: AppPalette.at(AppPalette.black, modelData[2])
                Accessible.ignored: true
            }
        }
        TextLabel {
            id: digits
            size: 150
            weight: Font.ExtraLight
            tabular: true
            color: AppPalette.white
        }
    }

    NumberAnimation {
        id: change

        property real progress: 1

        target: change
        property: "progress"
        from: 0
        to: 1
        duration: 300
        easing.type: Easing.InOutQuad
    }
    Component.onCompleted: number.text = value
    onValueChanged: {
        if (number.text === "")
            return // the first number is there from the start
        old.text = number.text
        number.text = value
        change.restart()
    }
}
