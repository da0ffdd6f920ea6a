import QtQuick
import QtTest
import Tavi.App
import "../fakes"

Item {
    id: root
    width: 500
    height: 300

    FakeNotificationViewModel { id: news }
    NotificationBellView {
        id: bell
        x: 440
        notificationViewModel: news
    }

    TestCase {
        name: "NotificationBell"
        when: windowShown

        function init() {
            bell.showPopover = false
            tryVerify(() => !bell.popover.visible)
            news.opened = []
            news.currentNotifications = []
            news.hasUnread = false
        }
        function texts(item) {
            let found = []
            for (let i = 0; i < item.children.length; ++i) {
                const child = item.children[i]
                if (!child.visible)
                    continue
                if (child.text !== undefined && child.size !== undefined)
                    found.push(child.text)
                found = found.concat(texts(child))
            }
            return found
        }
        function test_theDotGoesWithTheFirstClick() {
            news.fill()
            verify(bell.dot.visible)
            mouseClick(bell)
            verify(bell.showPopover)
            verify(!news.hasUnread)
            verify(!bell.dot.visible)
        }
        function test_aSecondClickClosesThePopover() {
            mouseClick(bell)
            tryVerify(() => bell.popover.opened)
            mouseClick(bell)
            tryVerify(() => !bell.popover.visible)
        }
        function test_withoutNewsItSaysSo() {
            mouseClick(bell)
            tryVerify(() => bell.popover.opened)
            compare(texts(bell.popover.contentItem), ["No notifications"])
            compare(bell.popover.width, 260)
            verify(!bell.dot.visible)
        }
        function test_newsAreListedAndRead() {
            news.fill()
            mouseClick(bell)
            tryVerify(() => bell.popover.opened)
            compare(texts(bell.popover.contentItem), ["Tavlin 1.5 is here!", "Check out what's new in this release.", "Read more"])
            keyClick(Qt.Key_Tab)
            keyClick(Qt.Key_Return)
            compare(news.opened, ["https://example.org/changelog/saffron"])
        }
        function test_thePopoverStaysInTheWindow() {
            mouseClick(bell)
            tryVerify(() => bell.popover.opened)
            const item = bell.popover.contentItem
            verify(item.mapToItem(root, item.width, 0).x <= root.width)
        }
    }
}
