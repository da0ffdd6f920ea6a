import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// How much is done, from 0 to 1.
T.ProgressBar {
    id: line

    required property string name

    implicitWidth: 200
    implicitHeight: 4
    Accessible.role: Accessible.ProgressBar
    Accessible.name: name

    background: Rectangle {
        radius: 2
        color: AppPalette.at(AppPalette.white, 0.1)
    }
    contentItem: Item {
        Rectangle {
            width: Math.max(line.value > 0 ? parent.height : 0, line.visualPosition * parent.width)
            height: parent.height
            radius: 2
            color: AppPalette.accent
        }
    }
}
