import QtQuick
import QtTest
import Tavi.Capture
import Tavi.Ui
import "../fakes"

Item {
    id: root
    width: 960
    height: 640

    FakeAppViewModel { id: app }
    FakeSettingsManager { id: settings }
    FakeInputMonitoring { id: monitoring }
    FakeRecordingViewModel { id: take }
    TextEdit {
        id: clipboard
        visible: false
    }

    Loader {
        id: loader
        anchors.fill: parent
        focus: true
        active: false
        sourceComponent: RecordingView {
            appViewModel: app
            settingsManager: settings
            viewModel: take
            inputMonitoring: monitoring
        }
    }

    TestCase {
        name: "RecordingView"
        when: windowShown

        /// Everything stands where it belongs.
        function frame() {
            root.Window.window.update()
            verify(waitForRendering(root))
        }
        function init() {
            app.calls = []
            app.showSettings = false
            take.fill(2, 5, 2)
            take.captureMode = "Display"
            take.selectedDisplayIndex = 0
            take.selectedWindowIndex = 0
            take.selectedMicrophoneIndex = 0
            take.selectedCameraIndex = 0
            take.isRecording = take.isCountingDown = take.isAsking = false
            take.pointerWarning = monitoring.accessCommand = ""
            take.elapsedTime = 0
            settings.defaultCameraEnabled = false
            settings.defaultAudioEnabled = true
            monitoring.isGranted = false
            monitoring.calls = []
            show()
        }
        function show() {
            loader.active = false
            take.calls = []
            loader.active = true
            loader.item.forceActiveFocus()
            frame()
        }
        function find(suits, from) {
            const items = (from ?? loader.item).children
            for (let i = 0; i < items.length; ++i) {
                if (!items[i].visible)
                    continue
                const found = suits(items[i]) ? items[i] : find(suits, items[i])
                if (found)
                    return found
            }
            return null
        }
        function named(name, from) {
            return find(item => item.Accessible.name === name && item.Accessible.role !== Accessible.StaticText, from)
        }
        function text(words) {
            return find(item => item.text === words && item.size !== undefined)
        }

        function test_appearingTakesTheDefaultsAndLoads() {
            settings.defaultCameraEnabled = true
            settings.defaultAudioEnabled = false
            show()
            verify(take.isCameraEnabled)
            verify(!take.isAudioEnabled)
            compare(take.calls.slice(-1), ["load"])
            compare(monitoring.calls.slice(-1), ["startProbe"])
        }
        function test_disappearingStopsTheProbe() {
            loader.active = false
            compare(monitoring.calls.slice(-2), ["startProbe", "stopProbe"])
        }
        function test_whileThereAreNoSourcesItLoads() {
            take.fill(0, 0, 0)
            verify(text("Loading sources...") !== null)
            compare(named("Record"), null)
            take.fill(1, 0, 0)
            tryVerify(() => text("Loading sources...") === null)
            verify(named("Record") !== null)
        }
        function test_theSwitchSelectsTheMode() {
            mouseClick(named("Window"))
            compare(take.captureMode, "Window")
            mouseClick(named("Display"))
            compare(take.captureMode, "Display")
        }
        function test_displaysAreToldWithTheirSizes() {
            verify(named("Display 1, 1920×1080") !== null)
            mouseClick(named("Display 2, 2560×1440"))
            compare(take.selectedDisplayIndex, 1)
            verify(named("Display 2, 2560×1440").selected)
        }
        function test_windowsAreToldByApplicationAndTitle() {
            take.captureMode = "Window"
            frame()
            mouseClick(named("Text Editor, notes.md - Tavlin"))
            compare(take.selectedWindowIndex, 1)
            verify(named("Unknown") !== null) // no title: no second line
        }
        function test_arrowsSelectSources() {
            keyClick(Qt.Key_Right)
            compare(take.selectedDisplayIndex, 1)
            keyClick(Qt.Key_Right)
            compare(take.selectedDisplayIndex, 1)
            keyClick(Qt.Key_Left)
            compare(take.selectedDisplayIndex, 0)
        }
        function test_devicesToggle() {
            mouseClick(named("Mute microphone"))
            verify(!take.isAudioEnabled)
            compare(named("Unmute microphone").symbol, "mic.slash.fill")
            mouseClick(named("Unmute microphone"))
            verify(take.isAudioEnabled)
            mouseClick(named("Turn on camera"))
            verify(take.isCameraEnabled)
            compare(named("Turn off camera").symbol, "video.fill")
        }
        function test_changesOfTheMicrophoneWarmItUpAgain() {
            take.calls = []
            take.isAudioEnabled = false
            take.selectedMicrophoneIndex = 1
            compare(take.calls, ["restartAudioWarmUp", "restartAudioWarmUp"])
        }
        function test_thePickerChoosesAMicrophoneAndCloses() {
            mouseClick(named("Choose: Microphone"))
            tryVerify(() => root.Window.window.activeFocusItem.Accessible.name === "Built-in Audio Analog Stereo")
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Return)
            compare(take.selectedMicrophoneIndex, 1)
        }
        function test_withoutACameraThereIsNoCameraControl() {
            verify(named("Turn on camera") !== null)
            take.fill(1, 1, 0)
            compare(named("Turn on camera"), null)
            compare(named("Choose: Camera"), null)
            verify(named("Mute microphone") !== null)
        }
        function test_recordStartsTheCountdown() {
            take.calls = []
            mouseClick(named("Record"))
            compare(take.calls, ["record"])
        }
        function test_theCountdownShowsSecondsAndIsCancelled() {
            take.countdownValue = 4
            take.isCountingDown = true
            frame()
            verify(text("Starting in 4") !== null)
            verify(text("Get ready") !== null)
            mouseClick(named("Cancel"))
            verify(take.calls.includes("cancelCountdown"))
            verify(named("Record") !== null)
        }
        function test_escapeCancelsTheCountdown() {
            take.isCountingDown = true
            frame()
            keyClick(Qt.Key_Escape)
            verify(!take.isCountingDown)
        }
        function test_theRunningTakeShowsItsTimeAndStops_data() {
            return [{ tag: "start", seconds: 0, text: "00:00.0" }, { tag: "cut, not rounded", seconds: 9.99, text: "00:09.9" },
                    { tag: "minutes", seconds: 83.42, text: "01:23.4" }, { tag: "no hours", seconds: 3725.5, text: "62:05.5" }]
        }
        function test_theRunningTakeShowsItsTimeAndStops(data) {
            take.isRecording = true
            take.elapsedTime = data.seconds
            frame()
            verify(text(data.text) !== null)
            mouseClick(named("Stop Recording"))
            verify(take.calls.includes("stop"))
        }
        function test_aTakeThatIsStoppingIsNotStoppedAgain() {
            take.isRecording = true
            take.isStopping = true
            frame()
            verify(!named("Stop Recording").enabled)
            take.isStopping = false
        }
        function test_backCancelsTheCountdownAndLeaves() {
            mouseClick(named("Library"))
            verify(take.calls.includes("cancelCountdown"))
            compare(app.calls, ["leaveRecording"])
        }
        function test_theKeystrokeRowTellsWhenKeysAreMissing() {
            verify(text("Enable Input Monitoring to capture keystrokes") !== null)
            mouseClick(named("Open Settings"))
            verify(monitoring.calls.includes("openInputMonitoringSettings"))
        }
        function test_theCommandThatAllowsKeysIsToldWithItsRisk() {
            monitoring.accessCommand = "sudo usermod -aG input \"$USER\""
            const told = text("Every program that you run can then read what you type, passwords included.")
            verify(told !== null)
            mouseClick(named("Copy"))
            verify(named("Copied").visible)
            clipboard.paste()
            compare(clipboard.text, monitoring.accessCommand)
            monitoring.isGranted = true
            verify(!told.visible)
        }
        function test_whatADesktopKeepsOfThePointerIsToldBeforeTheTake() {
            take.pointerWarning = "This desktop paints the pointer into the picture."
            verify(text("This desktop paints the pointer into the picture.") !== null)
        }
        function test_theDesktopsQuestionIsToldWhileItIsOpen() {
            take.isCountingDown = true
            take.isAsking = true
            verify(text("Choose in the desktop's dialog") !== null)
            take.isAsking = false
            take.countdownValue = 4
            compare(text("Choose in the desktop's dialog"), null)
        }
        function test_theKeystrokeRowTellsTheGrantAndGoes() {
            monitoring.isGranted = true
            verify(text("Keystroke capture enabled") !== null)
            verify(loader.item.showPermissionGranted)
            tryVerify(() => text("Keystroke capture enabled") === null, 10000)
        }
        function test_theKeystrokeRowIsNotThereWhenKeysWereGrantedBefore() {
            monitoring.isGranted = true
            show()
            compare(text("Keystroke capture enabled"), null)
            compare(text("Enable Input Monitoring to capture keystrokes"), null)
        }
        function test_aFailureIsTold() {
            take.failureText = "The recording could not start."
            verify(text("The recording could not start.") !== null)
            take.failureText = ""
        }
        function test_everyControlIsReachedByTab() {
            const reached = new Set()
            for (let i = 0; i < 14; ++i) {
                keyClick(Qt.Key_Tab)
                reached.add(root.Window.window.activeFocusItem.Accessible.name)
            }
            for (const name of ["Library", "Settings", "Display", "Display 1, 1920×1080", "Mute microphone", "Choose: Microphone",
                                "Turn on camera", "Choose: Camera", "Record", "Open Settings"])
                verify(reached.has(name), name)
        }
    }
}
