#include "platform/portal/RestoreTokens.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace tavi {

namespace {

bool isWord(const std::string& text) {
    return !text.empty() && text.find_first_of(" \t\r\n") == std::string::npos;
}

bool writeAll(int descriptor, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = ::write(descriptor, text.data() + done, text.size() - done);
        if (count <= 0) {
            return false;
        }
        done += static_cast<std::size_t>(count);
    }
    return fsync(descriptor) == 0;
}

} // namespace

std::filesystem::path restoreTokenFile() {
    const char* state = std::getenv("XDG_STATE_HOME");
    const char* home = std::getenv("HOME");
    std::filesystem::path folder = state != nullptr && *state == '/' ? state : "";
    if (folder.empty()) {
        folder = std::filesystem::path(home != nullptr ? home : "/") / ".local" / "state";
    }
    return folder / "tavlin" / "screencast-tokens";
}

std::map<std::string, std::string> RestoreTokens::read() const {
    std::map<std::string, std::string> tokens;
    std::ifstream file(m_file);
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string source;
        std::string token;
        if (words >> source >> token) {
            tokens[source] = token;
        }
    }
    return tokens;
}

std::optional<std::string> RestoreTokens::token(const std::string& source) const {
    const auto tokens = read();
    const auto found = tokens.find(source);
    return found == tokens.end() ? std::nullopt : std::optional(found->second);
}

void RestoreTokens::setToken(const std::string& source, const std::optional<std::string>& token) {
    auto tokens = read();
    const auto before = tokens;
    tokens.erase(source);
    if (token && isWord(source) && isWord(*token)) {
        tokens[source] = *token;
    }
    if (tokens != before) {
        write(tokens);
    }
}

/// Written beside and renamed, so that there is always a whole file.
bool RestoreTokens::write(const std::map<std::string, std::string>& tokens) const {
    std::string text;
    for (const auto& [source, token] : tokens) {
        text += source;
        text += ' ';
        text += token;
        text += '\n';
    }
    std::error_code error;
    std::filesystem::create_directories(m_file.parent_path(), error);
    const std::string beside = m_file.string() + "." + std::to_string(getpid());
    const int descriptor =
        open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor < 0) {
        return false;
    }
    const bool isWritten = fchmod(descriptor, 0600) == 0 && writeAll(descriptor, text);
    const bool isClosed = close(descriptor) == 0;
    if (isWritten && isClosed && std::rename(beside.c_str(), m_file.c_str()) == 0) {
        return true;
    }
    unlink(beside.c_str());
    return false;
}

} // namespace tavi
