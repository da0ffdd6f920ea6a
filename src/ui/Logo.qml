import QtQuick

/// The program's image, drawn at the size of the item.
Image {
    source: "qrc:/tavi/logo.svg"
    sourceSize: Qt.size(width, height)
    cache: false // It is shown once.
    Accessible.role: Accessible.Graphic
    Accessible.name: "Tavlin"
}
