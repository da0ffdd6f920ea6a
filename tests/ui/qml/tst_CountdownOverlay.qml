import QtQuick
import QtTest
import Tavi.Capture
import Tavi.Ui

CountdownOverlayView {
    id: view
    width: 640
    height: 360
    value: 5

    TestCase {
        name: "CountdownOverlay"
        when: windowShown

        function shown() {
            const texts = []
            const collect = item => {
                for (let i = 0; i < item.children.length; ++i) {
                    const child = item.children[i]
                    if (!child.visible || child.opacity === 0)
                        continue
                    if (child.text !== undefined && child.text !== "" && child.size !== undefined && Qt.colorEqual(child.color.a > 0.6 ? "white" : "black", "white"))
                        texts.push(child.text)
                    collect(child)
                }
            }
            collect(view)
            return texts
        }
        function test_showsTheSecondsLeft() {
            compare(shown(), ["5", "Get ready..."])
            view.value = 4
            tryVerify(() => shown().join() === "4,Get ready...")
        }
        function test_dimsWhatIsUnderIt() {
            fuzzyCompare(view.color.a, 0.35, 1e-4)
        }
        function test_theNumbersShadowIsSoftAndEndsBehindItsRadius() {
            const weights = view.shadow.map(copy => copy.opacity)
            fuzzyCompare(weights.reduce((sum, weight) => sum + weight), 0.5, 1e-9)
            verify(view.shadow.every(copy => Math.hypot(copy.x, copy.y) <= 20))
            const middle = view.shadow.reduce((sum, copy) => Qt.point(sum.x + copy.x * copy.opacity,
                                                                      sum.y + copy.y * copy.opacity), Qt.point(0, 0))
            fuzzyCompare(middle.x, 0, 1e-9)
            fuzzyCompare(middle.y, 0, 1e-9)
        }
    }
}
