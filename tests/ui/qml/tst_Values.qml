import QtQuick
import QtTest
import Tavi.Ui

Item {
    width: 400
    height: 300

    Column {
        spacing: 10

        SliderRow {
            id: slider
            width: 200
            label: "Corner Radius"
            valueText: value + "px"
            from: 0
            to: 40
            stepSize: 1
            value: 10
        }
        SwitchRow { id: toggle; width: 200; label: "Shadow" }
        InputField { id: field; name: "Name"; placeholderText: "Name" }
        ProgressLine { id: progress; name: "Exporting"; value: 0.25 }
        Item { id: behind; width: 10; height: 10; focus: true }
    }

    TestCase {
        name: "Values"
        when: windowShown

        SignalSpy { id: moved; target: slider; signalName: "moved" }
        SignalSpy { id: toggled; target: toggle; signalName: "toggled" }
        SignalSpy { id: accepted; target: field; signalName: "accepted" }

        function init() {
            moved.clear()
            toggled.clear()
            accepted.clear()
            slider.value = 10
            toggle.checked = false
            field.text = ""
        }
        function childThat(item, suits) {
            for (let i = 0; i < item.children.length; ++i)
                if (suits(item.children[i]))
                    return item.children[i]
        }
        function handle() {
            return childThat(slider, child => child.Accessible.role === Accessible.Slider)
        }
        function control() {
            return childThat(toggle, child => child.Accessible.role === Accessible.CheckBox)
        }

        function test_upAndDownStepLikeLeftAndRight() {
            handle().forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Up)
            compare(slider.value, 11)
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Down)
            compare(slider.value, 9)
            compare(moved.count, 3)
        }
        function test_withoutAStepTheKeysGoFurtherOnALongRange() {
            slider.stepSize = 0
            handle().forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Up)
            fuzzyCompare(slider.value, 10.4, 1e-6)
            slider.stepSize = 1
        }
        function test_aDragMovesBySteps() {
            const track = handle()
            mousePress(track, track.width / 4, track.height / 2)
            mouseMove(track, track.width / 2, track.height / 2)
            mouseRelease(track, track.width / 2, track.height / 2)
            verify(moved.count > 0)
            fuzzyCompare(slider.value, 20, 1)
            compare(slider.value, Math.round(slider.value))
        }
        function test_arrowsMoveByOneStepAndStopAtTheEnds() {
            handle().forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Right)
            compare(slider.value, 11)
            keyClick(Qt.Key_Left)
            keyClick(Qt.Key_Left)
            compare(slider.value, 9)
            slider.value = 40
            keyClick(Qt.Key_Right)
            compare(slider.value, 40)
        }
        function test_theSwitchTogglesByClickSpaceAndReturn() {
            mouseClick(control())
            verify(toggle.checked)
            control().forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Space)
            verify(!toggle.checked)
            keyClick(Qt.Key_Return)
            verify(toggle.checked)
            compare(toggled.count, 3)
        }
        function test_theFieldKeepsItsKeysAtTheEndsOfItsText() {
            field.forceActiveFocus(Qt.TabFocusReason)
            for (const key of "abc")
                keyClick(key)
            compare(field.text, "abc")
            keyClick(Qt.Key_Right)
            verify(field.activeFocus)
            keyClick(Qt.Key_Home)
            keyClick(Qt.Key_Left)
            compare(field.cursorPosition, 0)
            keyClick(Qt.Key_Right)
            compare(field.cursorPosition, 1)
            keyClick(Qt.Key_Delete)
            compare(field.text, "ac")
            keyClick(Qt.Key_Return)
            compare(accepted.count, 1)
        }
        function test_thePlaceholderIsThereWhileTheFieldIsEmpty() {
            const placeholder = childThat(field, child => child.text === "Name")
            verify(placeholder.visible)
            field.text = "x"
            verify(!placeholder.visible)
        }
        function test_progressFillsItsShare() {
            const bar = progress.contentItem.children[0]
            fuzzyCompare(bar.width, progress.width * 0.25, 0.5)
            progress.value = 0
            compare(bar.width, 0)
            progress.value = 1
            fuzzyCompare(bar.width, progress.width, 0.5)
        }
        function test_everyOneHasAName() {
            compare(handle().Accessible.name, "Corner Radius")
            compare(control().Accessible.name, "Shadow")
            compare(field.Accessible.name, "Name")
            compare(progress.Accessible.name, "Exporting")
        }
    }
}
