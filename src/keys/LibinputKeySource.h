#pragma once

#include "keys/InputFolderWatch.h"
#include "keys/KeySource.h"
#include "keys/KeyTranslator.h"

#include <libinput.h>

#include <cstdint>
#include <memory>
#include <set>
#include <string>

struct udev;

namespace tavi {

/// Key presses from the keyboards of this seat themselves, read by the system's layout.
///
/// It needs the right to read /dev/input; while that is missing it is silent, and it begins
/// to listen when the right comes. Keyboards come and go at any time. Nothing but keyboards is
/// opened, so that a mouse wakes nobody.
/// On a seat with several consoles, keys that are typed on another one than the session's own
/// are no business of this user and give no line.
class LibinputKeySource final : public KeySource {
public:
    /// Null when the device library or every layout is missing.
    static std::unique_ptr<LibinputKeySource> open(Handler handler);
    ~LibinputKeySource() override;

    LibinputKeySource(const LibinputKeySource&) = delete;
    LibinputKeySource& operator=(const LibinputKeySource&) = delete;

    int descriptor() const override { return m_epoll; }
    bool readEvents() override;

    /// True once there is a keyboard that types.
    bool isListening() const override { return m_keyboards > 0; }

private:
    LibinputKeySource(Handler handler, XkbHandle<xkb_context> context);

    bool loadKeymap();
    bool openSeat();
    int openDevice(const char* path);
    bool isKeyboard(const char* path) const;
    void takeLocks(int device);
    void retryDenied();
    void dispatch();
    void handleEvent(libinput_event& event);
    void handleKey(libinput_event_keyboard& event);

    static const libinput_interface kInterface;

    Handler m_handler;
    XkbHandle<xkb_context> m_context;
    KeyTranslator m_translator;
    InputFolderWatch m_folder;
    int m_epoll;
    udev* m_udev = nullptr;
    libinput* m_libinput = nullptr;
    std::set<std::string> m_denied; ///< Paths of keyboards that may not be read.
    int m_keyboards = 0;
    bool m_hasKeys = false; ///< True from the first key on.
};

} // namespace tavi
