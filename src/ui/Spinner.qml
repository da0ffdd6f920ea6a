import QtQuick
import QtQuick.Shapes
import Tavi.Ui

/// Something is going on, nobody knows how long.
Item {
    id: spinner

    property real size: 20

    implicitWidth: size
    implicitHeight: size
    Accessible.role: Accessible.Animation
    Accessible.name: qsTr("Loading")

    component Arc: Shape {
        id: arc

        required property color tone
        required property real sweep

        anchors.fill: parent

        ShapePath {
            strokeColor: arc.tone
            strokeWidth: 2
            fillColor: AppPalette.clear
            capStyle: ShapePath.RoundCap

            PathAngleArc {
                centerX: spinner.size / 2
                centerY: spinner.size / 2
                radiusX: spinner.size / 2 - 2
                radiusY: spinner.size / 2 - 2
                startAngle: -90
                sweepAngle: arc.sweep
            }
        }
    }

    Arc {
        tone: AppPalette.at(AppPalette.white, 0.1)
        sweep: 360
    }
    Arc {
        tone: AppPalette.secondaryText
        sweep: 90

        RotationAnimator on rotation {
            from: 0
            to: 360
            duration: 900
            loops: Animation.Infinite
            running: spinner.visible && !Theme.still
        }
    }
}
