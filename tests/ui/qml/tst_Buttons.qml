import QtQuick
import QtTest
import Tavi.Ui

Item {
    id: root
    width: 400
    height: 300

    Column {
        spacing: 10

        PrimaryButton { id: primary; text: "Record" }
        PlainButton { id: plain; text: "Cancel" }
        IconButton { id: icon; symbol: "gearshape"; hint: "Settings" }
        DeviceToggle { id: device; symbol: "mic.fill"; hint: "Mute microphone"; on: true }
        ChoicePill { id: pill; text: "Fast"; chosen: true }
        PickerRow { id: picker; text: "Headset"; chosen: true }
        Swatch { id: swatch; text: "Ocean"; chosen: false }
        PrimaryButton { id: off; text: "Off"; enabled: false }
    }

    TestCase {
        name: "Buttons"
        when: windowShown

        SignalSpy { id: spy; signalName: "clicked" }

        function buttons_data() {
            return [{ tag: "primary", button: primary }, { tag: "plain", button: plain }, { tag: "icon", button: icon },
                    { tag: "device", button: device }, { tag: "pill", button: pill }, { tag: "picker", button: picker },
                    { tag: "swatch", button: swatch }]
        }
        function watch(button) {
            spy.target = button
            spy.clear()
        }

        function test_aClickClicksOnce_data() { return buttons_data() }
        function test_aClickClicksOnce(data) {
            watch(data.button)
            mouseClick(data.button)
            compare(spy.count, 1)
        }
        function test_aPressThatLeavesTheButtonDoesNothing_data() { return buttons_data() }
        function test_aPressThatLeavesTheButtonDoesNothing(data) {
            watch(data.button)
            mousePress(data.button)
            verify(data.button.down)
            mouseMove(root, 399, 299)
            mouseRelease(root, 399, 299)
            compare(spy.count, 0)
        }
        function test_spaceAndReturnClick_data() { return buttons_data() }
        function test_spaceAndReturnClick(data) {
            watch(data.button)
            data.button.forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Space)
            keyClick(Qt.Key_Return)
            keyClick(Qt.Key_Enter)
            compare(spy.count, 3)
        }
        function test_aClickTakesNoFocus_data() { return buttons_data() }
        function test_aClickTakesNoFocus(data) {
            primary.forceActiveFocus(Qt.TabFocusReason)
            mouseClick(data.button)
            verify(primary.activeFocus)
        }
        function test_theTipIsForWhoRestsAndNotForWhoHasClicked() {
            mouseMove(root, 390, 290)
            mouseMove(icon, 10, 10)
            tryVerify(() => icon.tip?.opened)
            mouseClick(icon, 10, 10)
            tryVerify(() => !icon.tip.visible)
            mouseMove(icon, 12, 12)
            verify(!icon.tip.visible)
            mouseMove(root, 390, 290)
            tryVerify(() => icon.tip === null)
            mouseMove(icon, 10, 10)
            tryVerify(() => icon.tip?.opened)
            mouseMove(root, 390, 290)
        }
        function test_theRingShowsForTheKeyboardOnly() {
            primary.forceActiveFocus(Qt.MouseFocusReason)
            plain.forceActiveFocus(Qt.TabFocusReason)
            verify(plain.visualFocus)
            primary.forceActiveFocus(Qt.MouseFocusReason)
            plain.forceActiveFocus(Qt.MouseFocusReason)
            verify(!plain.visualFocus)
        }
        function test_aDisabledButtonDoesNothing() {
            watch(off)
            mouseClick(off)
            off.press()
            compare(spy.count, 0)
        }
        function test_namesAreTextOrHint() {
            compare(primary.Accessible.name, "Record")
            compare(icon.Accessible.name, "Settings")
            compare(icon.Accessible.role, Accessible.Button)
            verify(device.Accessible.checked)
            compare(pill.Accessible.role, Accessible.RadioButton)
        }
        function test_boxesAreAsLargeAsTold() {
            compare(icon.width, 28)
            compare(icon.height, 28)
            compare(device.width, 44)
            compare(device.height, 44)
            compare(swatch.height, 28)
        }
        function test_aDeviceThatIsOffIsRed() {
            device.on = false
            verify(Qt.colorEqual(device.foreground, AppPalette.danger))
            device.on = true
            verify(Qt.colorEqual(device.foreground, AppPalette.primaryText))
        }
    }
}
