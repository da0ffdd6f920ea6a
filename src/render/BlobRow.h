#pragma once

#include <array>
#include <cstdint>

namespace tavi {

/// The blobs of a wallpaper as one row of pixels sees them.
struct BlobRow {
    static constexpr int kBlobs = 3;

    /// One blob. A radius that isn't positive is told by an inverse, a colour and an
    /// alpha of 0.
    struct Blob {
        float centerX = 0;            ///< In pixels from the row's left end.
        float distanceSquared = 0;    ///< From the row's middle line to the centre.
        float inverseRadius = 0;      ///< 1 / pixels.
        std::array<float, 3> color{}; ///< Blue, green, red; premultiplied, 0..255.
        float alpha = 0;              ///< At the centre, 0..1.
    };

    std::array<float, 3> base{}; ///< Blue, green, red below all blobs, 0..255.
    std::array<Blob, kBlobs> blobs{};
};

/// Draws the first `count` pixels of a row, opaque. A blob's alpha falls linearly from
/// its centre to its radius; the blobs lie over each other in their order.
/// Within 1 of 255 of plainDrawBlobRow(). Any thread.
void drawBlobRow(const BlobRow& row, std::uint8_t* out, int count);

/// Pixels `begin` to `end`, one after the other: the reference.
void plainDrawBlobRow(const BlobRow& row, std::uint8_t* out, int begin, int end);

} // namespace tavi
