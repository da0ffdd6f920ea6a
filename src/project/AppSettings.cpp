#include "project/AppSettings.h"

#include "project/AppSettingsJson.h"

namespace tavi {

namespace {

constexpr const char* kFileName = "settings.json";

} // namespace

AppSettings loadAppSettings(const std::filesystem::path& recordingsDirectory) {
    const auto text = readTextFile(recordingsDirectory / kFileName);
    if (!text) {
        return {};
    }
    return decodeAppSettings(*text).value_or(AppSettings{});
}

void saveAppSettings(const AppSettings& settings,
                     const std::filesystem::path& recordingsDirectory) {
    std::error_code ignored;
    std::filesystem::create_directories(recordingsDirectory, ignored);
    if (const auto text = encodeAppSettings(settings)) {
        writeTextFile(recordingsDirectory / kFileName, *text);
    }
}

} // namespace tavi
