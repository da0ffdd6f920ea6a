#include "platform/x11/X11ShareableContent.h"

#include "platform/x11/Monitors.h"
#include "platform/x11/WindowArea.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace tavi {

namespace {

/// More than any title or client list needs, in units of 4 bytes.
constexpr std::uint32_t kLongestProperty = 65536;

xcb_atom_t atomOf(xcb_connection_t* c, std::string_view name) {
    const XOwned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 1, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

/// The atoms that describe windows; one that no program has used yet is "none".
struct Atoms {
    explicit Atoms(xcb_connection_t* c)
        : stacking(atomOf(c, "_NET_CLIENT_LIST_STACKING")),
          clients(atomOf(c, "_NET_CLIENT_LIST")),
          name(atomOf(c, "_NET_WM_NAME")),
          state(atomOf(c, "_NET_WM_STATE")),
          hidden(atomOf(c, "_NET_WM_STATE_HIDDEN")),
          type(atomOf(c, "_NET_WM_WINDOW_TYPE")),
          gtkApplication(atomOf(c, "_GTK_APPLICATION_ID")),
          kdeDesktopFile(atomOf(c, "_KDE_NET_WM_DESKTOP_FILE")) {
        for (const std::string_view end : {"NORMAL", "DIALOG", "UTILITY"}) {
            programTypes.push_back(atomOf(c, "_NET_WM_WINDOW_TYPE_" + std::string(end)));
        }
        for (const std::string_view end :
             {"DESKTOP", "DOCK", "TOOLBAR", "MENU", "SPLASH", "DROPDOWN_MENU", "POPUP_MENU",
              "TOOLTIP", "NOTIFICATION", "COMBO", "DND"}) {
            otherTypes.push_back(atomOf(c, "_NET_WM_WINDOW_TYPE_" + std::string(end)));
        }
    }

    xcb_atom_t stacking;
    xcb_atom_t clients;
    xcb_atom_t name;
    xcb_atom_t state;
    xcb_atom_t hidden;
    xcb_atom_t type;
    xcb_atom_t gtkApplication;
    xcb_atom_t kdeDesktopFile;
    std::vector<xcb_atom_t> programTypes; ///< Types of windows that programs work in.
    std::vector<xcb_atom_t> otherTypes;   ///< The other types that there are.
};

/// The bytes of a property; empty when the window hasn't got it.
std::string propertyBytes(xcb_connection_t* c, xcb_window_t window, xcb_atom_t property) {
    if (property == XCB_ATOM_NONE) {
        return {};
    }
    const auto cookie =
        xcb_get_property(c, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, kLongestProperty);
    const XOwned<xcb_get_property_reply_t> reply(xcb_get_property_reply(c, cookie, nullptr));
    if (!reply) {
        return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

/// A property that lists windows or atoms.
std::vector<std::uint32_t> propertyNumbers(xcb_connection_t* c, xcb_window_t window,
                                           xcb_atom_t property) {
    const std::string bytes = propertyBytes(c, window, property);
    std::vector<std::uint32_t> numbers(bytes.size() / sizeof(std::uint32_t));
    std::copy_n(bytes.data(), numbers.size() * sizeof(std::uint32_t),
                reinterpret_cast<char*>(numbers.data()));
    return numbers;
}

bool holds(const std::vector<xcb_atom_t>& atoms, std::uint32_t atom) {
    return atom != XCB_ATOM_NONE && std::find(atoms.begin(), atoms.end(), atom) != atoms.end();
}

/// A window names its types with the best first; those that nobody knows don't count.
bool isOfProgram(xcb_connection_t* c, xcb_window_t window, const Atoms& atoms) {
    for (const auto type : propertyNumbers(c, window, atoms.type)) {
        if (holds(atoms.programTypes, type)) {
            return true;
        }
        if (holds(atoms.otherTypes, type)) {
            return false;
        }
    }
    return true;
}

/// A text up to its first zero.
std::string firstText(const std::string& bytes) {
    return bytes.substr(0, bytes.find('\0'));
}

/// WM_CLASS holds two texts, each ended by a zero: instance and class.
std::string applicationName(const std::string& wmClass) {
    const std::size_t end = wmClass.find('\0');
    if (end == std::string::npos) {
        return wmClass;
    }
    return firstText(wmClass.substr(end + 1));
}

/// What a program calls its desktop entry; by convention it is the class where
/// nothing else tells.
std::string applicationId(xcb_connection_t* c, xcb_window_t window, const Atoms& atoms) {
    for (const auto property : {atoms.gtkApplication, atoms.kdeDesktopFile}) {
        if (auto id = firstText(propertyBytes(c, window, property)); !id.empty()) {
            return id;
        }
    }
    return applicationName(propertyBytes(c, window, XCB_ATOM_WM_CLASS));
}

bool isShown(xcb_connection_t* c, xcb_window_t window, const Atoms& atoms) {
    const XOwned<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, window), nullptr));
    const auto states = propertyNumbers(c, window, atoms.state);
    const bool isHidden = std::find(states.begin(), states.end(), atoms.hidden) != states.end();
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE && !isHidden;
}

std::optional<Window> describe(const XConnection& x, xcb_window_t id, const Atoms& atoms) {
    xcb_connection_t* c = x.get();
    const auto area = areaOnRoot(x, id);
    if (!area || !isOfProgram(c, id, atoms)) {
        return std::nullopt;
    }
    Window window;
    window.id = id;
    window.title = propertyBytes(c, id, atoms.name);
    if (window.title.empty()) {
        window.title = propertyBytes(c, id, XCB_ATOM_WM_NAME);
    }
    window.applicationName = applicationName(propertyBytes(c, id, XCB_ATOM_WM_CLASS));
    window.applicationId = applicationId(c, id, atoms);
    window.frame = x.toGlobal(*area);
    window.isOnScreen = isShown(c, id, atoms);
    return window;
}

std::vector<Window> listWindows(const XConnection& x) {
    const Atoms atoms(x.get());
    auto ids = propertyNumbers(x.get(), x.root(), atoms.stacking);
    if (ids.empty()) {
        ids = propertyNumbers(x.get(), x.root(), atoms.clients);
    }
    std::vector<Window> windows;
    for (const auto id : ids) {
        if (auto window = describe(x, id, atoms)) {
            windows.push_back(std::move(*window));
        }
    }
    return windows;
}

} // namespace

Result<ShareableContent, CaptureError> X11ShareableContent::content() {
    const auto connection = XConnection::open(m_displayName);
    if (!connection) {
        return fail(connection.error());
    }
    const auto monitors = activeMonitors(*connection);
    if (!monitors) {
        return fail(monitors.error());
    }
    ShareableContent content;
    for (const auto& m : *monitors) {
        content.displays.push_back(
            {m.id, m.name, m.area.width, m.area.height, connection->toGlobal(m.area), m.isPrimary});
    }
    content.windows = listWindows(*connection);
    return content;
}

} // namespace tavi
