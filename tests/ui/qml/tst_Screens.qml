import QtQuick
import QtTest
import Tavi.Ui
import "../fakes"

AppScene {
    id: scene
    width: 960
    height: 640

    TestCase {
        name: "Screens"
        when: windowShown

        /// Everything stands where it belongs.
        function frame() {
            scene.Window.window.update()
            verify(waitForRendering(scene))
        }
        function init() {
            scene.app.calls = []
            scene.app.showSettings = false
            scene.app.notice = ""
            tryVerify(() => !settings().visible && !scene.noticeAlert.visible)
            scene.app.currentMode = "home"
            scene.library.fill(3)
            scene.fake.settingsViewModel.calls = []
        }
        function itemNamed(name, root) {
            const items = (root ?? scene).children
            for (let i = 0; i < items.length; ++i) {
                if (!items[i].visible)
                    continue
                if (items[i].Accessible.name === name && items[i].Accessible.role !== Accessible.StaticText)
                    return items[i]
                const found = itemNamed(name, items[i])
                if (found)
                    return found
            }
            return null
        }
        function settings() {
            return scene.settings
        }

        function test_everyModeHasItsScreen_data() {
            return [{ tag: "splash", type: "SplashView" }, { tag: "permission", type: "PermissionView" },
                    { tag: "home", type: "HomeView" }, { tag: "recording", type: "RecordingView" },
                    { tag: "editing", type: "EditorView" }]
        }
        function test_everyModeHasItsScreen(data) {
            scene.app.currentMode = data.tag
            verify(String(scene.screen).startsWith(data.type))
        }
        function test_everyOpeningOfATakeMakesANewEditor() {
            scene.app.currentMode = "editing"
            const first = scene.screen
            scene.app.currentMode = "home"
            scene.app.currentMode = "editing"
            verify(scene.screen !== first)
        }
        function test_thePermissionScreenAsksAndChecks() {
            scene.app.currentMode = "permission"
            frame()
            mouseClick(itemNamed("Open System Settings"))
            mouseClick(itemNamed("Check Again"))
            compare(scene.app.calls, ["requestPermission", "recheckPermission"])
        }
        function test_thePermissionScreenWorksByKeysAlone() {
            scene.app.currentMode = "permission"
            frame()
            keyClick(Qt.Key_Return)
            keyClick(Qt.Key_Tab)
            keyClick(Qt.Key_Return)
            compare(scene.app.calls, ["requestPermission", "recheckPermission"])
        }
        function test_theEditorGoesBackAndOpensTheSettings() {
            scene.app.currentMode = "editing"
            frame()
            mouseClick(itemNamed("Library"))
            compare(scene.app.calls, ["leaveEditor"])
            mouseClick(itemNamed("Settings"))
            verify(scene.app.showSettings)
            tryVerify(() => settings().opened)
            keyClick(Qt.Key_Escape)
            tryVerify(() => !settings().visible)
        }
        function openSettings() {
            scene.app.showSettings = true
            tryVerify(() => settings().opened)
        }
        function test_settingsComeAndGoOverEveryScreen_data() {
            return [{ tag: "permission" }, { tag: "home" }, { tag: "recording" }, { tag: "editing" }]
        }
        function test_settingsComeAndGoOverEveryScreen(data) {
            scene.app.currentMode = data.tag
            openSettings()
            compare(settings().width, 420)
            compare(settings().height, 380)
            keyClick(Qt.Key_Escape)
            tryVerify(() => !settings().visible)
            verify(!scene.app.showSettings)
            compare(scene.fake.settingsViewModel.calls, ["appear", "disappear"])
        }
        function test_aClickBesideTheSettingsClosesThem() {
            openSettings()
            mouseClick(scene, 20, 620)
            tryVerify(() => !settings().visible)
            verify(!scene.app.showSettings)
            compare(scene.app.currentMode, "home") // the card under it took no click
        }
        function test_aClickOnTheSettingsKeepsThem() {
            openSettings()
            mouseClick(scene, 480, 500)
            verify(settings().visible)
        }
        function test_closingByTheViewModelClosesThePanel() {
            openSettings()
            scene.app.showSettings = false
            tryVerify(() => !settings().visible)
        }
        function test_theKeyboardStaysInTheSettings() {
            openSettings()
            for (let i = 0; i < 8; ++i) {
                keyClick(Qt.Key_Tab)
                verify(settings().contentItem.activeFocus)
            }
        }
        function test_settingsRevealTheLibraryAndLookForUpdates() {
            openSettings()
            scene.fake.settingsViewModel.calls = []
            mouseClick(itemNamed("Location", settings().contentItem))
            mouseClick(itemNamed("Check for Updates...", settings().contentItem))
            compare(scene.fake.settingsViewModel.calls, ["revealLibrary", "checkForUpdates"])
        }
        function test_theGearOpensTheSettings_data() {
            return [{ tag: "home" }, { tag: "recording" }, { tag: "editing" }]
        }
        function test_theGearOpensTheSettings(data) {
            scene.app.currentMode = data.tag
            frame()
            mouseClick(itemNamed("Settings"))
            verify(scene.app.showSettings)
        }
        function test_aNoticeIsShownUntilItIsRead() {
            scene.app.notice = "The recording ended because the disk is full."
            tryVerify(() => scene.noticeAlert.opened)
            keyClick(Qt.Key_Return)
            compare(scene.app.notice, "")
            tryVerify(() => !scene.noticeAlert.visible)
        }
    }
}
