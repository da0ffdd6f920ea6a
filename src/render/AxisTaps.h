#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace tavi {

/// One axis of a picture that is moved and scaled: the stretch [sourceStart,
/// sourceStart + sourceLength) lands on [targetStart, targetStart + targetLength).
/// All in pixels of the respective picture; pixel i covers [i, i + 1).
struct AxisMapping {
    double sourceStart = 0;
    double sourceLength = 0; ///< Positive.
    double targetStart = 0;
    double targetLength = 0; ///< Positive.
    int sourceSize = 0;      ///< Pixels that the source has, at least 1.
};

/// Which source pixels make up each target pixel along one axis.
///
/// Enlarged (or same size) pictures are interpolated linearly between pixel
/// centres; reduced ones average the area that a target pixel covers, so that
/// nothing between two samples is lost. Both are the same at the border between
/// them. Pixels that lie wholly outside the source stretch have no weight: the
/// edge pixel is repeated.
///
/// Shapes:  every target pixel has `count` neighbouring source pixels from
///          `first` on; `weights` holds `count` numbers a pixel.
/// Units:   weights are in 1/kOne and add up to kOne for each pixel, so that an
///          even picture stays even.
struct AxisTaps {
    static constexpr int kBits = 14;
    static constexpr int kOne = 1 << kBits;

    int begin = 0; ///< The first target pixel.
    int count = 0; ///< Source pixels a target pixel.
    std::vector<int> first;
    std::vector<std::int16_t> weights;

    int end() const { return begin + static_cast<int>(first.size()); }

    /// Target pixel `x`: its first source pixel and its weights.
    int firstOf(int x) const { return first[static_cast<std::size_t>(x - begin)]; }
    const std::int16_t* weightsOf(int x) const {
        return weights.data() + static_cast<std::ptrdiff_t>(x - begin) * count;
    }

    /// The source pixel of the first target pixel when every target pixel is one
    /// whole source pixel and they run side by side; else absent.
    std::optional<int> copiedFrom() const;

    /// Makes the table for the target pixels [targetBegin, targetEnd). Keeps the
    /// memory of an earlier table.
    void assign(const AxisMapping& mapping, int targetBegin, int targetEnd);
};

} // namespace tavi
