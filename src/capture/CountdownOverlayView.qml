import QtQuick
import Tavi.Ui

/// The seconds left, over the area that will be recorded.
Rectangle {
    id: view

    required property int value

    /// Where the copies stand that make a shadow of radius 20, and how dark each is: half a black
    /// in all.
    readonly property var shadow: {
        const copies = [{ x: 0, y: 0, opacity: 1 }]
        for (const [radius, count] of [[5, 6], [11, 10], [17, 15]])
            for (let i = 0; i < count; ++i)
                copies.push({ x: radius * Math.cos(2 * Math.PI * i / count),
                              y: radius * Math.sin(2 * Math.PI * i / count),
                              opacity: Math.exp(-radius * radius / 200) })
        const all = copies.reduce((sum, copy) => sum + copy.opacity, 0)
        return copies.map(copy => ({ x: copy.x, y: copy.y, opacity: 0.5 * copy.opacity / all }))
    }

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

        // A soft shadow out of faint copies in rings, as a bell curve weighs them: no effect is
        // needed for it. The copies stand closer together than a stroke is wide.
        Repeater {
            model: view.shadow

            TextLabel {
                required property var modelData

                x: modelData.x
                y: modelData.y + 4
                text: digits.text
                size: 150
                weight: Font.ExtraLight
                tabular: true
                color: AppPalette.at(AppPalette.black, modelData.opacity)
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
