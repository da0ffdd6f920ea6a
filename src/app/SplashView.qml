import QtQuick
import QtQuick.Shapes
import Tavi.Ui

/// The animated start.
Rectangle {
    id: view

    property bool appeared: false
    property bool glowPulse: false
    color: AppPalette.background
    Component.onCompleted: appeared = true

    Timer {
        interval: 800
        running: view.appeared && !Theme.still
        onTriggered: view.glowPulse = true
    }

    Shape {
        id: glow
        anchors.centerIn: parent
        width: 400
        height: 400
        opacity: view.appeared ? 1 : 0
        scale: 0.94
        Behavior on opacity { NumberAnimation { duration: 800; easing.type: Easing.OutQuad } }

        SequentialAnimation on scale {
            running: view.glowPulse
            loops: Animation.Infinite
            NumberAnimation { from: 0.94; to: 1.08; duration: 3500; easing.type: Easing.InOutQuad }
            NumberAnimation { from: 1.08; to: 0.94; duration: 3500; easing.type: Easing.InOutQuad }
        }

        ShapePath {
            strokeColor: AppPalette.clear
            fillGradient: RadialGradient {
                centerX: 200
                centerY: 200
                centerRadius: 200
                focalX: centerX
                focalY: centerY
                focalRadius: 20
                GradientStop { position: 0; color: AppPalette.at(AppPalette.accent, 0.12) }
                GradientStop { position: 0.5; color: AppPalette.at(AppPalette.accent, 0.03) }
                GradientStop { position: 1; color: AppPalette.at(AppPalette.accent, 0) }
            }
            PathAngleArc {
                centerX: 200
                centerY: 200
                radiusX: 200
                radiusY: 200
                sweepAngle: 360
            }
        }
    }

    Column {
        anchors.centerIn: parent
        spacing: 24

        Item {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 120
            height: 120
            scale: 0.5 + 0.5 * logoSpring.value
            opacity: Math.min(1, logoSpring.value)

            Spring {
                id: logoSpring
                to: view.appeared ? 1 : 0
                response: 0.8
                damping: 0.68
                delay: 0.1
            }
            Shadow {
                anchors.fill: parent
                radius: 30
                offsetY: 10
                cornerRadius: 26
                color: AppPalette.at(AppPalette.accent, 0.2)
            }
            Logo {
                anchors.fill: parent
            }
        }
        TextLabel {
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.horizontalCenterOffset: 4 // the spacing after the last letter
            text: "TAVI"
            size: 22
            weight: Font.Medium
            font.letterSpacing: 8
            opacity: Math.min(1, wordSpring.value)
            transform: Translate { y: 8 * (1 - wordSpring.value) }
            Accessible.ignored: true

            Spring {
                id: wordSpring
                to: view.appeared ? 1 : 0
                response: 0.7
                damping: 0.8
                delay: 0.3
            }
        }
    }
}
