#include "render/ExportLog.h"

#include <fmt/format.h>

#include <cmath>
#include <ctime>
#include <fstream>

namespace tavi {

ExportLog::ExportLog(std::filesystem::path file, const Clock& clock)
    : m_file(std::move(file)),
      m_clock(clock) {}

void ExportLog::reset() const {
    std::ofstream(m_file, std::ios::binary | std::ios::trunc);
}

void ExportLog::log(std::string_view message) const {
    std::ofstream file(m_file, std::ios::binary | std::ios::app);
    file << logText(m_clock.now()) << ": " << message << '\n';
}

std::string logText(Date date) {
    const auto seconds = static_cast<std::time_t>(std::floor(date.sinceEpoch()));
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02} +0000", utc.tm_year + 1900,
                       utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec);
}

std::string logText(double number) {
    std::string text = fmt::format("{}", number);
    if (text.find_first_not_of("-0123456789") == std::string::npos) {
        text += ".0";
    }
    return text;
}

} // namespace tavi
