import QtQuick
import Tavi.Editor
import Tavi.Ui

/// The whole recording at once: ruler, lane of trim, cuts and zooms, lane of curves.
Rectangle {
    id: view

    required property QtObject timeline
    readonly property real padding: 16
    readonly property real lanesTop: 21
    readonly property real upperHeight: 109

    implicitHeight: 240
    color: AppPalette.background

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Timeline")

    Binding {
        target: view.timeline
        property: "trackWidth"
        value: Math.max(0, view.width - 2 * view.padding)
    }
    Rectangle {
        width: parent.width
        height: 20
        color: AppPalette.surface
    }
    Rule {
        y: 20
        width: parent.width
    }
    Rule {
        y: view.lanesTop + view.upperHeight
        width: parent.width
        opacity: 0.6
    }

    TimelineMarks {
        timeline: view.timeline
        part: TimelineLayer.Ground
    }
    Rectangle { // what has been played
        visible: view.timeline.hasContent
        x: view.padding
        y: view.lanesTop
        width: view.timeline.playheadX
        height: view.upperHeight
        color: AppPalette.at(AppPalette.accent, 0.06)
    }
    TimelineMarks {
        timeline: view.timeline
        part: TimelineLayer.Marks
    }
    Rectangle { // under the pointer
        visible: pointer.containsMouse && pointer.isOnLane && view.timeline.hasContent
        x: Math.round(Math.max(view.padding, Math.min(view.width - view.padding, pointer.mouseX)))
        y: view.lanesTop
        width: 1
        height: parent.height - y
        color: AppPalette.at(AppPalette.white, 0.12)
    }
    TimelineMarks {
        timeline: view.timeline
        part: TimelineLayer.Playhead
        anchors.fill: undefined
        x: view.padding + view.timeline.playheadX - width / 2
        width: 12
        height: parent.height
    }
    TimelineMarks {
        timeline: view.timeline
        part: TimelineLayer.Handles
    }
    Repeater {
        model: view.timeline.stops

        TimelineStop {
            stops: view.timeline.stops
            trackLeft: view.padding
            laneTops: [view.lanesTop, view.lanesTop + view.upperHeight]
        }
    }
    TimelinePointer {
        id: pointer
        anchors.fill: parent
        timeline: view.timeline
        padding: view.padding
        lanesTop: view.lanesTop
        upperHeight: view.upperHeight
    }
}
