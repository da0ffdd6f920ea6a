import QtQuick
import "../fakes"

AppScene {
    fake.thumbnails.missing: [1, 3, 4]
    Component.onCompleted: library.fill(5)
}
