#pragma once

#include "base/Clock.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace tavi {

/// The debug log of exports: one text file with the lines of the last export.
///
/// A line is a UTC date, ": " and the message. What can't be written is lost
/// without notice.
/// Thread: one at a time.
class ExportLog {
public:
    ExportLog(std::filesystem::path file, const Clock& clock);

    /// Empties the file.
    void reset() const;

    /// Appends one line.
    void log(std::string_view message) const;

private:
    std::filesystem::path m_file;
    const Clock& m_clock;
};

/// "yyyy-MM-dd HH:mm:ss +0000", in UTC.
std::string logText(Date date);

/// The fewest digits that read back to the same number, with a decimal point.
std::string logText(double number);

} // namespace tavi
