#include "platform/x11/PixelRegion.h"

#include <algorithm>

namespace tavi {

namespace {

/// Beyond this many pieces, one fetch of the rectangle around them costs less
/// than the requests.
constexpr std::size_t kMostPieces = 16;
/// Pieces that fill more than this part of the rectangle around them are as well one.
constexpr double kDensePart = 0.6;

bool isDense(const PixelRect& a, const PixelRect& b) {
    const long shared = a.intersected(b).area();
    return static_cast<double>(a.area() + b.area() - shared) >
           kDensePart * static_cast<double>(a.united(b).area());
}

} // namespace

void PixelRegion::add(const PixelRect& rect) {
    if (rect.isEmpty()) {
        return;
    }
    PixelRect grown = rect;
    for (auto piece = m_pieces.begin(); piece != m_pieces.end();) {
        if (grown.intersected(*piece).isEmpty() && !isDense(grown, *piece)) {
            ++piece;
            continue;
        }
        // A larger rectangle may meet pieces that the smaller one did not.
        grown = grown.united(*piece);
        m_pieces.erase(piece);
        piece = m_pieces.begin();
    }
    m_pieces.push_back(grown);
    if (m_pieces.size() > kMostPieces) {
        m_pieces = {bounds()};
    }
}

void PixelRegion::add(const PixelRegion& other) {
    for (const auto& piece : other.m_pieces) {
        add(piece);
    }
}

PixelRect PixelRegion::bounds() const {
    PixelRect around;
    for (const auto& piece : m_pieces) {
        around = around.united(piece);
    }
    return around;
}

PixelRegion PixelRegion::within(const PixelRect& limit, int dx, int dy) const {
    PixelRegion part;
    for (const auto& piece : m_pieces) {
        part.add(piece.intersected(limit).movedBy(dx, dy));
    }
    return part;
}

} // namespace tavi
