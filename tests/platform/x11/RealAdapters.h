#pragma once

#include "capture/PosixHelperLauncher.h"
#include "capture/TakeRecorder.h"
#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "platform/qt/QtExecutor.h"
#include "platform/x11/X11Pointer.h"
#include "platform/x11/X11PointerMonitors.h"
#include "platform/x11/X11ScreenStreams.h"
#include "platform/x11/XTestServer.h"
#include "render/YuvConverter.h"

#include <cstdlib>
#include <memory>
#include <string>

namespace tavi::test {

/// A base, so that it is there before any member listens to the loop.
struct WithQtApplication {
    WithQtApplication() { ensureQtApplication(); }
};

/// What a take on a server stands on; the key helper finds the server by $DISPLAY as long as
/// this lives.
class RealAdapters : private WithQtApplication {
public:
    explicit RealAdapters(const std::string& server)
        : m_streams(server),
          m_monitors(std::move(X11PointerMonitors::open(server).value())),
          m_pointer(std::move(X11Pointer::open(server).value())) {
        setenv("DISPLAY", server.c_str(), 1);
    }
    ~RealAdapters() { unsetenv("DISPLAY"); }
    RealAdapters(const RealAdapters&) = delete;
    RealAdapters& operator=(const RealAdapters&) = delete;

    TakePorts ports(KeyPermission* permission = nullptr) {
        return {
            m_streams,
            m_media,
            m_imageFiles,
            {*m_monitors, *m_pointer, *m_pointer, launcher, m_clock, main, permission, helperPath}};
    }

    const std::string helperPath = std::string(TAVI_BINARY_DIR) + "/TaviKeys";
    PosixHelperLauncher launcher;
    QtExecutor main;

private:
    X11ScreenStreams m_streams;
    FfmpegMediaLibrary m_media{std::make_shared<YuvConverter>()};
    FfmpegImageFiles m_imageFiles;
    SystemClock m_clock;
    std::unique_ptr<X11PointerMonitors> m_monitors;
    std::unique_ptr<X11Pointer> m_pointer;
};

} // namespace tavi::test
