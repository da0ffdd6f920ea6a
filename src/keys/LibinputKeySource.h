#pragma once

#include "keys/InputFolderWatch.h"
#include "keys/KeySource.h"
#include "keys/KeyTranslator.h"
#include "keys/PointerTranslator.h"

#include <libinput.h>

#include <cstdint>
#include <memory>
#include <set>
#include <string>

struct udev;

namespace tavi {

/// What a device is, as the device manager says; one can be several things.
struct InputDeviceKind {
    bool hasKeys = false;
    bool isPointer = false;    ///< A mouse, a touchpad, a trackpoint or a tablet.
    bool isPlainMouse = false; ///< Nothing of it but its buttons and wheels is of interest.
};

/// Key presses from the keyboards of this seat themselves, read by the system's layout.
///
/// It needs the right to read /dev/input; while that is missing it is silent, and it begins
/// to listen when the right comes. Devices come and go at any time. Nothing but keyboards is
/// opened, so that a mouse wakes nobody, unless clicks and scrolling are wanted as well; then
/// mice, touchpads and tablets are, and a mouse that only moves still wakes nobody.
/// On a seat with several consoles, keys that are typed on another one than the session's own
/// are no business of this user and give no line.
class LibinputKeySource final : public KeySource {
public:
    enum class Wanted { keys, keysAndPointer };

    /// Null when the device library or every layout is missing.
    static std::unique_ptr<LibinputKeySource> open(Wanted wanted, Handler handler);
    ~LibinputKeySource() override;

    LibinputKeySource(const LibinputKeySource&) = delete;
    LibinputKeySource& operator=(const LibinputKeySource&) = delete;

    int descriptor() const override { return m_epoll; }
    bool readEvents() override;

    /// True once there is a keyboard that types.
    bool isListening() const override { return m_keyboards > 0; }

private:
    LibinputKeySource(Wanted wanted, Handler handler, XkbHandle<xkb_context> context);

    bool loadKeymap();
    bool openSeat();
    int openDevice(const char* path);
    bool isWanted(const InputDeviceKind& kind) const;
    InputDeviceKind kindOf(const char* path) const;
    void takeLocks(int device);
    void retryDenied();
    void dispatch();
    void handleEvent(libinput_event& event);
    void handleKey(libinput_event_keyboard& event);

    static const libinput_interface kInterface;

    Wanted m_wanted;
    Handler m_handler;
    XkbHandle<xkb_context> m_context;
    KeyTranslator m_translator;
    PointerTranslator m_pointer;
    InputFolderWatch m_folder;
    int m_epoll;
    udev* m_udev = nullptr;
    libinput* m_libinput = nullptr;
    std::set<std::string> m_denied; ///< Paths of devices that may not be read.
    int m_keyboards = 0;
    bool m_hasKeys = false; ///< True from the first key on.
};

} // namespace tavi
