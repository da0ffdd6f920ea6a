import QtQuick
import "../fakes"

EditorScene {
    selectedTab: 1
}
