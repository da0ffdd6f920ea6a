// What screens see of RecordingViewModel's lists.
#include "capture/RecordingViewModel.h"

namespace tavi {

namespace {

QVariantList deviceRows(const std::vector<CaptureDevice>& devices) {
    QVariantList rows;
    for (const CaptureDevice& device : devices) {
        rows.append(QVariantMap{{"id", QString::fromStdString(device.id)},
                                {"name", QString::fromStdString(device.name)}});
    }
    return rows;
}

QVariantMap pictures(const std::map<int, PixelBufferPtr>& thumbnails) {
    QVariantMap values;
    for (const auto& [index, picture] : thumbnails) {
        values.insert(QString::number(index), QVariant::fromValue(picture));
    }
    return values;
}

} // namespace

QVariantList RecordingViewModel::displayRows() const {
    QVariantList rows;
    for (const Display& display : m_availableDisplays) {
        rows.append(QVariantMap{{"name", tr("Display %1").arg(rows.size() + 1)},
                                {"output", QString::fromStdString(display.name)},
                                {"width", display.width},
                                {"height", display.height},
                                {"isMain", display.isMain}});
    }
    return rows;
}

QVariantList RecordingViewModel::windowRows() const {
    QVariantList rows;
    for (const Window& window : m_availableWindows) {
        const QString application = QString::fromStdString(window.applicationName);
        rows.append(QVariantMap{{"windowId", window.id},
                                {"appName", application.isEmpty() ? tr("Unknown") : application},
                                {"title", QString::fromStdString(window.title)},
                                {"width", window.frame.width},
                                {"height", window.frame.height}});
    }
    return rows;
}

QVariantList RecordingViewModel::cameraRows() const {
    return deviceRows(m_availableCameras);
}

QVariantList RecordingViewModel::microphoneRows() const {
    return deviceRows(m_availableMicrophones);
}

QVariantMap RecordingViewModel::windowPictures() const {
    return pictures(m_windowThumbnails);
}

QVariantMap RecordingViewModel::displayPictures() const {
    return pictures(m_displayThumbnails);
}

QString RecordingViewModel::pointerWarning() const {
    switch (m_ports.cursorMode) {
    case CursorMode::metadata:
        return {};
    case CursorMode::hidden:
        return tr("This desktop doesn't tell where the pointer is: the film will show no pointer, "
                  "and nothing to zoom to can be found.");
    case CursorMode::embedded:
        return tr("This desktop paints the pointer into the picture: the editor can't move, "
                  "restyle or hide it, and nothing to zoom to can be found.");
    }
    return {};
}

QString RecordingViewModel::captureModeName() const {
    const std::string_view name = rawValue(m_captureMode);
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

void RecordingViewModel::setCaptureModeName(const QString& name) {
    if (const auto mode = fromRawValue<CaptureMode>(name.toStdString())) {
        setCaptureMode(*mode);
    }
}

} // namespace tavi
