import QtQuick

QtObject {
    property var availableDisplays: []
    property var availableWindows: []
    property var availableCameras: []
    property var availableMicrophones: []
    property var windowThumbnails: ({})
    property var displayThumbnails: ({})
    property string captureMode: "Display"
    property int selectedDisplayIndex: 0
    property int selectedWindowIndex: 0
    property int selectedCameraIndex: 0
    property int selectedMicrophoneIndex: 0
    property bool isCameraEnabled: false
    property bool isAudioEnabled: true
    readonly property bool isCameraAvailable: availableCameras.length > 0
    property bool isRecording: false
    property bool isCountingDown: false
    property bool isAsking: false
    property bool isStarting: false
    property bool isStopping: false
    property int countdownValue: 0
    property double elapsedTime: 0
    property string pointerWarning: ""
    property string failureText: ""
    property string interruptionText: ""
    property var calls: []

    function fill(displays: int, windows: int, devices: int) {
        const apps = [["Files", "Documents"], ["Text Editor", "notes.md - Tavlin"], ["Web Browser", "Qt Quick Controls | Qt 6.4"],
                      ["Terminal", "ada@studio: ~"], ["Unknown", ""], ["Music", "A title that is far longer than the card on which it stands"]]
        const sizes = [[1920, 1080], [2560, 1440], [1280, 1024]]
        const displayList = []
        const windowList = []
        const pictures = {}
        for (let i = 0; i < displays; ++i)
            displayList.push({ name: "Display " + (i + 1), width: sizes[i % 3][0], height: sizes[i % 3][1], isMain: i === 0 })
        for (let i = 0; i < windows; ++i)
            windowList.push({ windowId: i, appName: apps[i % 6][0], title: apps[i % 6][1], width: 800, height: 600 })
        for (let i = 0; i < Math.max(displays, windows); ++i)
            if (i % 6 !== 4)
                pictures[i] = testPictures.screen(i + 1)
        displayThumbnails = pictures
        windowThumbnails = pictures
        availableDisplays = displayList
        availableWindows = windowList
        const microphones = ["Built-in Audio Analog Stereo", "Studio USB Microphone", "Headset"]
        const cameras = ["Integrated Camera", "HDMI Capture"]
        availableMicrophones = microphones.slice(0, devices).map((name, i) => ({ id: "m" + i, name: name }))
        availableCameras = cameras.slice(0, devices).map((name, i) => ({ id: "c" + i, name: name }))
    }
    /// As a Wayland desktop has it: outputs by name, without pictures, and a window to be chosen.
    function fillFromPortal() {
        availableDisplays = [{ name: "Display 1", output: "DP-1", width: 2560, height: 1440, isMain: true },
                             { name: "Display 2", output: "HDMI-A-1", width: 1920, height: 1080, isMain: false }]
        availableWindows = [{ windowId: 1, appName: "A window", title: "chosen in the desktop's dialog", width: 1920, height: 1080 }]
        availableMicrophones = [{ id: "m0", name: "Built-in Audio Analog Stereo" }]
    }
    function load() {
        calls.push("load")
    }
    function restartAudioWarmUp() {
        calls.push("restartAudioWarmUp")
    }
    function record() {
        calls.push("record")
    }
    function cancelCountdown() {
        calls.push("cancelCountdown")
        isCountingDown = false
    }
    function stop() {
        calls.push("stop")
    }
}
