#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace tavi {

/// A file that is open for reading and writing at any place. Calls that may fail give 0 or the
/// system's error number.
///
/// Threads: one at a time.
class MediaFile {
public:
    explicit MediaFile(const std::filesystem::path& path);
    ~MediaFile();
    MediaFile(const MediaFile&) = delete;
    MediaFile& operator=(const MediaFile&) = delete;

    bool isOpen() const { return m_file >= 0; }

    /// Bytes; 0 where the system doesn't tell.
    std::uint64_t size() const;

    /// Fills `bytes` from `offset` on; false where the file ends before or can't be read.
    bool read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;

    int write(std::uint64_t offset, std::span<const std::uint8_t> bytes) const;

    /// Waits until all of it is on the disk.
    int synchronize() const;

    /// Has the system begin to write a stretch to the disk; waits for nothing but room in the
    /// disk's queue.
    void startSynchronizing(std::uint64_t offset, std::uint64_t bytes) const;

    /// Ends the file at `size`.
    void cut(std::uint64_t size) const;

private:
    int m_file;
};

} // namespace tavi
