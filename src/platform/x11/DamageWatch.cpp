#include "platform/x11/DamageWatch.h"

#include <xcb/xfixes.h>

#include <algorithm>
#include <utility>

namespace tavi {

namespace {

/// A box of up to so many pixels is fetched whole rather than asked about.
constexpr long kSmallBox = 256 * 256;
/// Boxes that are taken as full after one that was: about a second of a film.
constexpr int kTrustedBoxes = 60;

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

} // namespace

Result<DamageWatch, CaptureError> DamageWatch::open(const XConnection& x, xcb_window_t window) {
    const auto event = requireDamage(x);
    if (!event) {
        return fail(event.error());
    }
    DamageWatch watch(x.get(), *event);
    watch.m_damage = xcb_generate_id(x.get());
    xcb_damage_create(x.get(), watch.m_damage, window, XCB_DAMAGE_REPORT_LEVEL_BOUNDING_BOX);
    watch.m_region = xcb_generate_id(x.get());
    xcb_xfixes_create_region(x.get(), watch.m_region, 0, nullptr);
    watch.m_limitRegion = xcb_generate_id(x.get());
    xcb_xfixes_create_region(x.get(), watch.m_limitRegion, 0, nullptr);
    xcb_flush(x.get());
    return watch;
}

bool DamageWatch::note(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7F) != m_event) {
        return false;
    }
    const auto& damage = reinterpret_cast<const xcb_damage_notify_event_t&>(event);
    if (isCovered(damage)) {
        return false;
    }
    const auto& area = damage.area;
    m_box = m_box.united({area.x, area.y, area.width, area.height});
    return true;
}

/// An event that was on its way when its damage was taken out tells nothing new if the
/// pictures fetched after that have it.
bool DamageWatch::isCovered(const xcb_damage_notify_event_t& event) const {
    const PixelRect area{event.area.x, event.area.y, event.area.width, event.area.height};
    const auto later = static_cast<std::uint16_t>(event.sequence - m_subtracted);
    return static_cast<std::int16_t>(later) < 0 &&
           area.intersected(m_asked).area() == area.intersected(m_covered).area();
}

void DamageWatch::subtract(std::uint32_t into, const PixelRect& limit, const PixelRect& covered) {
    const auto cookie = xcb_damage_subtract(m_connection, m_damage, XCB_NONE, into);
    m_subtracted = static_cast<std::uint16_t>(cookie.sequence);
    m_asked = limit;
    m_covered = covered;
}

PixelRegion DamageWatch::takeAll(const PixelRect& limit) {
    m_box = {};
    subtract(XCB_NONE, limit, limit);
    return PixelRegion(limit);
}

/// The events tell the box around the damage, which needs no reply of the server. What is in
/// a large box is asked for, unless boxes were found full lately, as those of films are.
PixelRegion DamageWatch::take(const PixelRect& limit) {
    const PixelRect box = std::exchange(m_box, {}).intersected(limit);
    const bool isTaken = box.area() <= kSmallBox || m_trusted > 0;
    m_trusted = std::max(m_trusted - 1, 0);
    if (isTaken) {
        subtract(XCB_NONE, limit, box);
        return PixelRegion(box);
    }
    subtract(m_region, limit, limit);
    const PixelRegion region = fetchRegion(limit);
    // One piece around all: asking was not worth it.
    m_trusted = region.pieces().size() == 1 ? kTrustedBoxes : 0;
    return region;
}

PixelRegion DamageWatch::fetchRegion(const PixelRect& limit) {
    if (limit != m_limit) {
        const xcb_rectangle_t wired = wire(limit);
        xcb_xfixes_set_region(m_connection, m_limitRegion, 1, &wired);
        m_limit = limit;
    }
    xcb_xfixes_intersect_region(m_connection, m_region, m_limitRegion, m_region);
    const XOwned<xcb_xfixes_fetch_region_reply_t> reply(xcb_xfixes_fetch_region_reply(
        m_connection, xcb_xfixes_fetch_region(m_connection, m_region), nullptr));
    if (!reply) {
        return {};
    }
    const auto* rectangles = xcb_xfixes_fetch_region_rectangles(reply.get());
    PixelRegion region;
    for (int i = 0; i < xcb_xfixes_fetch_region_rectangles_length(reply.get()); ++i) {
        const auto& r = rectangles[i];
        region.add({r.x, r.y, r.width, r.height});
    }
    return region;
}

} // namespace tavi
