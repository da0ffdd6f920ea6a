import QtQuick
import QtQuick.Layouts
import Tavi.Ui

/// Playback, frame by frame or as it goes, and the time.
RowLayout {
    id: row

    required property QtObject screen

    spacing: 2

    IconButton {
        symbol: "backward.frame.fill"
        symbolSize: 11
        boxWidth: 30
        boxHeight: 26
        hint: qsTr("Step Back")
        onClicked: row.screen.step(-1)
    }
    IconButton {
        symbol: row.screen.editor.isPlaying ? "pause.fill" : "play.fill"
        symbolSize: 14
        boxWidth: 30
        boxHeight: 26
        foreground: AppPalette.primaryText
        enabled: row.screen.editor.isCameraReady
        hint: row.screen.editor.isPlaying ? qsTr("Pause") : qsTr("Play")
        onClicked: row.screen.editor.togglePlayback()
    }
    IconButton {
        symbol: "forward.frame.fill"
        symbolSize: 11
        boxWidth: 30
        boxHeight: 26
        hint: qsTr("Step Forward")
        onClicked: row.screen.step(1)
    }
    Row {
        Layout.leftMargin: 6

        TextLabel {
            text: row.screen.timeText
            weight: Font.Medium
            tabular: true
        }
        TextLabel {
            text: " / "
            weight: Font.Medium
            color: AppPalette.secondaryText
        }
        TextLabel {
            text: row.screen.totalText
            weight: Font.Medium
            tabular: true
            color: row.screen.isTrimmed ? AppPalette.at(AppPalette.accent, 0.7) : AppPalette.secondaryText
        }
    }
}
