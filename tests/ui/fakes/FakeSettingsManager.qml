import QtQuick

QtObject {
    property bool defaultCameraEnabled: false
    property bool defaultAudioEnabled: true
}
