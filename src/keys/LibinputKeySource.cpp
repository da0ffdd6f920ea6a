#include "keys/LibinputKeySource.h"

#include "keys/OwnConsole.h"
#include "keys/SystemLayout.h"

#include <libudev.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <linux/input.h>
#include <string_view>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tavi {

namespace {

/// Keymaps number keys as X servers always did, where the first 8 numbers don't exist.
constexpr std::uint32_t kKeycodeOffset = 8;

const char* seatName() {
    const char* seat = std::getenv("XDG_SEAT");
    return seat != nullptr && *seat != '\0' ? seat : "seat0";
}

bool isSet(udev_device& device, const char* property) {
    const char* value = udev_device_get_property_value(&device, property);
    return value != nullptr && std::string_view(value) == "1";
}

/// A power button is a keyboard to the kernel as well.
bool typesText(libinput_device& device) {
    return libinput_device_has_capability(&device, LIBINPUT_DEVICE_CAP_KEYBOARD) != 0 &&
           (libinput_device_keyboard_has_key(&device, KEY_A) > 0 ||
            libinput_device_keyboard_has_key(&device, KEY_KP1) > 0);
}

/// Has the kernel leave a mouse's moves out of what it gives to this reader, who would be woken
/// a thousand times a second for nothing. A kernel that can't gives them.
void keepMovesAway(int device) {
    constexpr unsigned long kMoves = 1UL << REL_X | 1UL << REL_Y;
    const unsigned long wheels = ~kMoves;
    input_mask mask{};
    mask.type = EV_REL;
    mask.codes_size = sizeof(wheels);
    mask.codes_ptr = reinterpret_cast<std::uintptr_t>(&wheels);
    ioctl(device, EVIOCSMASK, &mask);
}

void logNothing(libinput*, libinput_log_priority, const char*, va_list) {}

} // namespace

const libinput_interface LibinputKeySource::kInterface{
    [](const char* path, int, void* self) {
        return static_cast<LibinputKeySource*>(self)->openDevice(path);
    },
    [](int device, void*) { close(device); }};

std::unique_ptr<LibinputKeySource> LibinputKeySource::open(Wanted wanted, Handler handler) {
    XkbHandle<xkb_context> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    if (!context) {
        return nullptr;
    }
    std::unique_ptr<LibinputKeySource> source(
        new LibinputKeySource(wanted, std::move(handler), std::move(context)));
    return source->loadKeymap() && source->openSeat() ? std::move(source) : nullptr;
}

LibinputKeySource::LibinputKeySource(Wanted wanted, Handler handler, XkbHandle<xkb_context> context)
    : m_wanted(wanted),
      m_handler(std::move(handler)),
      m_context(std::move(context)),
      m_translator(*m_context),
      m_epoll(epoll_create1(EPOLL_CLOEXEC)) {}

LibinputKeySource::~LibinputKeySource() {
    libinput_unref(m_libinput);
    udev_unref(m_udev);
    close(m_epoll);
}

bool LibinputKeySource::loadKeymap() {
    XkbHandle<xkb_keymap> keymap = systemKeymap(*m_context);
    if (!keymap) {
        return false;
    }
    XkbHandle<xkb_state> state(xkb_state_new(keymap.get()));
    m_translator.setKeymap(std::move(keymap), std::move(state));
    return true;
}

bool LibinputKeySource::openSeat() {
    m_udev = udev_new();
    m_libinput = libinput_udev_create_context(&kInterface, this, m_udev);
    if (m_libinput == nullptr) {
        return false;
    }
    libinput_log_set_handler(m_libinput, logNothing);
    if (libinput_udev_assign_seat(m_libinput, seatName()) != 0) {
        return false;
    }
    for (const int descriptor : {libinput_get_fd(m_libinput), m_folder.descriptor()}) {
        epoll_event interest{};
        interest.events = EPOLLIN;
        if (epoll_ctl(m_epoll, EPOLL_CTL_ADD, descriptor, &interest) != 0) {
            return false;
        }
    }
    dispatch();
    return true;
}

/// Reading is all that is needed, so reading is all that is asked for.
int LibinputKeySource::openDevice(const char* path) {
    const InputDeviceKind kind = kindOf(path);
    if (!isWanted(kind)) {
        return -ENODEV;
    }
    const int device = ::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (device < 0) {
        const int reason = errno;
        if (reason == EACCES || reason == EPERM) {
            m_denied.insert(path);
        }
        return -reason;
    }
    if (kind.hasKeys) {
        takeLocks(device);
    }
    if (kind.isPlainMouse) {
        keepMovesAway(device);
    }
    return device;
}

bool LibinputKeySource::isWanted(const InputDeviceKind& kind) const {
    return kind.hasKeys || (kind.isPointer && m_wanted == Wanted::keysAndPointer);
}

InputDeviceKind LibinputKeySource::kindOf(const char* path) const {
    InputDeviceKind kind;
    struct stat node {};
    if (stat(path, &node) != 0) {
        return kind;
    }
    udev_device* device = udev_device_new_from_devnum(m_udev, 'c', node.st_rdev);
    if (device == nullptr) {
        return kind;
    }
    const bool isMouse = isSet(*device, "ID_INPUT_MOUSE");
    // A trackpoint scrolls by its moves.
    const bool needsMoves = isSet(*device, "ID_INPUT_POINTINGSTICK") ||
                            isSet(*device, "ID_INPUT_TOUCHPAD") ||
                            isSet(*device, "ID_INPUT_TABLET");
    kind.hasKeys = isSet(*device, "ID_INPUT_KEYBOARD") || isSet(*device, "ID_INPUT_KEY");
    kind.isPointer = isMouse || needsMoves;
    kind.isPlainMouse = isMouse && !needsMoves;
    udev_device_unref(device);
    return kind;
}

/// Caps Lock and Num Lock may have been on long before; the keyboard's lights tell.
void LibinputKeySource::takeLocks(int device) {
    std::array<unsigned char, sizeof(unsigned long)> lights{};
    if (!m_hasKeys && ioctl(device, EVIOCGLED(lights.size()), lights.data()) >= 0) {
        const auto isOn = [&](unsigned light) { return (lights[0] >> light & 1U) != 0; };
        m_translator.lock(isOn(LED_CAPSL), isOn(LED_NUML));
    }
}

bool LibinputKeySource::readEvents() {
    if (m_folder.takeNews()) {
        retryDenied();
    }
    dispatch();
    return true;
}

/// The library looks at a device once, when it comes; to look again is to open all anew.
void LibinputKeySource::retryDenied() {
    const bool isAllowedNow =
        std::any_of(m_denied.begin(), m_denied.end(),
                    [](const std::string& path) { return access(path.c_str(), R_OK) == 0; });
    if (isAllowedNow) {
        m_denied.clear();
        libinput_suspend(m_libinput);
        libinput_resume(m_libinput);
    }
}

void LibinputKeySource::dispatch() {
    libinput_dispatch(m_libinput);
    while (libinput_event* event = libinput_get_event(m_libinput)) {
        handleEvent(*event);
        libinput_event_destroy(event);
    }
}

void LibinputKeySource::handleEvent(libinput_event& event) {
    switch (libinput_event_get_type(&event)) {
    case LIBINPUT_EVENT_DEVICE_ADDED:
        m_keyboards += typesText(*libinput_event_get_device(&event)) ? 1 : 0;
        break;
    case LIBINPUT_EVENT_DEVICE_REMOVED:
        m_keyboards -= typesText(*libinput_event_get_device(&event)) ? 1 : 0;
        break;
    case LIBINPUT_EVENT_KEYBOARD_KEY:
        handleKey(*libinput_event_get_keyboard_event(&event));
        break;
    default:
        m_pointer.handle(event, [this](const std::string& line) {
            if (m_wanted == Wanted::keysAndPointer && isOwnConsoleShown()) {
                m_handler(line);
            }
        });
        break;
    }
}

/// A key that is down on two keyboards went down once.
void LibinputKeySource::handleKey(libinput_event_keyboard& event) {
    const xkb_keycode_t key = libinput_event_keyboard_get_key(&event) + kKeycodeOffset;
    const std::uint32_t holders = libinput_event_keyboard_get_seat_key_count(&event);
    m_hasKeys = true;
    if (libinput_event_keyboard_get_key_state(&event) == LIBINPUT_KEY_STATE_RELEASED) {
        if (holders == 0) {
            m_translator.keyWentUp(key);
        }
        return;
    }
    const auto line = m_translator.keyLineOf(key, libinput_event_keyboard_get_time(&event));
    if (holders == 1) {
        m_translator.keyWentDown(key);
    }
    if (line && isOwnConsoleShown()) {
        m_handler(*line);
    }
}

} // namespace tavi
