#include "render/BackgroundRenderer.h"

#include "render/BackgroundPictures.h"
#include "render/Composite.h"
#include "render/RenderGeometry.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tavi {

namespace {

constexpr int kChannels = PixelBuffer::kBytesPerPixel;
constexpr double kLargestSide = 16384;

/// How many rows ahead of the one drawn their memory is fetched.
constexpr int kRowsAhead = 4;

/// Deviations of a shadow's blur that are drawn to each side.
constexpr double kShadowReach = 3.0;

/// Deviations around the output that can matter to what a blur shows inside it.
constexpr double kBlurReach = 4.0;

/// Pixels around the output that content may hang over it and still be blurred
/// exactly into its shadow; bounds the memory.
constexpr double kLargestOverhang = 2048;

/// From this deviation on, in pixels of the video, the blur background is made
/// before the frame is enlarged, where it is cheaper.
constexpr double kLeastSourceSigma = 7.0;

double limitedSide(double side) {
    return side >= 1 ? std::min(side, kLargestSide) : 1;
}

int evenPixels(double side) {
    const int whole = static_cast<int>(limitedSide(side));
    return whole + whole % 2;
}

/// A mask written out, a byte a pixel, over a frame and `overhang` pixels around it.
class Coverage {
public:
    Coverage(const CoverageMask& mask, int width, int height, int overhang)
        : m_width(width + 2 * overhang),
          m_height(height + 2 * overhang),
          m_bytes(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height)) {
        for (int y = mask.bounds().top; y < mask.bounds().bottom; ++y) {
            const CoverageMask::Row row = mask.row(y);
            std::uint8_t* out =
                m_bytes.data() + overhang + static_cast<std::ptrdiff_t>(y + overhang) * m_width;
            std::copy(row.left.begin(), row.left.end(), out + row.begin);
            std::fill(out + row.solidBegin, out + row.solidEnd, std::uint8_t{255});
            std::copy(row.right.begin(), row.right.end(), out + row.solidEnd);
        }
    }

    SampleView view() const {
        return {m_bytes.data(), m_width, m_height, static_cast<std::size_t>(m_width), 1};
    }

private:
    int m_width;
    int m_height;
    std::vector<std::uint8_t> m_bytes;
};

std::ptrdiff_t bytes(int pixels) {
    return static_cast<std::ptrdiff_t>(pixels) * kChannels;
}

/// Begins to fetch the pixels of a row, which is about to be needed. Of the strips
/// beside the content processors don't foresee it.
void fetchPixels(const std::uint8_t* row, int left, int right) {
#if defined(__GNUC__)
    constexpr std::ptrdiff_t kCacheLine = 64;
    for (std::ptrdiff_t i = bytes(left); i < bytes(right); i += kCacheLine) {
        __builtin_prefetch(row + i);
    }
#endif
}

} // namespace

FrameSize frameSizeFor(Size outputSize) {
    return {evenPixels(outputSize.width), evenPixels(outputSize.height)};
}

BackgroundRenderer::BackgroundRenderer(const AppearanceSettings& settings, Size outputSize)
    : m_settings(settings),
      m_outputSize{limitedSide(outputSize.width), limitedSide(outputSize.height)} {
    const FrameSize size = frameSizeFor(m_outputSize);
    m_width = size.width;
    m_height = size.height;
    m_row.resize(static_cast<std::size_t>(m_width) * kChannels);
    prepareBackground();
}

void BackgroundRenderer::prepareBackground() {
    switch (m_settings.backgroundStyle) {
    case BackgroundStyle::solidWhite:
        m_background = solidImage({1, 1, 1, 1}, m_width, m_height);
        break;
    case BackgroundStyle::solidCustom:
        m_background = solidImage(m_settings.solidColor, m_width, m_height);
        break;
    case BackgroundStyle::gradient:
        m_background = gradientImage(gradientPreset(m_settings.gradientPresetIndex), m_outputSize,
                                     m_width, m_height);
        break;
    case BackgroundStyle::wallpaper:
        m_background = PixelBuffer(m_width, m_height);
        drawWallpaper(wallpaper(m_settings.wallpaperPreset), m_outputSize, m_background);
        break;
    case BackgroundStyle::solidBlack:
    case BackgroundStyle::blur: // until there is a frame
        m_background = solidImage({0, 0, 0, 1}, m_width, m_height);
        break;
    }
}

void BackgroundRenderer::compose(const PixelBufferPtr& frame, const Rect& sourceRect, double time,
                                 ImageView out) {
    chooseBackground(frame, time);
    const Rect contentRect = placeContent(sourceRect);
    const Rect frameRect{0, 0, static_cast<double>(frame->width()),
                         static_cast<double>(frame->height())};
    const Rect shown = hasArea(contentRect) ? intersection(sourceRect, frameRect) : Rect{};
    const Rect visibleRect{m_contentOffset.x + (shown.x - sourceRect.x) * m_contentScale,
                           m_contentOffset.y + (shown.y - sourceRect.y) * m_contentScale,
                           shown.width * m_contentScale, shown.height * m_contentScale};
    m_hasContent = hasArea(shown) && hasArea(visibleRect);
    applyCornerMask(contentRect, visibleRect);
    const Shadow* shadow =
        m_settings.shadowEnabled && hasArea(contentRect) ? &shadowImage(contentRect) : nullptr;
    prepareBackdrop(shadow);
    m_hasContent = m_hasContent && !m_mask.bounds().empty();
    if (m_hasContent) {
        m_content.begin(*frame, flipped(shown, frame->height()), flipped(visibleRect, m_height),
                        m_mask.bounds());
    }
    for (int y = 0; y < out.height; ++y) {
        drawRow(y, shadow, out);
    }
}

Rect BackgroundRenderer::placeContent(const Rect& sourceRect) {
    const double padX = m_settings.padding * m_outputSize.width;
    const double padY = m_settings.padding * m_outputSize.height;
    const double availableWidth = m_outputSize.width - 2 * padX;
    const double availableHeight = m_outputSize.height - 2 * padY;
    const double scale =
        std::min(availableWidth / sourceRect.width, availableHeight / sourceRect.height);
    const Rect contentRect{padX + (availableWidth - sourceRect.width * scale) * 0.5,
                           padY + (availableHeight - sourceRect.height * scale) * 0.5,
                           sourceRect.width * scale, sourceRect.height * scale};
    if (!hasArea(sourceRect) || !hasArea(contentRect)) {
        m_contentScale = 0;
        m_contentOffset = {};
        return {};
    }
    m_contentScale = scale;
    m_contentOffset = {contentRect.x, contentRect.y};
    return contentRect;
}

Rect BackgroundRenderer::roundedShape(const Rect& contentRect) const {
    if (!(m_settings.cornerRadius > 0)) {
        return contentRect;
    }
    // A rounded shape has whole pixels, so its right and top sides may lie beyond
    // the content's by part of one.
    return {contentRect.x, contentRect.y, std::ceil(contentRect.width),
            std::ceil(contentRect.height)};
}

void BackgroundRenderer::applyCornerMask(const Rect& contentRect, const Rect& visibleRect) {
    const bool isRounded = m_settings.cornerRadius > 0 && hasArea(contentRect);
    if (contentRect != m_maskContent || visibleRect != m_maskVisible) {
        m_mask.assign(flipped(roundedShape(contentRect), m_height), m_settings.cornerRadius,
                      flipped(m_hasContent ? visibleRect : Rect{}, m_height),
                      {0, 0, m_width, m_height});
        m_maskContent = contentRect;
        m_maskVisible = visibleRect;
    }
    if (isRounded) {
        m_cachedContentRect = contentRect;
    }
}

const BackgroundRenderer::Shadow& BackgroundRenderer::shadowImage(const Rect& contentRect) {
    // Kept on purpose: applyCornerMask() has just recorded this rect, so with
    // rounded corners the first shadow is used for the whole export, wherever the
    // content goes. With square corners nothing is recorded, and the shadow
    // follows the content.
    const bool isTakenAsValid = m_cachedContentRect == contentRect;
    const bool isOfThisRect = m_cachedShadow && m_cachedShadow->contentRect == contentRect;
    if (!m_cachedShadow || !(isTakenAsValid || isOfThisRect)) {
        m_cachedShadow = makeShadow(contentRect);
        m_isBackdropMade = false;
    }
    return *m_cachedShadow;
}

BackgroundRenderer::Shadow BackgroundRenderer::makeShadow(const Rect& contentRect) const {
    const double sigma = m_settings.shadowRadius > 0 ? m_settings.shadowRadius : 0;
    // Content that hangs over the output throws its shadow back into it.
    const bool hangsOver = contentRect.x < 0 || contentRect.y < 0 || contentRect.maxX() > m_width ||
                           contentRect.maxY() > m_height;
    const int overhang =
        hangsOver ? static_cast<int>(std::min(std::ceil(kBlurReach * sigma), kLargestOverhang)) : 0;
    CoverageMask mask;
    mask.assign(flipped(roundedShape(contentRect), m_height), m_settings.cornerRadius,
                flipped(contentRect, m_height),
                {-overhang, -overhang, m_width + overhang, m_height + overhang});
    const double reach = kShadowReach * sigma;
    const Rect extent{contentRect.x - reach, contentRect.y - reach, contentRect.width + 2 * reach,
                      contentRect.height + 2 * reach};
    Shadow shadow{
        touchedPixels(flipped(extent, m_height), {0, 0, m_width, m_height}), {}, contentRect};
    if (shadow.bounds.empty()) {
        return shadow;
    }
    const Coverage coverage(mask, m_width, m_height, overhang);
    GaussianBlur blur;
    blur.blur(coverage.view(), sigma, BlurEdges::transparent);
    blur.begin();
    const int width = shadow.bounds.width();
    shadow.alpha.resize(static_cast<std::size_t>(width) *
                        static_cast<std::size_t>(shadow.bounds.height()));
    const double opacity =
        m_settings.shadowOpacity > 0 ? std::min(m_settings.shadowOpacity, 1.0) : 0;
    std::uint8_t* out = shadow.alpha.data();
    for (int y = shadow.bounds.top; y < shadow.bounds.bottom; ++y, out += width) {
        blur.writeRow(y + overhang, shadow.bounds.left + overhang, shadow.bounds.right + overhang,
                      out);
        std::transform(out, out + width, out, [&](std::uint8_t alpha) {
            return static_cast<std::uint8_t>(std::lround(alpha * opacity));
        });
    }
    return shadow;
}

const std::uint8_t* BackgroundRenderer::Shadow::at(int x, int y) const {
    return alpha.data() + static_cast<std::ptrdiff_t>(y - bounds.top) * bounds.width() +
           (x - bounds.left);
}

bool BackgroundRenderer::isBackgroundStill() const {
    return m_settings.backgroundStyle != BackgroundStyle::blur &&
           !(m_settings.backgroundStyle == BackgroundStyle::wallpaper &&
             m_settings.animateBackground);
}

void BackgroundRenderer::prepareBackdrop(const Shadow* shadow) {
    if (!shadow || m_isBackdropMade || !isBackgroundStill()) {
        return;
    }
    m_backdrop = PixelBuffer(m_width, m_height);
    for (int y = 0; y < m_height; ++y) {
        drawBackground(y, 0, m_width, m_backdrop);
        drawShadow(*shadow, y, 0, m_width, m_backdrop);
    }
    m_isBackdropMade = true;
}

void BackgroundRenderer::chooseBackground(const PixelBufferPtr& frame, double time) {
    if (m_settings.backgroundStyle == BackgroundStyle::blur) {
        blurredBackground(frame);
    } else if (m_settings.backgroundStyle == BackgroundStyle::wallpaper &&
               m_settings.animateBackground) {
        animatedWallpaperImage(time);
    }
}

void BackgroundRenderer::animatedWallpaperImage(double time) {
    drawWallpaper(movedWallpaper(wallpaper(m_settings.wallpaperPreset), time), m_outputSize,
                  m_background);
}

void BackgroundRenderer::blurredBackground(const PixelBufferPtr& frame) {
    if (frame == m_blurredFrame) {
        return; // made of the whole frame alone, whatever the camera does
    }
    m_blurredFrame = frame;
    m_isBlurDrawn = !frame->empty();
    if (!m_isBlurDrawn) {
        return;
    }
    const double width = frame->width();
    const double height = frame->height();
    const double scale = std::max(m_outputSize.width / width, m_outputSize.height / height);
    const double sigma = m_settings.blurRadius > 0 ? m_settings.blurRadius : 0;
    if (sigma / scale < kLeastSourceSigma) {
        blurEnlargedFrame(*frame, scale, sigma);
        return;
    }
    m_blur.blur({frame->data(), frame->width(), frame->height(), frame->stride(), kChannels},
                sigma / scale, BlurEdges::extended);
    const Rect target =
        flipped({(m_outputSize.width - width * scale) * 0.5,
                 (m_outputSize.height - height * scale) * 0.5, width * scale, height * scale},
                m_height);
    m_blur.begin({0, width, target.x, target.width, frame->width()},
                 {0, height, target.y, target.height, frame->height()}, {0, 0, m_width, m_height});
}

void BackgroundRenderer::blurEnlargedFrame(ConstImageView frame, double scale, double sigma) {
    const double width = frame.width * scale;
    const double height = frame.height * scale;
    const Rect target = flipped(
        {(m_outputSize.width - width) * 0.5, (m_outputSize.height - height) * 0.5, width, height},
        m_height);
    // What overflows the output still shines in, as far as the blur reaches.
    const double reach = std::ceil(sigma * kBlurReach);
    const PixelBounds pixels{
        static_cast<int>(std::floor(std::max(target.x, -reach))),
        static_cast<int>(std::floor(std::max(target.y, -reach))),
        static_cast<int>(std::ceil(std::min(target.maxX(), m_width + reach))),
        static_cast<int>(std::ceil(std::min(target.maxY(), m_height + reach)))};
    PixelBuffer enlarged(pixels.width(), pixels.height());
    Resampler resampler;
    resampler.begin(frame,
                    {0, 0, static_cast<double>(frame.width), static_cast<double>(frame.height)},
                    target, pixels);
    for (int y = pixels.top; y < pixels.bottom; ++y) {
        resampler.writeRow(y, pixels.left, pixels.right, enlarged.row(y - pixels.top));
    }
    m_blur.blur(
        {enlarged.data(), enlarged.width(), enlarged.height(), enlarged.stride(), kChannels}, sigma,
        BlurEdges::extended);
    const double columns = pixels.width();
    const double rows = pixels.height();
    m_blur.begin({0, columns, static_cast<double>(pixels.left), columns, pixels.width()},
                 {0, rows, static_cast<double>(pixels.top), rows, pixels.height()},
                 {0, 0, m_width, m_height});
}

void BackgroundRenderer::drawBehind(const Shadow* shadow, int y, int left, int right,
                                    ImageView out) {
    if (right <= left) {
        return;
    }
    const int ahead = std::min(y + kRowsAhead, m_height - 1);
    fetchPixels(out.row(ahead), left, right);
    if (shadow && isBackgroundStill()) {
        fetchPixels(m_backdrop.row(ahead), left, right);
        std::memcpy(out.row(y) + bytes(left), m_backdrop.row(y) + bytes(left),
                    static_cast<std::size_t>(bytes(right - left)));
        return;
    }
    drawBackground(y, left, right, out);
    if (shadow) {
        drawShadow(*shadow, y, left, right, out);
    }
}

void BackgroundRenderer::drawBackground(int y, int left, int right, ImageView out) {
    std::uint8_t* row = out.row(y) + bytes(left);
    if (m_isBlurDrawn) {
        m_blur.writeRow(y, left, right, row);
        makeRowOpaque(row, right - left);
    } else {
        std::memcpy(row, m_background.row(y) + bytes(left),
                    static_cast<std::size_t>(bytes(right - left)));
    }
}

void BackgroundRenderer::drawShadow(const Shadow& shadow, int y, int left, int right,
                                    ImageView out) const {
    if (y < shadow.bounds.top || y >= shadow.bounds.bottom) {
        return;
    }
    const int from = std::max(left, shadow.bounds.left);
    const int to = std::min(right, shadow.bounds.right);
    if (from < to) {
        darkenRow(out.row(y) + bytes(from), shadow.at(from, y), to - from);
    }
}

void BackgroundRenderer::drawRow(int y, const Shadow* shadow, ImageView out) {
    const PixelBounds& bounds = m_mask.bounds();
    if (!m_hasContent || y < bounds.top || y >= bounds.bottom) {
        drawBehind(shadow, y, 0, out.width, out);
        return;
    }
    const CoverageMask::Row mask = m_mask.row(y);
    drawBehind(shadow, y, 0, mask.solidBegin, out);
    drawBehind(shadow, y, mask.solidEnd, out.width, out);
    std::uint8_t* row = out.row(y);
    const EdgePixels leftEdge = keepBehind(row, mask.begin, mask.left);
    const EdgePixels rightEdge = keepBehind(row, mask.solidEnd, mask.right);
    const bool isOpaque = m_content.writeRow(y, mask.begin, mask.end, row + bytes(mask.begin));
    blendEdge(leftEdge);
    blendEdge(rightEdge);
    std::uint8_t* solid = row + bytes(mask.solidBegin);
    const int count = mask.solidEnd - mask.solidBegin;
    if (isOpaque || isRowOpaque(solid, count)) {
        return;
    }
    std::uint8_t* content = m_row.data() + bytes(mask.solidBegin);
    std::memcpy(content, solid, static_cast<std::size_t>(bytes(count)));
    drawBehind(shadow, y, mask.solidBegin, mask.solidEnd, out);
    compositeRowOver(solid, content, count);
}

BackgroundRenderer::EdgePixels
BackgroundRenderer::keepBehind(std::uint8_t* row, int begin,
                               std::span<const std::uint8_t> coverage) {
    const EdgePixels edge{row + bytes(begin), m_row.data() + bytes(begin), coverage};
    std::memcpy(edge.behind, edge.out, coverage.size() * kChannels);
    return edge;
}

void BackgroundRenderer::blendEdge(const EdgePixels& edge) {
    compositeRowOver(edge.behind, edge.out, edge.coverage.data(),
                     static_cast<int>(edge.coverage.size()));
    std::memcpy(edge.out, edge.behind, edge.coverage.size() * kChannels);
}

} // namespace tavi
