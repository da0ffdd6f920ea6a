#pragma once

#include <QLocale>
#include <QString>

#include <cstdint>
#include <filesystem>

namespace tavi {

/// The bytes of everything below a folder: the sum of the file sizes of all entries, folders
/// among them, links not followed. Entries that can't be looked at are passed over; a folder that
/// is not there has 0. Thread: any; may take long.
std::int64_t totalSize(const std::filesystem::path& folder);

/// A number of bytes for the user, in decimal units as file managers count: "Zero KB", "1 byte",
/// "812 bytes", "12 KB", "3.4 MB", "1.25 GB". Bytes and KB have no fraction, MB at most one digit,
/// larger units at most two.
QString byteCountText(std::int64_t bytes, const QLocale& locale);

} // namespace tavi
