#include "app/StorageSize.h"

#include <QCoreApplication>

#include <array>
#include <cmath>
#include <sys/stat.h>

namespace tavi {

namespace {

namespace fs = std::filesystem;

struct Unit {
    const char* text;
    int digits; ///< Of the fraction, at most.
};

constexpr std::array<Unit, 6> kUnits{{
    {QT_TRANSLATE_NOOP("ByteCount", "%1 KB"), 0},
    {QT_TRANSLATE_NOOP("ByteCount", "%1 MB"), 1},
    {QT_TRANSLATE_NOOP("ByteCount", "%1 GB"), 2},
    {QT_TRANSLATE_NOOP("ByteCount", "%1 TB"), 2},
    {QT_TRANSLATE_NOOP("ByteCount", "%1 PB"), 2},
    {QT_TRANSLATE_NOOP("ByteCount", "%1 EB"), 2},
}};

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(ByteCount)
};

double rounded(double value, int digits) {
    const double scale = std::pow(10, digits);
    return std::round(value * scale) / scale;
}

/// With at most that many digits behind the point.
QString number(double value, int digits, const QLocale& locale) {
    while (digits > 0 && rounded(value, digits) == rounded(value, digits - 1)) {
        --digits;
    }
    return locale.toString(value, 'f', digits);
}

std::int64_t sizeOf(const fs::path& entry) {
    struct stat attributes {};
    return lstat(entry.c_str(), &attributes) == 0 ? attributes.st_size : 0;
}

} // namespace

std::int64_t totalSize(const fs::path& folder) {
    std::int64_t total = 0;
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied,
                                           error);
    while (!error && entry != fs::recursive_directory_iterator()) {
        total += sizeOf(entry->path());
        entry.increment(error);
    }
    return total;
}

QString byteCountText(std::int64_t bytes, const QLocale& locale) {
    if (bytes == 0) {
        return Texts::tr("Zero KB");
    }
    if (bytes == 1) {
        return Texts::tr("1 byte");
    }
    if (bytes < 1000) {
        return Texts::tr("%1 bytes").arg(locale.toString(static_cast<qlonglong>(bytes)));
    }
    double value = static_cast<double>(bytes) / 1000;
    std::size_t unit = 0;
    while (unit + 1 < kUnits.size() && rounded(value, kUnits[unit].digits) >= 1000) {
        value /= 1000;
        ++unit;
    }
    return Texts::tr(kUnits[unit].text).arg(number(value, kUnits[unit].digits, locale));
}

} // namespace tavi
