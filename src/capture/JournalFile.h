#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace tavi {

/// The file of a journal while a take runs: it is only added to, it is locked as long as its
/// recorder lives, and it keeps room on the disk in reserve for the files that complete a take.
///
/// The lock (flock) goes with the process, however that ends, and is not left to programs that the
/// process starts. Who holds it may complete or remove the journal.
/// Thread: one at a time. The destructor closes the file and leaves it where it is.
class JournalFile {
public:
    /// Creates the file, which must not be there. Null when it can't be made or locked.
    static std::unique_ptr<JournalFile> create(const std::filesystem::path& path);

    /// Opens and locks a journal that was left behind. Null when it is none, can't be
    /// read, or is held by somebody who lives.
    static std::unique_ptr<JournalFile> openLeftBehind(const std::filesystem::path& path);

    ~JournalFile();

    JournalFile(const JournalFile&) = delete;
    JournalFile& operator=(const JournalFile&) = delete;

    /// Adds `text`. What can't be written (a full disk) is kept and tried again the next time, so
    /// that there is never a gap; a program that reads meanwhile may see part of a line.
    void append(std::string_view text);

    /// Gives the room in reserve back to the disk, for other files to use.
    void releaseReserve();

    /// Removes the file from its folder.
    void remove();

private:
    JournalFile(std::filesystem::path path, int file);

    void growReserve();

    const std::filesystem::path m_path;
    const int m_file;
    std::string m_unwritten;
    std::int64_t m_size = 0;     ///< Bytes that are in the file for good.
    std::int64_t m_reserved = 0; ///< Bytes from the file's start that have their place on the disk.
    bool m_keepsReserve = true;
};

} // namespace tavi
