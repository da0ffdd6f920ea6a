import QtQuick
import Tavi.App

/// The window's content over made-up view models; not a picture of its own.
ContentView {
    id: scene

    property alias fake: fakeApp
    property alias app: fakeApp.appViewModel
    property alias library: fakeApp.homeViewModel
    property alias take: fakeApp.recordingViewModel

    /// The window stands; time for what needs one.
    signal shown

    implicitWidth: 960
    implicitHeight: 640
    taviApp: FakeTaviApp {
        id: fakeApp
    }

    Timer {
        interval: 50
        running: scene.Window.active // when cards stand where they belong
        onTriggered: scene.shown()
    }
}
