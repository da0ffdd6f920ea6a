import QtQuick
import Tavi.Ui

/// The way to the recording screen.
PrimaryButton {
    text: qsTr("New Recording")
    textSize: 12
    symbol: "record.circle"
    symbolSize: 12
}
