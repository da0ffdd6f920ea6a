#pragma once

#include "base/Geometry.h"
#include "render/ImageView.h"

#include <cstdint>

namespace tavi {

/// The blending kernels: Porter-Duff "over" on premultiplied, sRGB-encoded
/// 8-bit values. Every division by 255 rounds to nearest, so what is opaque is
/// copied exactly and what is transparent changes nothing. What is called plain
/// is the reference of the fast function of that name, which gives the same bytes.
/// Errors: none. Thread: any; none allocates.

/// v / 255 to nearest, for v in 0..65025.
inline std::uint32_t divideBy255(std::uint32_t v) {
    v += 128;
    return (v + (v >> 8)) >> 8;
}

/// Draws `count` pixels of `src` over those of `dst`. The two do not overlap.
void compositeRowOver(std::uint8_t* dst, const std::uint8_t* src, int count);
void plainCompositeRowOver(std::uint8_t* dst, const std::uint8_t* src, int count);

/// The same with every pixel of `src` first multiplied by its coverage, 0..255.
void compositeRowOver(std::uint8_t* dst, const std::uint8_t* src, const std::uint8_t* coverage,
                      int count);
void plainCompositeRowOver(std::uint8_t* dst, const std::uint8_t* src, const std::uint8_t* coverage,
                           int count);

/// Draws black of the given alphas, 0..255, over `count` pixels of `dst`.
void darkenRow(std::uint8_t* dst, const std::uint8_t* alpha, int count);
void plainDarkenRow(std::uint8_t* dst, const std::uint8_t* alpha, int count);

/// True when each of `count` pixels is opaque.
bool isRowOpaque(const std::uint8_t* row, int count);
bool plainIsRowOpaque(const std::uint8_t* row, int count);

/// Makes `count` pixels opaque, their colours unchanged: what a picture without
/// alpha shows, which is the premultiplied colour over black.
void makeRowOpaque(std::uint8_t* row, int count);
void plainMakeRowOpaque(std::uint8_t* row, int count);

/// Fills a view with one pixel value (4 bytes: blue, green, red, alpha).
void fill(ImageView dst, const std::uint8_t* pixel);

/// Draws `src` over `dst` with the top left corner of `src` at `corner`, in
/// pixels of `dst` counted from its top left. A corner between pixels spreads
/// every pixel over its four neighbours (bilinear), so that a picture moves
/// without jumps. What lies outside of `dst` is cut off; a corner that is not
/// finite draws nothing.
void compositeOver(ImageView dst, ConstImageView src, Point corner);

} // namespace tavi
