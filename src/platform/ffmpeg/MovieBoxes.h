#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace tavi {

/// A box type as the number that stands in the file.
constexpr std::uint32_t fourCC(const char (&name)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) {
        code = code << 8 | static_cast<std::uint8_t>(name[i]);
    }
    return code;
}

/// A number of up to eight bytes.
std::uint64_t bigEndian(std::span<const std::uint8_t> bytes);

/// Fills `bytes` from `offset` on; false where the source ends before.
using ReadBytes = std::function<bool(std::uint64_t offset, std::span<std::uint8_t> bytes)>;

/// Where a box of a QuickTime or MP4 file lies (ISO/IEC 14496-12, 4.2).
struct BoxRange {
    std::uint32_t type = 0;
    std::uint64_t start = 0; ///< Of its header.
    std::uint64_t begin = 0; ///< Of its content.
    std::uint64_t end = 0;
};

/// The box at `offset` inside a container that ends at `limit`. A box that
/// claims to reach further is cut at the limit. Absent where no box is.
std::optional<BoxRange> readBox(const ReadBytes& read, std::uint64_t offset, std::uint64_t limit);

/// A box in memory: either its content, or the boxes in it.
struct MovieBox {
    std::uint32_t type = 0;
    std::vector<std::uint8_t> content;
    std::vector<MovieBox> children;

    /// The first one of a type; null where there is none.
    MovieBox* child(std::uint32_t wanted);
    const MovieBox* child(std::uint32_t wanted) const;

    /// Takes out all of a type.
    void remove(std::uint32_t unwanted);
};

/// All boxes of a stretch of bytes, containers opened. What is no box at the end is left out.
std::vector<MovieBox> parseBoxes(std::span<const std::uint8_t> bytes);

/// Numbers one after another, as the file holds them.
class BoxWriter {
public:
    BoxWriter& u32(std::uint64_t value) { return number(value, 4); }
    BoxWriter& u64(std::uint64_t value) { return number(value, 8); }
    /// A number of `size` bytes, up to eight.
    BoxWriter& number(std::uint64_t value, int size);
    BoxWriter& bytes(std::span<const std::uint8_t> more);

    std::vector<std::uint8_t> take() { return std::move(m_bytes); }

private:
    std::vector<std::uint8_t> m_bytes;
};

/// Appends a box as the file holds it. Its size is below 4 GiB.
void appendBox(std::vector<std::uint8_t>& to, const MovieBox& box);

} // namespace tavi
