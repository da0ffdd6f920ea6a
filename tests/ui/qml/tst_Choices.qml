import QtQuick
import QtTest
import Tavi.Ui

Item {
    width: 500
    height: 200

    ChoiceRow {
        id: row
        width: 400
        name: "Speed"
        choices: [{ text: "None" }, { text: "Slow" }, { text: "Medium" }]
        onChosen: index => currentIndex = index
    }
    SegmentedSwitch {
        id: segments
        y: 60
        name: "Source"
        choices: [{ text: "Display", symbol: "display" }, { text: "Window", symbol: "macwindow" }]
        onChosen: index => currentIndex = index
    }

    TestCase {
        name: "Choices"
        when: windowShown

        function init() {
            row.currentIndex = 0
            segments.currentIndex = 0
        }
        function pill(index) {
            return row.children[index]
        }
        function test_aClickChooses() {
            mouseClick(pill(2))
            compare(row.currentIndex, 2)
            verify(pill(2).chosen)
            verify(!pill(0).chosen)
        }
        function test_upAndDownStepToo() {
            pill(0).forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Down)
            compare(row.currentIndex, 1)
            keyClick(Qt.Key_Up)
            compare(row.currentIndex, 0)
        }
        function test_arrowsStepAndStopAtTheEnds() {
            pill(0).forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Left)
            compare(row.currentIndex, 0)
            keyClick(Qt.Key_Right)
            keyClick(Qt.Key_Right)
            keyClick(Qt.Key_Right)
            compare(row.currentIndex, 2)
            verify(pill(2).activeFocus)
        }
        function test_pillsAreOfOneWidth() {
            fuzzyCompare(pill(0).width, pill(1).width, 1) // shares of whole pixels
            fuzzyCompare(pill(1).width, pill(2).width, 1)
        }
        function test_onlyTheChosenPillIsAStopOfTheTabKey() {
            verify(pill(0).activeFocusOnTab)
            verify(!pill(1).activeFocusOnTab)
        }
        function test_segmentsSwitchByPointerAndKeys() {
            pill(0).forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Tab)
            verify(!pill(0).activeFocus)
            keyClick(Qt.Key_Right)
            compare(segments.currentIndex, 1)
            keyClick(Qt.Key_Right)
            compare(segments.currentIndex, 1)
            mouseClick(segments, segments.width * 0.25, 16)
            compare(segments.currentIndex, 0)
            keyClick(Qt.Key_Right) // the keyboard went along
            compare(segments.currentIndex, 1)
        }
        function test_segmentsAreOfOneWidthAndWideEnough() {
            compare(segments.width, 2 * segments.segmentWidth + 4)
            verify(segments.segmentWidth > 60)
        }
    }
}
