#include "platform/pipewire/CameraFormat.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <spa/param/format-utils.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>
#include <span>
#include <tuple>

namespace tavi {

namespace {

/// Those that are read, the cheapest to read first.
constexpr std::array kReadable{
    SPA_VIDEO_FORMAT_BGRx, SPA_VIDEO_FORMAT_BGRA, SPA_VIDEO_FORMAT_RGBx,
    SPA_VIDEO_FORMAT_RGBA, SPA_VIDEO_FORMAT_NV12, SPA_VIDEO_FORMAT_I420,
    SPA_VIDEO_FORMAT_YUY2, SPA_VIDEO_FORMAT_UYVY, SPA_VIDEO_FORMAT_ENCODED,
};
/// The wanted rate less what cameras fall short of it by name only (29.97).
constexpr double kEnoughRate = kWantedRate - 0.5;
/// Sizes beyond are no camera's, and might not fit in memory.
constexpr std::uint32_t kLargestSide = 8192;

/// The values of a property, as its kind of choice lists them.
template<class Value>
struct Choice {
    std::uint32_t kind = SPA_CHOICE_None;
    std::vector<Value> values;
};

template<class Value>
Choice<Value> choiceOf(const spa_pod& object, std::uint32_t key, std::uint32_t type) {
    Choice<Value> choice;
    const spa_pod_prop* property = spa_pod_find_prop(&object, nullptr, key);
    if (property == nullptr) {
        return choice;
    }
    std::uint32_t count = 0;
    const spa_pod* values = spa_pod_get_values(&property->value, &count, &choice.kind);
    if (values->type != type || values->size < sizeof(Value) || count == 0) {
        return choice;
    }
    const auto* first = static_cast<const Value*>(SPA_POD_BODY_CONST(values));
    choice.values.assign(first, first + count);
    if (choice.kind == SPA_CHOICE_Enum && count > 1) {
        choice.values.erase(choice.values.begin()); // the default stands among the others again
    } else if (choice.kind == SPA_CHOICE_None) {
        choice.values.resize(1);
    }
    return choice;
}

bool isRange(const Choice<spa_rectangle>& choice) {
    return (choice.kind == SPA_CHOICE_Range || choice.kind == SPA_CHOICE_Step) &&
           choice.values.size() >= 3;
}

/// `wanted` or what is nearest to it of a range, in steps of `step` from its lower end.
std::uint32_t nearest(std::uint32_t wanted, std::uint32_t low, std::uint32_t high,
                      std::uint32_t step) {
    const std::uint32_t value = std::clamp(wanted, low, std::max(low, high));
    return step > 1 ? low + (value - low) / step * step : value;
}

std::vector<spa_rectangle> sizesOf(const spa_pod& object) {
    const auto choice = choiceOf<spa_rectangle>(object, SPA_FORMAT_VIDEO_size, SPA_TYPE_Rectangle);
    if (!isRange(choice)) {
        return choice.values;
    }
    const auto& low = choice.values[1];
    const auto& high = choice.values[2];
    const spa_rectangle step = choice.kind == SPA_CHOICE_Step && choice.values.size() > 3
                                   ? choice.values[3]
                                   : spa_rectangle{1, 1};
    return {{nearest(kMediumSize.width, low.width, high.width, step.width),
             nearest(kMediumSize.height, low.height, high.height, step.height)}};
}

double perSecond(spa_fraction rate) {
    return rate.denom == 0 ? 0 : static_cast<double>(rate.num) / rate.denom;
}

bool isEnough(spa_fraction rate) {
    return rate.num == 0 || perSecond(rate) >= kEnoughRate;
}

/// The slowest that is fast enough, else the fastest.
spa_fraction bestRate(const std::vector<spa_fraction>& rates) {
    return *std::ranges::min_element(rates, {}, [](spa_fraction rate) {
        return std::pair(!isEnough(rate), isEnough(rate) ? perSecond(rate) : -perSecond(rate));
    });
}

spa_fraction rateOf(const spa_pod& object) {
    const auto choice =
        choiceOf<spa_fraction>(object, SPA_FORMAT_VIDEO_framerate, SPA_TYPE_Fraction);
    if (choice.values.empty()) {
        return {0, 1};
    }
    const bool isRange = choice.kind == SPA_CHOICE_Range || choice.kind == SPA_CHOICE_Step;
    if (!isRange || choice.values.size() < 3) {
        return bestRate(choice.values);
    }
    const spa_fraction low = choice.values[1];
    const spa_fraction high = choice.values[2];
    if (perSecond(low) <= kWantedRate && kWantedRate <= perSecond(high)) {
        return {kWantedRate, 1};
    }
    return bestRate({low, high});
}

std::vector<spa_video_format> formatsOf(const spa_pod& object) {
    std::uint32_t type = 0;
    std::uint32_t subtype = 0;
    if (spa_format_parse(&object, &type, &subtype) < 0 || type != SPA_MEDIA_TYPE_video) {
        return {};
    }
    if (subtype == SPA_MEDIA_SUBTYPE_mjpg) {
        return {SPA_VIDEO_FORMAT_ENCODED};
    }
    std::vector<spa_video_format> found;
    if (subtype == SPA_MEDIA_SUBTYPE_raw) {
        for (const auto id :
             choiceOf<std::uint32_t>(object, SPA_FORMAT_VIDEO_format, SPA_TYPE_Id).values) {
            found.push_back(static_cast<spa_video_format>(id));
        }
    }
    return found;
}

std::ptrdiff_t costOf(spa_video_format format) {
    return std::ranges::find(kReadable, format) - kReadable.begin();
}

int distanceToMedium(spa_rectangle size) {
    return std::abs(static_cast<int>(size.width) - static_cast<int>(kMediumSize.width)) +
           std::abs(static_cast<int>(size.height) - static_cast<int>(kMediumSize.height));
}

bool isReadable(const CameraFormat& format) {
    return std::ranges::find(kReadable, format.format) != kReadable.end() &&
           format.evenWidth() > 0 && format.evenHeight() > 0 && format.size.width <= kLargestSide &&
           format.size.height <= kLargestSide;
}

} // namespace

std::vector<CameraFormat> cameraFormats(const spa_pod& parameter) {
    std::vector<CameraFormat> found;
    if (!spa_pod_is_object(&parameter)) {
        return found;
    }
    const auto rate = rateOf(parameter);
    for (const auto format : formatsOf(parameter)) {
        for (const auto size : sizesOf(parameter)) {
            found.push_back({format, size, rate});
        }
    }
    std::erase_if(found, [](const CameraFormat& format) { return !isReadable(format); });
    return found;
}

std::optional<CameraFormat> bestCameraFormat(const std::vector<CameraFormat>& offered) {
    if (offered.empty()) {
        return std::nullopt;
    }
    return *std::ranges::min_element(offered, {}, [](const CameraFormat& format) {
        const double slowness = isEnough(format.rate) ? 0 : kEnoughRate - perSecond(format.rate);
        return std::tuple(slowness, distanceToMedium(format.size), costOf(format.format),
                          perSecond(format.rate));
    });
}

PodCopy cameraFormatParameter(const CameraFormat& format) {
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    spa_pod_frame frame{};
    const bool isJpeg = format.format == SPA_VIDEO_FORMAT_ENCODED;
    spa_pod_builder_push_object(&builder, &frame, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
    spa_pod_builder_add(&builder, SPA_FORMAT_mediaType, SPA_POD_Id(SPA_MEDIA_TYPE_video),
                        SPA_FORMAT_mediaSubtype,
                        SPA_POD_Id(isJpeg ? SPA_MEDIA_SUBTYPE_mjpg : SPA_MEDIA_SUBTYPE_raw), 0);
    if (!isJpeg) {
        spa_pod_builder_add(&builder, SPA_FORMAT_VIDEO_format, SPA_POD_Id(format.format), 0);
    }
    spa_pod_builder_add(&builder, SPA_FORMAT_VIDEO_size, SPA_POD_Rectangle(&format.size),
                        SPA_FORMAT_VIDEO_framerate, SPA_POD_Fraction(&format.rate), 0);
    return copyPod(*static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &frame)));
}

} // namespace tavi
