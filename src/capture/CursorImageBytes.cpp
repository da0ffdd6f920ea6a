#include "capture/CursorImageBytes.h"

#include <cstring>

namespace tavi {

namespace {

constexpr std::size_t kHeaderBytes = 16;
/// No cursor comes near this; it keeps a damaged header from asking for memory.
constexpr std::uint32_t kLargestSide = 4096;

void appendNumber(std::vector<std::uint8_t>& bytes, std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    }
}

std::uint32_t numberAt(std::span<const std::uint8_t> bytes, std::size_t offset) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value |= static_cast<std::uint32_t>(bytes[offset + i]) << (8 * i);
    }
    return value;
}

} // namespace

std::vector<std::uint8_t> cursorImageBytes(const PixelBuffer& image, int hotSpotX, int hotSpotY) {
    const std::size_t rowBytes =
        static_cast<std::size_t>(image.width()) * PixelBuffer::kBytesPerPixel;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(kHeaderBytes + rowBytes * static_cast<std::size_t>(image.height()));
    for (const int value : {image.width(), image.height(), hotSpotX, hotSpotY}) {
        appendNumber(bytes, static_cast<std::uint32_t>(value));
    }
    for (int y = 0; y < image.height(); ++y) {
        bytes.insert(bytes.end(), image.row(y), image.row(y) + rowBytes);
    }
    return bytes;
}

std::optional<PixelBuffer> cursorImageFromBytes(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < kHeaderBytes) {
        return std::nullopt;
    }
    const std::uint32_t width = numberAt(bytes, 0);
    const std::uint32_t height = numberAt(bytes, 4);
    const std::size_t rowBytes = static_cast<std::size_t>(width) * PixelBuffer::kBytesPerPixel;
    if (width == 0 || height == 0 || width > kLargestSide || height > kLargestSide ||
        bytes.size() != kHeaderBytes + rowBytes * height) {
        return std::nullopt;
    }
    PixelBuffer image(static_cast<int>(width), static_cast<int>(height));
    for (std::uint32_t y = 0; y < height; ++y) {
        std::memcpy(image.row(static_cast<int>(y)), bytes.data() + kHeaderBytes + rowBytes * y,
                    rowBytes);
    }
    return image;
}

SystemCursor systemCursor(const PixelBuffer& image, int hotSpotX, int hotSpotY) {
    SystemCursor cursor;
    cursor.imageBytes = cursorImageBytes(image, hotSpotX, hotSpotY);
    cursor.hotSpot = {static_cast<double>(hotSpotX), static_cast<double>(hotSpotY)};
    cursor.size = {static_cast<double>(image.width()), static_cast<double>(image.height())};
    return cursor;
}

} // namespace tavi
