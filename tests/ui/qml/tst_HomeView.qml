import QtQuick
import QtTest
import Tavi.Ui
import "../fakes"

AppScene {
    id: scene
    width: 960
    height: 640

    /// Keys that nothing took.
    property var leftKeys: []
    Keys.onPressed: event => leftKeys.push(event.key)

    TestCase {
        name: "HomeView"
        when: windowShown

        readonly property var home: scene.screen
        readonly property var grid: home?.grid

        /// Everything stands where it belongs.
        function frame() {
            scene.Window.window.update()
            verify(waitForRendering(scene))
        }
        function init() {
            scene.app.currentMode = "home"
            scene.app.calls = []
            scene.library.calls = []
            scene.library.problem = ""
            scene.library.fill(6)
            scene.library.clearSelection()
            grid.currentIndex = 0
            frame()
            grid.forceActiveFocus(Qt.OtherFocusReason)
        }
        function cleanup() {
            while (openAlert()) {
                const alert = openAlert()
                alert.close()
                tryVerify(() => !alert.visible)
            }
        }
        function card(index) {
            return grid.itemAtIndex(index)
        }
        function openAlert() {
            const data = home?.dialogs?.data ?? []
            for (let i = 0; i < data.length; ++i)
                if (data[i] instanceof AlertDialog && data[i].visible)
                    return data[i]
            return null
        }
        /// From the safe answer to the one that deletes.
        function confirmDeletion() {
            keyClick(Qt.Key_Tab)
            keyClick(Qt.Key_Return)
        }
        function shownAlert(title) {
            tryVerify(() => openAlert()?.title === title && openAlert().opened)
            return openAlert()
        }

        function test_aClickOpensARecording() {
            mouseClick(card(1))
            compare(scene.app.currentMode, "editing")
            compare(scene.app.calls, ["open file:///takes/1"])
        }
        function test_aClickWithControlSelects() {
            mouseClick(card(1), 50, 50, Qt.LeftButton, Qt.ControlModifier)
            compare(scene.library.selectedItems, ["take-1"])
            compare(scene.app.currentMode, "home")
        }
        function test_aSelectionTurnsClicksIntoSelectionClicks() {
            mouseClick(card(1), 50, 50, Qt.LeftButton, Qt.ControlModifier)
            mouseClick(card(2))
            compare(scene.library.selectedItems, ["take-1", "take-2"])
            mouseClick(card(1))
            mouseClick(card(2))
            compare(scene.library.selectedItems, [])
            compare(scene.app.currentMode, "home")
        }
        function test_controlASelectsEverything() {
            keyClick(Qt.Key_A, Qt.ControlModifier)
            verify(scene.library.allSelected)
        }
        function test_controlAWithoutRecordingsSelectsNothingAndIsConsumed() {
            scene.library.fill(0)
            home.forceActiveFocus()
            scene.leftKeys = []
            keyClick(Qt.Key_B, Qt.ControlModifier)
            keyClick(Qt.Key_A, Qt.ControlModifier)
            compare(scene.library.selectedCount, 0)
            verify(scene.leftKeys.includes(Qt.Key_B))
            verify(!scene.leftKeys.includes(Qt.Key_A))
        }
        function test_theKeyboardSelectsALittleMoreSlowlyThanClicks() {
            const motion = card(1).selection
            keyClick(Qt.Key_A, Qt.ControlModifier)
            compare([motion.to, motion.response, motion.damping], [1, 0.3, 0.85])
            mouseClick(card(1))
            compare([motion.to, motion.response, motion.damping], [0, 0.25, 0.8])
            keyClick(Qt.Key_Escape)
            compare(card(2).selection.response, 0.3)
            compare(motion.response, 0.25) // it stayed where it was
        }
        function test_theKeyboardGoesToTheTakesWhenTheyArrive() {
            scene.app.currentMode = "permission"
            scene.library.fill(0)
            scene.app.currentMode = "home"
            frame()
            scene.library.fill(6)
            frame()
            keyClick(Qt.Key_Right)
            compare(grid.currentIndex, 1)
            scene.library.fill(0)
            frame()
            keyClick(Qt.Key_Return) // the button of the empty library
            compare(scene.app.currentMode, "recording")
        }
        function test_anEmptyLibraryShowsThatAndNoSelectionBar() {
            scene.library.fill(0)
            verify(home.empty)
            verify(!home.selecting)
            verify(!grid.visible)
        }
        function test_escapeClearsTheSelection() {
            keyClick(Qt.Key_A, Qt.ControlModifier)
            keyClick(Qt.Key_Escape)
            compare(scene.library.selectedCount, 0)
        }
        function test_deleteWithoutASelectionDoesNothing() {
            keyClick(Qt.Key_Delete)
            keyClick(Qt.Key_Backspace)
            compare(openAlert(), null)
        }
        function test_deleteAsksAboutTheSelection_data() {
            return [{ tag: "one", ids: ["take-1"], title: "Delete 1 Recording?", text: "1 recording will be permanently deleted." },
                    { tag: "two", ids: ["take-1", "take-3"], title: "Delete 2 Recordings?", text: "2 recordings will be permanently deleted." }]
        }
        function test_deleteAsksAboutTheSelection(data) {
            scene.library.selectedItems = data.ids
            keyClick(Qt.Key_Delete)
            const alert = shownAlert(data.title)
            compare(alert.text, data.text)
            compare(scene.library.calls, [])
            confirmDeletion()
            compare(scene.library.calls, ["delete selected"])
            compare(scene.library.recordings.length, 6 - data.ids.length)
        }
        function test_aDeleteThatIsCancelledDeletesNothing_data() {
            return [{ tag: "escape", key: Qt.Key_Escape }, { tag: "return at once", key: Qt.Key_Return }]
        }
        function test_aDeleteThatIsCancelledDeletesNothing(data) {
            scene.library.selectAll()
            keyClick(Qt.Key_Backspace)
            shownAlert("Delete 6 Recordings?")
            keyClick(data.key)
            tryVerify(() => openAlert() === null)
            compare(scene.library.calls, [])
            compare(scene.library.selectedCount, 6)
        }
        function test_aFailedDeleteIsTold() {
            scene.library.problem = "Could not delete: the folder is read-only."
            home.dialogs.askToDelete(scene.library.recordings[0])
            const question = shownAlert("Delete Recording?")
            compare(question.text, "\"Recording_2026-11-20_15-04-05\" will be permanently deleted.")
            confirmDeletion()
            compare(shownAlert("Error").text, "Could not delete: the folder is read-only.")
        }
        function test_typingANameDoesNotDelete() {
            scene.library.selectedItems = ["take-1"]
            home.dialogs.askForName(scene.library.recordings[1])
            const dialog = shownAlert("Rename Recording")
            compare(home.dialogs.renameText, "Product tour")
            keyClick(Qt.Key_Delete) // all of it is selected
            compare(home.dialogs.renameText, "")
            keyClick("N")
            keyClick("e")
            keyClick(Qt.Key_Backspace)
            compare(home.dialogs.renameText, "N")
            compare(openAlert(), dialog)
            keyClick(Qt.Key_Return)
            compare(scene.library.calls, ["rename take-1 N"])
            tryVerify(() => openAlert() === null)
        }
        function test_aRefusedNameIsToldAndTheDialogReturnsAsTyped_data() {
            return [{ tag: "read at once", reading: 0 }, { tag: "read slowly", reading: 500 }]
        }
        function test_aRefusedNameIsToldAndTheDialogReturnsAsTyped(data) {
            scene.library.problem = "Name cannot be empty."
            home.dialogs.askForName(scene.library.recordings[1])
            shownAlert("Rename Recording")
            home.dialogs.renameText = "   "
            keyClick(Qt.Key_Return)
            compare(shownAlert("Error").text, "Name cannot be empty.")
            wait(data.reading)
            keyClick(Qt.Key_Return)
            shownAlert("Rename Recording")
            compare(home.dialogs.renameText, "   ")
            scene.library.problem = ""
            keyClick(Qt.Key_Escape)
            tryVerify(() => openAlert() === null)
        }
        function test_theMenuRenamesRevealsAndDeletes() {
            mouseClick(card(1), 50, 50, Qt.RightButton)
            tryVerify(() => home.menu.opened)
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Return)
            compare(scene.app.calls, ["reveal /takes/1"])
            tryVerify(() => !home.menu.visible)

            mouseClick(card(2), 50, 50, Qt.RightButton)
            tryVerify(() => home.menu.opened)
            for (let i = 0; i < 3; ++i)
                keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Return)
            shownAlert("Delete Recording?")
            confirmDeletion()
            compare(scene.library.calls, ["delete take-2"])
        }
        function test_theKeyboardAloneGoesThroughTheGrid() {
            keyClick(Qt.Key_Right)
            compare(grid.currentIndex, 1)
            keyClick(Qt.Key_Down)
            compare(grid.currentIndex, 1 + grid.columns)
            keyClick(Qt.Key_Home)
            compare(grid.currentIndex, 0)
            keyClick(Qt.Key_End)
            compare(grid.currentIndex, 5)
            keyClick(Qt.Key_PageUp)
            compare(grid.currentIndex, 0)
            keyClick(Qt.Key_Space)
            compare(scene.library.selectedItems, ["take-0"])
            keyClick(Qt.Key_Space)
            keyClick(Qt.Key_F2)
            shownAlert("Rename Recording")
            keyClick(Qt.Key_Escape)
            tryVerify(() => openAlert() === null && grid.activeFocus)
            keyClick(Qt.Key_F10, Qt.ShiftModifier)
            tryVerify(() => home.menu.opened)
            keyClick(Qt.Key_Escape)
            tryVerify(() => !home.menu.visible && grid.activeFocus)
            keyClick(Qt.Key_Return)
            compare(scene.app.currentMode, "editing")
        }
        function test_theSelectionBarDoesWhatItSays() {
            scene.library.selectedItems = ["take-0"]
            verify(home.selecting)
            const bar = home.selectionBar
            compare(bar.children[0].text, "1 selected")
            compare(bar.children[1].text, "Select All")
            mouseClick(bar.children[1])
            verify(scene.library.allSelected)
            compare(bar.children[1].text, "Deselect All")
            mouseClick(bar.children[1])
            compare(scene.library.selectedCount, 0)
            scene.library.selectedItems = ["take-0", "take-1"]
            mouseClick(bar.children[3])
            compare(scene.library.selectedCount, 0)
            scene.library.selectedItems = ["take-0", "take-1"]
            mouseClick(bar.children[2])
            shownAlert("Delete 2 Recordings?")
        }
        function test_newRecordingOpensTheRecordingScreen() {
            compare(home.newRecordingButton.text, "New Recording")
            mouseClick(home.newRecordingButton)
            compare(scene.app.currentMode, "recording")
        }
        function test_columnsAreAsManyAsFit_data() {
            return [{ tag: "800", width: 800, columns: 2 }, { tag: "960", width: 960, columns: 3 },
                    { tag: "1300", width: 1300, columns: 4 },
                    { tag: "one too few", width: 907, columns: 2 }, { tag: "just enough", width: 908, columns: 3 }]
        }
        function test_columnsAreAsManyAsFit(data) {
            scene.width = data.width
            compare(grid.columns, data.columns)
            frame()
            verify(card(0).width >= 280)
            compare(card(1).x - card(0).x - card(0).width, 14)
            scene.width = 960
        }
        function test_thousandsOfTakesMakeAScreenfulOfCards() {
            scene.fake.thumbnails.wanted = []
            scene.fake.thumbnails.missing = Array.from({ length: 5000 }, (_, i) => i)
            scene.library.fill(5000)
            frame()
            compare(grid.count, 5000)
            verify(grid.contentItem.children.length < 60)
            keyClick(Qt.Key_End)
            compare(grid.currentIndex, 4999)
            tryVerify(() => card(4999) !== null)
            verify(grid.contentItem.children.length < 100)
            verify(scene.fake.thumbnails.wanted.length < 100)
            scene.fake.thumbnails.missing = []
        }
        function test_aThumbnailThatComesLaterIsShown() {
            scene.fake.thumbnails.missing = [77]
            scene.library.recordings = [Object.assign({}, scene.library.recordings[0], { url: "file:///takes/77" })]
            frame()
            const picture = card(0).picture
            verify(picture.empty)
            scene.fake.thumbnails.missing = []
            scene.fake.thumbnails.ready("file:///takes/77")
            verify(!picture.empty)
        }
    }
}
