#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace tavi {

/// Where the portal's tokens are kept: below $XDG_STATE_HOME, else ~/.local/state.
std::filesystem::path restoreTokenFile();

/// The portal's word for what its user agreed to earlier, so that it need not ask again. A token
/// opens the screen to whoever holds it: only the user may read the file.
///
/// The file is one line a source, its name and its token. It is read anew each time and
/// replaced as a whole; one that can't be read or written only makes the portal ask.
/// Threads: one at a time.
class RestoreTokens {
public:
    explicit RestoreTokens(std::filesystem::path file) : m_file(std::move(file)) {}

    std::optional<std::string> token(const std::string& source) const;

    /// Absent: forgets it. A name or a token with a blank in it isn't kept.
    void setToken(const std::string& source, const std::optional<std::string>& token);

private:
    std::map<std::string, std::string> read() const;
    bool write(const std::map<std::string, std::string>& tokens) const;

    std::filesystem::path m_file;
};

} // namespace tavi
