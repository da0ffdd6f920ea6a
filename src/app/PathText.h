#pragma once

#include <QFile>
#include <QString>

#include <filesystem>

namespace tavi {

/// A path for the user's eyes and for QML.
inline QString textOf(const std::filesystem::path& path) {
    return QFile::decodeName(QByteArray::fromStdString(path.string()));
}

/// The path that textOf() told.
inline std::filesystem::path pathOf(const QString& text) {
    return QFile::encodeName(text).toStdString();
}

/// The last component of a path, whether or not it ends in a slash.
inline std::string nameOf(const std::filesystem::path& path) {
    return (path.has_filename() ? path : path.parent_path()).filename().string();
}

/// True when something of that name exists, be it a link that leads nowhere.
inline bool isThere(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

} // namespace tavi
