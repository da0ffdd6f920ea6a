#pragma once

#include "capture/Screenshots.h"
#include "capture/ShareableContent.h"
#include "fakes/CallLog.h"

#include <fmt/format.h>

#include <atomic>
#include <mutex>
#include <optional>
#include <set>

namespace tavi {

inline const Display kFakeDisplay{3, "HDMI-1", 640, 480, {0, 0, 640, 480}, true};
inline const Window kFakeWindow{9, "notes", "Editor", "editor", {100, 50, 300, 200}, true};

/// Sources that the test changes; each question is noted ("content").
class FakeShareableContent final : public ShareableContentSource {
public:
    explicit FakeShareableContent(CallLog* log = nullptr)
        : m_log(log != nullptr ? *log : m_ownLog) {}

    Result<ShareableContent, CaptureError> content() override {
        m_log.note("content");
        if (error) {
            return fail(*error);
        }
        return list;
    }

    ShareableContent list{{kFakeDisplay}, {kFakeWindow}};
    std::optional<CaptureError> error;

private:
    CallLog m_ownLog;
    CallLog& m_log;
};

/// Pictures of the wanted size; each is noted ("window 9 640x426", "display 3 640x480 cursor").
class FakeScreenshots final : public Screenshots {
public:
    explicit FakeScreenshots(CallLog* log = nullptr) : m_log(log != nullptr ? *log : m_ownLog) {}

    Result<PixelBufferPtr, CaptureError>
    captureImage(const ScreenFilter& filter, const ScreenshotConfiguration& size) override {
        const bool isWindow = filter.windowId != 0;
        const std::uint32_t id = isWindow ? filter.windowId : filter.displayId;
        m_log.note(fmt::format("{} {} {}x{}{}", isWindow ? "window" : "display", id, size.width,
                               size.height, size.showsCursor ? " cursor" : ""));
        if (unavailable.count(id) > 0) {
            return fail(CaptureError{CaptureError::Kind::sourceGone, ""});
        }
        return std::make_shared<PixelBuffer>(size.width, size.height);
    }

    std::set<std::uint32_t> unavailable; ///< Ids of sources.

private:
    CallLog m_ownLog;
    CallLog& m_log;
};

} // namespace tavi
