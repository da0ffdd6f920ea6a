#include "platform/x11/XcursorFile.h"

namespace tavi {

namespace {

constexpr std::uint32_t kMagic = 0x72756358; // "Xcur"
constexpr std::uint32_t kImageType = 0xFFFD0002;
constexpr std::size_t kImageHeaderBytes = 36;
constexpr std::size_t kTableEntryBytes = 12;
/// The format's own limit.
constexpr std::uint32_t kLargestSide = 0x7FFF;

/// Little-endian numbers of a file that may end anywhere.
class Numbers {
public:
    explicit Numbers(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    std::size_t size() const { return m_bytes.size(); }

    /// 0 behind the end.
    std::uint32_t at(std::size_t offset) const {
        if (offset + 4 > m_bytes.size()) {
            return 0;
        }
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            value |= static_cast<std::uint32_t>(m_bytes[offset + i]) << (8 * i);
        }
        return value;
    }

private:
    std::span<const std::uint8_t> m_bytes;
};

std::uint32_t distance(std::uint32_t a, std::uint32_t b) {
    return a > b ? a - b : b - a;
}

/// Where the best picture's chunk begins; absent when there is none.
std::optional<std::size_t> nearestImage(const Numbers& file, std::uint32_t size) {
    std::optional<std::size_t> best;
    std::uint32_t bestSize = 0;
    std::size_t entry = file.at(4);
    for (std::uint32_t left = file.at(12); left > 0 && entry + kTableEntryBytes <= file.size();
         --left, entry += kTableEntryBytes) {
        const std::uint32_t nominal = file.at(entry + 4);
        const bool isNearer = !best || distance(nominal, size) < distance(bestSize, size);
        if (file.at(entry) == kImageType && isNearer) {
            best = file.at(entry + 8);
            bestSize = nominal;
        }
    }
    return best;
}

} // namespace

std::optional<XcursorImage> readXcursor(std::span<const std::uint8_t> bytes, int size) {
    const Numbers file(bytes);
    if (file.at(0) != kMagic) {
        return std::nullopt;
    }
    const auto chunk = nearestImage(file, static_cast<std::uint32_t>(size));
    if (!chunk) {
        return std::nullopt;
    }
    const std::uint32_t width = file.at(*chunk + 16);
    const std::uint32_t height = file.at(*chunk + 20);
    const std::size_t pixels = *chunk + kImageHeaderBytes;
    const std::size_t rowBytes = std::size_t{width} * PixelBuffer::kBytesPerPixel;
    if (width == 0 || height == 0 || width > kLargestSide || height > kLargestSide ||
        pixels + rowBytes * height > bytes.size()) {
        return std::nullopt;
    }
    XcursorImage cursor{PixelBuffer(static_cast<int>(width), static_cast<int>(height)),
                        static_cast<int>(file.at(*chunk + 24)),
                        static_cast<int>(file.at(*chunk + 28))};
    for (std::uint32_t y = 0; y < height; ++y) {
        std::memcpy(cursor.image.row(static_cast<int>(y)), bytes.data() + pixels + rowBytes * y,
                    rowBytes);
    }
    return cursor;
}

} // namespace tavi
