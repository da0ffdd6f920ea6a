#include "project/RecordingFolder.h"

#include "base/HexDigits.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string_view>
#include <time.h>

namespace tavi {

namespace {

constexpr const char* kLibraryName = "Tavlin";

/// Tries per second after which a folder's name is taken as it comes.
constexpr int kMostFoldersOfOneSecond = 1000;

std::optional<std::string> environment(const char* name) {
    const char* value = std::getenv(name);
    if (!value || !*value) {
        return std::nullopt;
    }
    return std::string(value);
}

std::filesystem::path home() {
    return environment("HOME").value_or("/");
}

/// The value of XDG_DOCUMENTS_DIR in user-dirs.dirs: an absolute path, or one
/// that begins with $HOME, in double quotes (the format of xdg-user-dirs).
std::optional<std::filesystem::path> documentsOfUserDirs() {
    const auto config = environment("XDG_CONFIG_HOME");
    std::ifstream file((config ? std::filesystem::path(*config) : home() / ".config") /
                       "user-dirs.dirs");
    constexpr std::string_view kKey = "XDG_DOCUMENTS_DIR=\"";
    constexpr std::string_view kHome = "$HOME/";
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with(kKey)) {
            continue;
        }
        std::string value = line.substr(kKey.size());
        value = value.substr(0, value.find('"'));
        if (value.starts_with(kHome)) {
            return home() / value.substr(kHome.size());
        }
        if (value.starts_with('/')) {
            return value;
        }
    }
    return std::nullopt;
}

std::filesystem::path documentsDirectory() {
    for (const char* name : {"TAVI_DOCUMENTS_DIR", "XDG_DOCUMENTS_DIR"}) {
        if (const auto value = environment(name)) {
            return *value;
        }
    }
    return documentsOfUserDirs().value_or(home() / "Documents");
}

bool isUnreserved(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("-._~/!$&'()*+,;=:@").find(static_cast<char>(c)) !=
               std::string_view::npos;
}

std::string percentDecoded(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? hexDigitValue(text[i + 1]) : -1;
        const int low = high >= 0 ? hexDigitValue(text[i + 2]) : -1;
        if (low < 0) {
            out += text[i];
        } else {
            out += static_cast<char>(high * 16 + low);
            i += 2;
        }
    }
    return out;
}

} // namespace

std::filesystem::path recordingsDirectory() {
    return documentsDirectory() / kLibraryName;
}

std::string recordingFolderName(Date date) {
    const auto seconds = static_cast<time_t>(std::floor(date.sinceEpoch()));
    tm local{};
    localtime_r(&seconds, &local);
    return fmt::format("Recording_{:04}-{:02}-{:02}_{:02}-{:02}-{:02}", local.tm_year + 1900,
                       local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

std::filesystem::path makeRecordingFolder(const std::filesystem::path& recordingsDirectory,
                                          Date date, std::error_code& error) {
    std::filesystem::create_directories(recordingsDirectory, error);
    const std::string name = recordingFolderName(date);
    std::filesystem::path folder = recordingsDirectory / name;
    for (int n = 2; !error && n < kMostFoldersOfOneSecond; ++n) {
        if (std::filesystem::create_directory(folder, error) || error) {
            break;
        }
        folder = recordingsDirectory / fmt::format("{}_{}", name, n);
    }
    return folder;
}

std::string take::cursorImageName(std::size_t index) {
    return fmt::format("cursor_{}.png", index);
}

std::string folderUrl(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(folder, error);
    std::string path = (error ? folder : absolute).lexically_normal().string();
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    std::string url = "file://";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        url += isUnreserved(byte) ? std::string(1, c) : fmt::format("%{:02X}", byte);
    }
    return url.back() == '/' ? url : url + "/";
}

std::filesystem::path pathOfFileUrl(const std::string& url) {
    constexpr std::string_view kScheme = "file://";
    if (!url.starts_with(kScheme)) {
        return url;
    }
    const std::string_view rest = std::string_view(url).substr(kScheme.size());
    const auto slash = rest.find('/'); // skips an empty or local host name
    return percentDecoded(slash == std::string_view::npos ? rest : rest.substr(slash));
}

} // namespace tavi
