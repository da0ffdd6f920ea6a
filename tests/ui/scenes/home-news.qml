import QtQuick
import "../fakes"

AppScene {
    Component.onCompleted: {
        library.fill(6)
        fake.notificationViewModel.fill()
    }
    onShown: screen.bell.press()
}
