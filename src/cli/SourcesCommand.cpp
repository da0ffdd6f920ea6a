#include "cli/SourcesCommand.h"

#include "app/program/ScreenChoice.h"
#include "capture/OfferedWindows.h"
#include "cli/CoreApplication.h"
#include "cli/Output.h"
#include "platform/pipewire/PipeWireDevices.h"
#include "platform/qt/QtExecutor.h"
#include "project/JsonWriter.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>

namespace tavi {

namespace {

void writeFrame(JsonWriter& out, const Rect& frame) {
    out.key("frame");
    out.beginArray();
    for (const double value : {frame.x, frame.y, frame.width, frame.height}) {
        out.value(value);
    }
    out.endArray();
}

void writeDisplays(JsonWriter& out, const std::vector<Display>& displays) {
    out.key("displays");
    out.beginArray();
    for (std::size_t i = 0; i < displays.size(); ++i) {
        const Display& display = displays[i];
        out.beginObject();
        out.field("number", static_cast<std::int64_t>(i));
        out.field("name", display.name);
        out.field("width", static_cast<std::int64_t>(display.width));
        out.field("height", static_cast<std::int64_t>(display.height));
        writeFrame(out, display.frame);
        out.field("isMain", display.isMain);
        out.endObject();
    }
    out.endArray();
}

void writeWindows(JsonWriter& out, const std::vector<Window>& windows) {
    out.key("windows");
    out.beginArray();
    for (const Window& window : windows) {
        out.beginObject();
        out.field("id", static_cast<std::int64_t>(window.id));
        out.field("title", window.title);
        out.field("application", window.applicationName);
        out.field("applicationId", window.applicationId);
        writeFrame(out, window.frame);
        out.endObject();
    }
    out.endArray();
}

void writeDevices(JsonWriter& out, const char* key, const std::vector<CaptureDevice>& devices) {
    out.key(key);
    out.beginArray();
    for (const CaptureDevice& device : devices) {
        out.beginObject();
        out.field("name", device.name);
        out.field("id", device.id);
        out.endObject();
    }
    out.endArray();
}

/// Microphones and cameras; none where no media service answers.
struct Devices {
    std::vector<CaptureDevice> microphones;
    std::vector<CaptureDevice> cameras;
};

Devices listDevices() {
    QtExecutor main; // no change is waited for
    PipeWireDevices devices(main);
    return {devices.devices(CaptureDeviceKind::microphone).value_or(std::vector<CaptureDevice>()),
            devices.devices(CaptureDeviceKind::camera).value_or(std::vector<CaptureDevice>())};
}

/// Frames are in points, origin at the bottom left of the desktop.
std::string json(const ShareableContent& content, const Devices& devices) {
    JsonWriter out;
    out.beginObject();
    writeDisplays(out, content.displays);
    writeWindows(out, content.windows);
    writeDevices(out, "microphones", devices.microphones);
    writeDevices(out, "cameras", devices.cameras);
    out.endObject();
    return out.finish().value_or("{}");
}

void printTable(const ShareableContent& content, const Devices& devices) {
    for (std::size_t i = 0; i < content.displays.size(); ++i) {
        const Display& display = content.displays[i];
        cli::printLine(fmt::format("display {}  {}x{}  {}{}", i, display.width, display.height,
                                   display.name, display.isMain ? "  (main)" : ""));
    }
    for (const Window& window : content.windows) {
        cli::printLine(fmt::format("window {}  {:.0f}x{:.0f}  {}  {}", window.id,
                                   window.frame.width, window.frame.height, window.applicationName,
                                   window.title));
    }
    for (const CaptureDevice& device : devices.microphones) {
        cli::printLine("microphone  " + device.name);
    }
    for (const CaptureDevice& device : devices.cameras) {
        cli::printLine("camera  " + device.name);
    }
}

int listSources(bool asJson) {
    const cli::CoreApplication application;
    QtExecutor main; // nothing is waited for
    const auto screen = openScreenSystem(main, nullptr);
    auto content = screen->content().content();
    if (!content) {
        return cli::failed(content.error().description());
    }
    content->windows = offeredWindows(content->windows);
    const Devices devices = listDevices();
    if (asJson) {
        cli::printLine(json(*content, devices));
    } else {
        printTable(*content, devices);
    }
    return 0;
}

} // namespace

void addSourcesCommand(CLI::App& app, int& exitCode) {
    auto asJson = std::make_shared<bool>(false);
    CLI::App* command =
        app.add_subcommand("sources", "List displays, windows, microphones and cameras");
    command->add_flag("--json", *asJson, "Print JSON");
    command->callback([asJson, &exitCode] { exitCode = listSources(*asJson); });
}

} // namespace tavi
