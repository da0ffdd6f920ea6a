#include "platform/x11/DamageWatch.h"

#include <xcb/xfixes.h>

namespace tavi {

namespace {

/// Beyond this many pieces, one fetch of the rectangle around them costs less
/// than the requests.
constexpr std::size_t kMostPieces = 16;
/// Pieces that fill more than this part of the rectangle around them are
/// fetched as that one rectangle.
constexpr double kDensePart = 0.6;

/// The number of the damage event.
Result<std::uint8_t, CaptureError> requireDamage(const XConnection& x) {
    const auto fixes = x.require(xcb_xfixes_id, "XFIXES");
    const auto damage = x.require(xcb_damage_id, "DAMAGE");
    if (!fixes || !damage) {
        return fail(fixes ? damage.error() : fixes.error());
    }
    const XOwned<xcb_xfixes_query_version_reply_t> fixesVersion(
        xcb_xfixes_query_version_reply(x.get(), xcb_xfixes_query_version(x.get(), 5, 0), nullptr));
    const XOwned<xcb_damage_query_version_reply_t> damageVersion(
        xcb_damage_query_version_reply(x.get(), xcb_damage_query_version(x.get(), 1, 1), nullptr));
    if (!fixesVersion || !damageVersion) {
        return fail(CaptureError{CaptureError::Kind::connectionLost, ""});
    }
    return static_cast<std::uint8_t>((*damage)->first_event + XCB_DAMAGE_NOTIFY);
}

/// The cheapest way to fetch `pieces`, which don't overlap.
std::vector<PixelRect> merged(std::vector<PixelRect> pieces) {
    PixelRect around;
    long area = 0;
    for (const auto& piece : pieces) {
        around = around.united(piece);
        area += piece.area();
    }
    const bool isDense =
        static_cast<double>(area) > kDensePart * static_cast<double>(around.area());
    if (pieces.size() > kMostPieces || (pieces.size() > 1 && isDense)) {
        return {around};
    }
    return pieces;
}

} // namespace

Result<DamageWatch, CaptureError> DamageWatch::open(const XConnection& x, xcb_window_t window) {
    const auto event = requireDamage(x);
    if (!event) {
        return fail(event.error());
    }
    DamageWatch watch(x.get(), *event);
    watch.m_damage = xcb_generate_id(x.get());
    xcb_damage_create(x.get(), watch.m_damage, window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    watch.m_region = xcb_generate_id(x.get());
    xcb_xfixes_create_region(x.get(), watch.m_region, 0, nullptr);
    watch.m_limitRegion = xcb_generate_id(x.get());
    xcb_xfixes_create_region(x.get(), watch.m_limitRegion, 0, nullptr);
    xcb_flush(x.get());
    return watch;
}

std::vector<PixelRect> DamageWatch::take(const PixelRect& limit) {
    if (limit != m_limit) {
        const xcb_rectangle_t wired = wire(limit);
        xcb_xfixes_set_region(m_connection, m_limitRegion, 1, &wired);
        m_limit = limit;
    }
    xcb_damage_subtract(m_connection, m_damage, XCB_NONE, m_region);
    xcb_xfixes_intersect_region(m_connection, m_region, m_limitRegion, m_region);
    const XOwned<xcb_xfixes_fetch_region_reply_t> reply(xcb_xfixes_fetch_region_reply(
        m_connection, xcb_xfixes_fetch_region(m_connection, m_region), nullptr));
    if (!reply) {
        return {};
    }
    const auto* rectangles = xcb_xfixes_fetch_region_rectangles(reply.get());
    std::vector<PixelRect> pieces;
    for (int i = 0; i < xcb_xfixes_fetch_region_rectangles_length(reply.get()); ++i) {
        const auto& r = rectangles[i];
        pieces.push_back({r.x, r.y, r.width, r.height});
    }
    return merged(std::move(pieces));
}

} // namespace tavi
