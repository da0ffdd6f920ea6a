#include "capture/CursorTrackingService.h"

#include "base/Utf8.h"
#include "project/KeyLineJson.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace tavi {

namespace {

constexpr double kAbsent = std::numeric_limits<double>::quiet_NaN();
/// A line of the helper that seems to be older was not delayed: its clock is another one. Seconds.
constexpr double kLongestDelay = 1;
constexpr Date kDistantPast{-std::numeric_limits<double>::infinity()};

/// The kinds of the log other than moves, in the order of their monitors.
constexpr std::array<std::pair<PointerEventKind, CursorEventType>, 4> kUngatedEvents{{
    {PointerEventKind::leftMouseDown, CursorEventType::leftMouseDown},
    {PointerEventKind::leftMouseUp, CursorEventType::leftMouseUp},
    {PointerEventKind::rightMouseDown, CursorEventType::rightClick},
    {PointerEventKind::scrollWheel, CursorEventType::scroll},
}};

CursorImageInfo infoOf(const SystemCursor& cursor) {
    return {cursor.hotSpot.x, cursor.hotSpot.y, cursor.size.width, cursor.size.height};
}

} // namespace

CursorTrackingService::CursorTrackingService(Rect captureFrame, CursorTrackingPorts ports)
    : m_captureFrame(captureFrame),
      m_ports(std::move(ports)),
      m_startDate(kAbsent),
      m_lastMoveTime(kDistantPast) {}

CursorTrackingService::~CursorTrackingService() {
    stopTracking();
}

void CursorTrackingService::startTracking() {
    reset();
    registerArrow();
    installMonitors();
    startHelper();
}

void CursorTrackingService::stopTracking() {
    for (const auto token : m_monitors) {
        m_ports.monitors.removeMonitor(token);
    }
    m_monitors.clear();
    m_permissionWait.reset();
    stopHelper();
}

std::optional<Date> CursorTrackingService::startDate() const {
    const double date = m_startDate;
    return std::isnan(date) ? std::nullopt : std::optional(Date{date});
}

void CursorTrackingService::moveCaptureFrame(Rect captureFrame) {
    const std::lock_guard lock(m_frameMutex);
    m_captureFrame = captureFrame;
}

Rect CursorTrackingService::captureFrame() const {
    const std::lock_guard lock(m_frameMutex);
    return m_captureFrame;
}

/// In points from the frame's top left corner, y downwards.
Point CursorTrackingService::pointInFrame(Point pointer) const {
    const Rect frame = captureFrame();
    return {pointer.x - frame.x, frame.maxY() - pointer.y};
}

void CursorTrackingService::reset() {
    m_events.clear();
    const std::lock_guard lock(m_imageMutex);
    m_cursorImageInfos.clear();
    m_cursorImageDatas.clear();
    m_imageDedup.clear();
    m_lastImageBytes.reset();
    m_lastImageId = 0;
}

void CursorTrackingService::registerArrow() {
    const auto arrow = m_ports.images.arrowCursor();
    if (!arrow || arrow->imageBytes.empty()) {
        return;
    }
    const std::lock_guard lock(m_imageMutex);
    addImage(*arrow);
    m_lastImageBytes = arrow->imageBytes;
}

void CursorTrackingService::installMonitors() {
    const auto install = [this](PointerEventKind kind, std::function<void()> block) {
        const auto token = m_ports.monitors.addGlobalMonitor(
            kind, [alive = std::weak_ptr(m_alive), block = std::move(block)] {
                if (alive.lock()) {
                    block();
                }
            });
        if (token) {
            m_monitors.push_back(*token);
        }
    };
    install(PointerEventKind::mouseMoved, [this] { recordMove(); });
    install(PointerEventKind::leftMouseDragged, [this] { recordMove(); });
    for (const auto& [kind, type] : kUngatedEvents) {
        install(kind, [this, logged = type] { recordEvent(logged); });
    }
}

/// Kept on purpose: the gate moves on even when the event is then dropped.
void CursorTrackingService::recordMove() {
    const Date now = m_ports.clock.now();
    if (now.since(m_lastMoveTime) < kMoveInterval) {
        return;
    }
    m_lastMoveTime = now;
    recordEvent(CursorEventType::move);
}

void CursorTrackingService::recordEvent(CursorEventType type) {
    const auto start = startDate();
    if (!start) {
        return;
    }
    const Point p = pointInFrame(m_ports.location.query());
    if (!isInFrame(p)) {
        return;
    }
    const std::int64_t imageId = currentImageId();
    const double timestamp = m_ports.clock.now().since(*start);
    m_events.push_back({timestamp, p.x, p.y, type, imageId, std::nullopt, std::nullopt});
}

bool CursorTrackingService::isInFrame(Point p) const {
    const Rect frame = captureFrame();
    return p.x >= 0 && p.x <= frame.width && p.y >= 0 && p.y <= frame.height;
}

std::int64_t CursorTrackingService::currentImageId() {
    const auto cursor = m_ports.images.currentSystemCursor();
    const std::lock_guard lock(m_imageMutex);
    if (!cursor || cursor->imageBytes.empty() || m_lastImageBytes == cursor->imageBytes) {
        return m_lastImageId;
    }
    m_lastImageBytes = cursor->imageBytes;
    const auto known = m_imageDedup.find(cursor->imageBytes);
    m_lastImageId = known != m_imageDedup.end() ? known->second : addImage(*cursor);
    return m_lastImageId;
}

std::int64_t CursorTrackingService::addImage(const SystemCursor& cursor) {
    const auto id = static_cast<std::int64_t>(m_cursorImageDatas.size());
    m_cursorImageDatas.push_back(cursor.imageBytes);
    m_cursorImageInfos.push_back(infoOf(cursor));
    m_imageDedup[cursor.imageBytes] = id;
    return id;
}

std::vector<CursorTrackingService::Image>
CursorTrackingService::cursorImagesFrom(std::size_t first) const {
    const std::lock_guard lock(m_imageMutex);
    std::vector<Image> images;
    for (std::size_t id = first; id < m_cursorImageDatas.size(); ++id) {
        images.push_back({m_cursorImageInfos[id], m_cursorImageDatas[id]});
    }
    return images;
}

void CursorTrackingService::startHelper() {
    if (!m_ports.helperPath) {
        return;
    }
    if (m_ports.permission != nullptr) {
        m_ports.main.post([permission = m_ports.permission] { permission->stopProbe(); });
    }
    m_helper =
        m_ports.launcher.launch({*m_ports.helperPath, m_ports.helperArguments},
                                [this](std::string_view chunk) { handleHelperChunk(chunk); });
    if (!m_helper) {
        waitForPermission();
    }
}

void CursorTrackingService::waitForPermission() {
    if (m_ports.permission == nullptr || m_permissionWait) {
        return;
    }
    m_permissionWait = m_ports.permission->whenGranted([this, alive = std::weak_ptr(m_alive)] {
        if (alive.lock()) {
            startHelper();
        }
    });
}

void CursorTrackingService::stopHelper() {
    m_helper.reset();
}

/// Kept on purpose: chunks are not put together; a line that falls across two
/// of them is lost, so the helper writes each line at once.
void CursorTrackingService::handleHelperChunk(std::string_view chunk) {
    if (!isValidUtf8(chunk)) {
        return;
    }
    while (!chunk.empty()) {
        const std::size_t end = std::min(chunk.find('\n'), chunk.size());
        const std::string_view line = chunk.substr(0, end);
        chunk.remove_prefix(std::min(end + 1, chunk.size()));
        if (line.find(kHelperReadyMark) == std::string_view::npos) {
            handleLine(line);
        } else if (m_ports.permission != nullptr) {
            m_ports.main.post([permission = m_ports.permission] { permission->setGranted(); });
        }
    }
}

void CursorTrackingService::handleLine(std::string_view line) {
    if (const auto pointer = parsePointerLine(line)) {
        handlePointerLine(*pointer);
    } else {
        handleKeyLine(line);
    }
}

/// The helper tells when it happened and never where: the pointer is where the screen's pictures
/// last showed it.
void CursorTrackingService::handlePointerLine(const PointerLine& line) {
    const auto start = startDate();
    const Point p = pointInFrame(m_ports.location.query());
    if (!start || !isInFrame(p)) {
        return;
    }
    const double age = (m_ports.clock.hostTime() - line.hostTime).seconds();
    const double timestamp =
        m_ports.clock.now().since(*start) - std::clamp(age, 0.0, kLongestDelay);
    if (timestamp >= 0) {
        appendOnMain(
            {timestamp, p.x, p.y, line.type, currentImageId(), std::nullopt, std::nullopt});
    }
}

/// Kept on purpose: no bounds test; a key typed while the pointer is outside
/// the frame is logged with coordinates outside it. A pointer that is hidden while its user types
/// stays where it was.
void CursorTrackingService::handleKeyLine(std::string_view line) {
    auto key = parseKeyLine(line);
    const auto start = startDate();
    if (!key || !start) {
        return;
    }
    const double timestamp = m_ports.clock.now().since(*start);
    if (timestamp < 0) {
        return;
    }
    const Point p = pointInFrame(m_ports.location.lastKnown());
    CursorEvent event{timestamp,
                      p.x,
                      p.y,
                      CursorEventType::keyDown,
                      currentImageId(),
                      std::move(key->character),
                      key->modifiers};
    appendOnMain(std::move(event));
}

void CursorTrackingService::appendOnMain(CursorEvent event) {
    m_ports.main.post([this, alive = std::weak_ptr(m_alive), event = std::move(event)] {
        if (alive.lock()) {
            m_events.push_back(event);
        }
    });
}

} // namespace tavi
