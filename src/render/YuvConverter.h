#pragma once

#include "media/ColorConversion.h"

namespace tavi {

/// Colour conversion on the processor's vectors; see YuvKernels.h.
///
/// Within 1/255 of the definition in real numbers: colour is interpolated bilinearly
/// on the way to BGRA; on the way back a colour sample is the mean of the pixels
/// around its place, weighted 1-2-1 along an axis where it lies on a pixel and 1-1
/// where it lies between two. Beyond the picture its edge goes on.
class YuvConverter final : public ColorConverter {
public:
    void toBgra(const ConstYuvView& from, PixelBuffer& to) const override;
    void fromBgra(const PixelBuffer& from, const YuvView& to) const override;
};

} // namespace tavi
