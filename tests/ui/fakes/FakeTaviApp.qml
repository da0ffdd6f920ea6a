import QtQuick

QtObject {
    property FakeAppViewModel appViewModel: FakeAppViewModel {}
    property FakeHomeViewModel homeViewModel: FakeHomeViewModel {}
    property FakeNotificationViewModel notificationViewModel: FakeNotificationViewModel {}
    property FakeSettingsViewModel settingsViewModel: FakeSettingsViewModel {}
    property FakeSettingsManager settingsManager: FakeSettingsManager {}
    property FakeThumbnails thumbnails: FakeThumbnails {}
    property FakeRecordingViewModel recordingViewModel: FakeRecordingViewModel {}
    property QtObject editorScreen: testEditor.screen
    property FakeInputMonitoring inputMonitoring: FakeInputMonitoring {}
}
