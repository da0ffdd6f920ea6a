#include "ui/IconTable.h"

#include <algorithm>
#include <array>

namespace tavi {

namespace {

// The build reads the files to embed from this table: one entry a line.
// clang-format off
constexpr auto kIcons = std::to_array<IconEntry>({
    {"aqi.medium", "grid-3x3-gap-fill"},
    {"arrow.uturn.backward", "arrow-counterclockwise"},
    {"backward.frame.fill", "skip-start-fill"},
    {"bell.fill", "bell-fill"},
    {"camera.fill", "camera-fill"},
    {"checkmark", "check-lg"},
    {"checkmark.circle.fill", "check-circle-fill"},
    {"chevron.down", "chevron-down"},
    {"chevron.left", "chevron-left"},
    {"chevron.right", "chevron-right"},
    {"chevron.up", "chevron-up"},
    {"circle.fill", "circle-fill"},
    {"cursorarrow", "cursor-fill", true},
    {"cursorarrow.rays", "cursor", true},
    {"diamond", "diamond"},
    {"display", "display"},
    {"exclamationmark.triangle.fill", "exclamation-triangle-fill"},
    {"film", "film"},
    {"film.stack", "collection-play"},
    {"folder", "folder2"},
    {"forward.frame.fill", "skip-end-fill"},
    {"gearshape", "gear"},
    {"keyboard", "keyboard"},
    {"link", "link-45deg"},
    {"macwindow", "window"},
    {"mic.fill", "mic-fill"},
    {"mic.slash.fill", "mic-mute-fill"},
    {"paintbrush.fill", "brush-fill"},
    {"pause.fill", "pause-fill"},
    {"pencil", "pencil"},
    {"play.fill", "play-fill"},
    {"plus", "plus-lg"},
    {"record.circle", "record-circle"},
    {"scissors", "scissors"},
    {"sparkle.magnifyingglass", "zoom-in"},
    {"square.and.arrow.up", "box-arrow-up"},
    {"trash", "trash3"},
    {"video.fill", "camera-video-fill"},
    {"video.slash", "camera-video-off"},
    {"video.slash.fill", "camera-video-off-fill"},
    {"wand.and.stars", "magic"},
    {"xmark", "x-lg"},
    {"xmark.circle.fill", "x-circle-fill"},
});
// clang-format on

static_assert(std::ranges::is_sorted(kIcons, {}, &IconEntry::symbol));

} // namespace

std::span<const IconEntry> iconTable() {
    return kIcons;
}

const IconEntry* findIcon(std::string_view symbol) {
    const auto found = std::ranges::lower_bound(kIcons, symbol, {}, &IconEntry::symbol);
    return found != kIcons.end() && found->symbol == symbol ? &*found : nullptr;
}

} // namespace tavi
