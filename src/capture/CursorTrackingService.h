#pragma once

#include "base/Clock.h"
#include "base/Executor.h"
#include "base/Geometry.h"
#include "capture/HelperLauncher.h"
#include "capture/Pointer.h"
#include "project/CursorEvent.h"
#include "project/PointerLineJson.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavi {

/// What the tracking of one take stands on. All outlive the service.
struct CursorTrackingPorts {
    PointerMonitors& monitors;
    const PointerLocation& location;
    CursorImages& images;
    HelperLauncher& launcher;
    const Clock& clock;
    Executor& main;
    KeyPermission* permission = nullptr;   ///< Null where keys need no permission.
    std::optional<std::string> helperPath; ///< The key helper; absent: a take without keys.
    /// What the helper is told. With kHelperPointerOption it prints clicks and scrolling as well,
    /// for desktops whose `monitors` see moves only.
    std::vector<std::string> helperArguments = {};
};

/// Writes the log of one take: what the pointer and the keyboard did, and the
/// cursor images that were on screen.
///
/// States: created -> tracking -> stopped; a service serves one take.
/// Threads: everything on the main thread, except setStartDate() and moveCaptureFrame() (any
/// thread).
/// The helper's lines arrive on its reader thread and hop to the main thread.
/// The destructor stops. No monitor fires after stopTracking() returns; a line
/// that is on its way to the main thread may still be appended.
class CursorTrackingService {
public:
    /// Seconds between two logged moves, at least: about 62 a second.
    static constexpr double kMoveInterval = 0.016;

    using ImageBytes = std::vector<std::uint8_t>;

    /// One row of the image table with the image itself.
    struct Image {
        CursorImageInfo info;
        ImageBytes bytes;
    };

    /// `captureFrame` is the recorded area in the global bottom-left-origin space, in points.
    CursorTrackingService(Rect captureFrame, CursorTrackingPorts ports);
    ~CursorTrackingService();

    CursorTrackingService(const CursorTrackingService&) = delete;
    CursorTrackingService& operator=(const CursorTrackingService&) = delete;

    void startTracking();
    void stopTracking();

    /// The moment of the first video frame. Nothing is logged before it is set;
    /// it is set once, from any thread.
    void setStartDate(Date date) { m_startDate = date.sinceReference; }

    /// The recorded area is another one from now on: its display was moved or changed its mode.
    void moveCaptureFrame(Rect captureFrame);

    /// The log, in order of arrival.
    const std::vector<CursorEvent>& events() const { return m_events; }
    /// One row per distinct image; the index is the id, 0 the arrow. After stopTracking().
    const std::vector<CursorImageInfo>& cursorImageInfos() const { return m_cursorImageInfos; }
    /// The bytes of each image (CursorImageBytes.h), same index. After stopTracking().
    const std::vector<ImageBytes>& cursorImageDatas() const { return m_cursorImageDatas; }
    /// Copies of the images from number `first` on. At any time.
    std::vector<Image> cursorImagesFrom(std::size_t first) const;

private:
    struct Alive {};

    std::optional<Date> startDate() const;
    Rect captureFrame() const;
    Point pointInFrame(Point pointer) const;

    void reset();
    void registerArrow();
    void installMonitors();
    void recordMove();
    void recordEvent(CursorEventType type);
    bool isInFrame(Point p) const;
    std::int64_t currentImageId();
    std::int64_t addImage(const SystemCursor& cursor);

    void startHelper();
    void waitForPermission();
    void stopHelper();
    void handleHelperChunk(std::string_view chunk);
    void handleLine(std::string_view line);
    void handleKeyLine(std::string_view line);
    void handlePointerLine(const PointerLine& line);
    void appendOnMain(CursorEvent event);

    mutable std::mutex m_frameMutex; ///< Guards what follows.
    Rect m_captureFrame;
    CursorTrackingPorts m_ports;
    std::shared_ptr<Alive> m_alive = std::make_shared<Alive>(); ///< Held weakly by closures.

    std::vector<CursorEvent> m_events;
    std::vector<PointerMonitors::Token> m_monitors;
    std::atomic<double> m_startDate; ///< Seconds as in Date; NaN while absent.
    Date m_lastMoveTime;

    std::unique_ptr<HelperProcess> m_helper;
    std::unique_ptr<KeyPermission::Wait> m_permissionWait;

    mutable std::mutex m_imageMutex; ///< Guards what follows: key lines look images up as well.
    std::vector<CursorImageInfo> m_cursorImageInfos;
    std::vector<ImageBytes> m_cursorImageDatas;
    std::map<ImageBytes, std::int64_t> m_imageDedup;
    std::optional<ImageBytes> m_lastImageBytes;
    std::int64_t m_lastImageId = 0;
};

} // namespace tavi
