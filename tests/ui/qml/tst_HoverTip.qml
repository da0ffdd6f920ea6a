import QtQuick
import QtTest
import Tavi.Ui

Item {
    id: root
    width: 300
    height: 200

    Item {
        id: control
        x: 100
        y: 50
        width: 28
        height: 28

        HoverTip { id: tip; shown: false; text: "Settings" }
    }

    TestCase {
        name: "HoverTip"
        when: windowShown

        function test_comesAfterAMomentOfRestAndGoesAtOnce() {
            tip.shown = true
            verify(!tip.opened)
            tryVerify(() => tip.opened)
            tip.shown = false
            tryVerify(() => !tip.visible)
        }
    }
}
