#include "platform/wayland/WaylandOutputs.h"

#include <algorithm>
#include <cmath>
#include <xdg-output-client-protocol.h>

namespace tavi {

namespace {

// From these versions on they tell their names.
constexpr std::uint32_t kNamedOutput = 4;
constexpr std::uint32_t kNamedDetails = 3;

WaylandOutput& outputOf(void* data) {
    return *static_cast<WaylandOutput*>(data);
}

void geometry(void* data, wl_output*, int, int, int, int, int, const char*, const char*,
              int transform) {
    outputOf(data).transform = transform;
}

void mode(void* data, wl_output*, std::uint32_t flags, int width, int height, int) {
    if ((flags & WL_OUTPUT_MODE_CURRENT) != 0) {
        outputOf(data).modeWidth = width;
        outputOf(data).modeHeight = height;
    }
}

void name(void* data, wl_output*, const char* text) {
    outputOf(data).name = text;
}

void logicalPosition(void* data, zxdg_output_v1*, int x, int y) {
    outputOf(data).x = x;
    outputOf(data).y = y;
}

void logicalSize(void* data, zxdg_output_v1*, int width, int height) {
    outputOf(data).width = width;
    outputOf(data).height = height;
}

constexpr wl_output_listener kOutput{
    geometry,
    mode,
    [](void*, wl_output*) {},
    [](void*, wl_output*, int) {},
    name,
    [](void*, wl_output*, const char*) {},
};

constexpr zxdg_output_v1_listener kDetails{
    logicalPosition,
    logicalSize,
    [](void*, zxdg_output_v1*) {},
    [](void* data, zxdg_output_v1*, const char* text) { outputOf(data).name = text; },
    [](void*, zxdg_output_v1*, const char*) {},
};

/// A number that stays the display's own as long as its connector has its name.
std::uint32_t idOf(const WaylandOutput& output) {
    std::uint32_t hash = 2166136261U; // FNV-1a
    for (const char c : output.name) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    }
    return hash == 0 ? 1 : hash;
}

Display displayOf(const WaylandOutput& output, std::size_t index) {
    const Size size = output.pixels();
    return {idOf(output),
            output.name,
            static_cast<int>(size.width),
            static_cast<int>(size.height),
            {0, 0, size.width, size.height},
            index == 0,
            {static_cast<double>(output.x), static_cast<double>(output.y),
             static_cast<double>(output.width), static_cast<double>(output.height)}};
}

} // namespace

Size WaylandOutput::pixels() const {
    const double w = modeWidth;
    const double h = modeHeight;
    return transform % 2 == 0 ? Size{w, h} : Size{h, w};
}

int WaylandOutput::scale() const {
    return width > 0 ? std::max(1, static_cast<int>(std::ceil(pixels().width / width))) : 1;
}

WaylandOutputs::WaylandOutputs(const WaylandConnection& connection)
    : m_manager(connection.bindFirst<zxdg_output_manager_v1>(zxdg_output_manager_v1_interface,
                                                             kNamedDetails)) {
    for (const WaylandGlobal& global : connection.globals()) {
        if (global.interface != wl_output_interface.name) {
            continue;
        }
        WaylandOutput& output = m_outputs.emplace_back();
        output.object = connection.bind<wl_output>(global, wl_output_interface, kNamedOutput);
        wl_output_add_listener(output.object, &kOutput, &output);
        if (m_manager != nullptr) {
            output.details = zxdg_output_manager_v1_get_xdg_output(m_manager, output.object);
            zxdg_output_v1_add_listener(output.details, &kDetails, &output);
        }
    }
    connection.roundTrip();
}

WaylandOutputs::~WaylandOutputs() {
    for (const WaylandOutput& output : m_outputs) {
        if (output.details != nullptr) {
            zxdg_output_v1_destroy(output.details);
        }
        wl_output_destroy(output.object);
    }
    if (m_manager != nullptr) {
        zxdg_output_manager_v1_destroy(m_manager);
    }
}

const WaylandOutput* WaylandOutputs::ofSize(Size pixels) const {
    const WaylandOutput* found = nullptr;
    for (const WaylandOutput& output : m_outputs) {
        if (output.pixels() == pixels) {
            if (found != nullptr) {
                return nullptr;
            }
            found = &output;
        }
    }
    return found;
}

std::vector<Display> waylandDisplays() {
    const auto connection = WaylandConnection::open();
    if (!connection) {
        return {};
    }
    const WaylandOutputs outputs(*connection);
    std::vector<Display> displays;
    for (const WaylandOutput& output : outputs.all()) {
        displays.push_back(displayOf(output, displays.size()));
    }
    return displays;
}

} // namespace tavi
