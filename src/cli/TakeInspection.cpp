#include "cli/TakeInspection.h"

#include "autozoom/UnifiedAutoZoom.h"
#include "cursor/CursorRenderer.h"
#include "cursor/Keystrokes.h"
#include "project/Camera.h"
#include "project/EditProjectJson.h"
#include "render/OutputTimeline.h"

namespace tavi::cli {

namespace {

/// A take seen in source time or in output time.
struct View {
    Size video;
    Size output;
    std::vector<TimeRange> ranges; ///< Kept ranges in source time.
    bool inOutputTime = false;
    std::vector<ZoomKeyframe> keyframes;
    CursorRenderer cursor;
};

View makeView(const OpenTake& take, const InspectionRequest& request) {
    EditProject project = take.project;
    const double duration = take.duration();
    View view;
    view.video = take.videoSize();
    view.output = resolvedOutputSize(project.outputSettings.resolution,
                                     project.outputSettings.autoAspectRatio, view.video);
    view.ranges = keptRanges(project.trimState, duration);
    view.inOutputTime = request.inOutputTime;
    if (request.aggressiveness) {
        project.keyframes =
            UnifiedAutoZoom::generate(project, view.video, duration, *request.aggressiveness);
    }
    if (request.inOutputTime) {
        OutputTimeline timeline = makeOutputTimeline(project, duration);
        project.keyframes = std::move(timeline.keyframes);
        project.cursorEvents = std::move(timeline.cursorEvents);
    }
    view.keyframes = std::move(project.keyframes);
    const double videoHeight = project.videoHeight > 0 ? project.videoHeight : view.video.height;
    view.cursor =
        CursorRenderer::make(std::move(project.cursorEvents), videoHeight, project.cursorSettings);
    return view;
}

void writeNumbers(JsonWriter& json, std::initializer_list<double> numbers) {
    json.beginArray();
    for (const double number : numbers) {
        json.value(number);
    }
    json.endArray();
}

void writeRanges(JsonWriter& json, const std::vector<TimeRange>& ranges) {
    json.beginArray();
    for (const TimeRange& range : ranges) {
        writeNumbers(json, {range.start, range.end});
    }
    json.endArray();
}

void writeCursor(JsonWriter& json, const CursorRenderer& cursor, double time) {
    const auto position = cursor.position(time);
    if (!position) {
        json.null();
        return;
    }
    json.beginObject();
    json.field("x", position->x);
    json.field("y", position->y);
    json.field("imageId", cursor.cursorImageId(time));
    json.endObject();
}

void writeClickEffects(JsonWriter& json, const CursorRenderer& cursor, double time) {
    json.beginArray();
    for (const auto& effect : cursor.clickEffects(time)) {
        json.beginObject();
        json.field("x", effect.position.x);
        json.field("y", effect.position.y);
        json.field("progress", effect.progress);
        json.endObject();
    }
    json.endArray();
}

void writeKeystrokes(JsonWriter& json, const CursorRenderer& cursor, double time) {
    const double lifetime = cursor.settings.keystrokeDisplayDuration;
    json.beginArray();
    for (const auto& keystroke : visibleKeystrokes(cursor.events, time, lifetime)) {
        json.beginObject();
        json.field("modifiers", keystroke.modifierSymbols);
        json.field("label", keystroke.character);
        json.field("opacity", keystrokeOpacity(time - keystroke.timestamp, lifetime));
        json.endObject();
    }
    json.endArray();
}

void writeMoment(JsonWriter& json, const View& view, double time) {
    json.beginObject();
    json.field("time", time);
    json.key("outputTime");
    const auto output = view.inOutputTime ? time : outputTime(view.ranges, time);
    output ? json.value(*output) : json.null();
    json.key("camera");
    const Rect camera =
        evaluateCamera(view.keyframes, time, view.video, view.output.width / view.output.height);
    writeNumbers(json, {camera.x, camera.y, camera.width, camera.height});
    json.key("cursor");
    writeCursor(json, view.cursor, time);
    json.key("clickEffects");
    writeClickEffects(json, view.cursor, time);
    json.key("keystrokes");
    writeKeystrokes(json, view.cursor, time);
    json.endObject();
}

void writeHead(JsonWriter& json, const OpenTake& take, const View& view) {
    json.key("video");
    json.beginObject();
    json.field("width", view.video.width);
    json.field("height", view.video.height);
    json.field("duration", take.duration());
    json.endObject();
    json.key("output");
    json.beginObject();
    json.field("width", view.output.width);
    json.field("height", view.output.height);
    json.field("fps", take.project.outputSettings.fps);
    json.endObject();
    json.key("keptRanges");
    writeRanges(json, view.ranges);
    json.field("outputDuration", totalLength(view.ranges));
    json.key("keyframes");
    write(json, view.keyframes);
}

} // namespace

Result<std::string, JsonError> inspectTake(const OpenTake& take, const InspectionRequest& request) {
    const View view = makeView(take, request);
    JsonWriter json;
    json.beginObject();
    writeHead(json, take, view);
    json.key("at");
    json.beginArray();
    for (const double time : request.times) {
        writeMoment(json, view, time);
    }
    json.endArray();
    json.endObject();
    return json.finish();
}

} // namespace tavi::cli
