#include "editor/PreviewComposer.h"
#include "project/Camera.h"
#include "render/BackgroundPresets.h"
#include "render/FrameComposer.h"
#include "render/RenderGeometry.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <random>
#include <vector>

namespace tavi {
namespace {

using test::shared;

constexpr double kLength = 10; ///< Seconds of the take.
constexpr int kShrink = 2;     ///< Pixels of the film for one of the canvas, on each axis.
constexpr double kKeyLife = 2; ///< Seconds.

/// A take and its options, made at random, at one moment.
struct State {
    EditProject project;
    Size video;
    PreviewMoment moment;
};

/// Soft waves, which look the same at every size.
PixelBufferPtr waves(int width, int height, double turn) {
    PixelBuffer picture(width, height);
    const auto value = [&](double x, double y, double phase) {
        return static_cast<int>(127 + 120 * std::sin(6 * x + turn + phase) * std::cos(5 * y));
    };
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double u = (x + 0.5) / width;
            const double v = (y + 0.5) / height;
            test::setPixel(picture, x, y, {value(u, v, 0), value(u, v, 2), value(u, v, 4), 255});
        }
    }
    return shared(std::move(picture));
}

/// Numbers and choices of one seed.
class Dice {
public:
    explicit Dice(unsigned seed) : m_random(seed) {}

    double number(double from, double to) {
        return std::uniform_real_distribution<double>(from, to)(m_random);
    }
    bool coin() { return number(0, 1) < 0.5; }
    template<typename Enum>
    Enum any() {
        const auto count = static_cast<double>(RawValues<Enum>::names.size());
        return static_cast<Enum>(number(0, count));
    }

private:
    std::mt19937 m_random;
};

AppearanceSettings anyLook(Dice& dice) {
    AppearanceSettings look;
    look.backgroundStyle = dice.any<BackgroundStyle>();
    look.solidColor = {dice.number(0, 1), dice.number(0, 1), dice.number(0, 1), 1};
    look.gradientPresetIndex =
        static_cast<std::int64_t>(dice.number(0, static_cast<double>(gradientPresets().size())));
    look.blurRadius = std::round(dice.number(4, 16)) * 5;
    look.wallpaperPreset = dice.any<WallpaperPreset>();
    look.animateBackground = dice.coin();
    look.padding = dice.number(0, 0.15);
    look.cornerRadius = dice.number(0, 40);
    look.shadowEnabled = dice.coin();
    look.shadowRadius = dice.number(5, 50);
    look.shadowOpacity = dice.number(0.1, 1);
    return look;
}

CursorSettings anyPointer(Dice& dice) {
    CursorSettings pointer;
    pointer.showCursor = dice.coin();
    pointer.cursorSize = dice.number(12, 60);
    pointer.cursorStyle = dice.any<CursorStyle>();
    pointer.showClickEffect = dice.coin();
    pointer.smoothingPreset = dice.any<CursorSmoothingPreset>();
    pointer.showKeystrokes = dice.coin();
    pointer.keystrokeDisplayDuration = kKeyLife;
    pointer.keystrokeSize = dice.any<KeystrokeSize>();
    return pointer;
}

CameraSettings anyCamera(Dice& dice) {
    CameraSettings camera;
    camera.enabled = true;
    camera.position = dice.any<CameraPosition>();
    camera.sizeFraction = dice.number(0.1, 0.4);
    camera.marginFraction = dice.number(0.01, 0.1);
    camera.borderWidth = dice.number(1, 8); // below, the canvas shows half a pixel
    camera.shadowEnabled = dice.coin();
    camera.cornerRadius = dice.number(0, 420);
    return camera;
}

ZoomKeyframe anyZoom(Dice& dice, Size video) {
    ZoomKeyframe zoom;
    zoom.timestamp = dice.number(0, 3);
    zoom.endTime = dice.number(6, kLength);
    zoom.transitionDuration = dice.number(0.1, 2);
    zoom.easingType = dice.any<EasingType>();
    const double level = dice.number(1.3, 3);
    zoom.rect = {dice.number(0, video.width / 2), dice.number(0, video.height / 2),
                 video.width / level, video.height / level};
    if (dice.coin()) {
        zoom.zoomCurve = {{Uuid::make(), 4, level}, {Uuid::make(), 5.5, level * 1.2}};
    }
    return zoom;
}

std::vector<CursorEvent> log(Size video) {
    std::vector<CursorEvent> events;
    for (int i = 0; i < 200; ++i) {
        const double t = i * 0.05;
        events.push_back({t, video.width * (0.5 + 0.3 * std::sin(t)),
                          video.height * (0.5 + 0.3 * std::cos(t)), CursorEventType::move});
        if (i % 40 == 39) {
            events.push_back(events.back());
            events.back().eventType = CursorEventType::leftClick;
        }
        if (i % 15 == 14) {
            events.push_back(events.back());
            events.back().eventType = CursorEventType::keyDown;
            events.back().keyCharacter = "k";
            events.back().keyModifiers = 1 << 20;
        }
    }
    return events;
}

State stateOf(unsigned seed) {
    Dice dice(seed);
    State state;
    state.video = dice.coin() ? Size{960, 540} : Size{720, 540};
    EditProject& project = state.project;
    project.outputSettings = {{1280, 720}, 60, dice.coin()};
    project.appearanceSettings = anyLook(dice);
    project.cursorSettings = anyPointer(dice);
    project.cameraSettings = anyCamera(dice);
    project.videoHeight = state.video.height;
    project.cursorEvents = log(state.video);
    if (dice.coin()) {
        project.keyframes = {anyZoom(dice, state.video)};
    }
    const double time = dice.number(0, kLength);
    const int width = static_cast<int>(state.video.width);
    const int height = static_cast<int>(state.video.height);
    state.moment = {waves(width, height, dice.number(0, 6)),
                    dice.coin() ? waves(320, 240, dice.number(0, 6)) : nullptr, time, time,
                    CanvasMode::preview};
    return state;
}

PixelBuffer filmOf(const State& state) {
    FrameComposer frames(state.project, makeOutputTimeline(state.project, kLength), state.video);
    PixelBuffer out(frames.frameSize().width, frames.frameSize().height);
    frames.composeFrame(state.moment.frame, state.moment.cameraImage, state.moment.time, out);
    return out;
}

PixelBuffer canvasOf(const State& state, FrameSize size) {
    PreviewComposer composer;
    composer.setLog(state.project, state.video);
    composer.setScene(state.project, state.video, size);
    PixelBuffer out(size.width, size.height);
    composer.compose(state.moment, out);
    return out;
}

/// Each pixel is the mean of those that it stands for.
PixelBuffer shrunk(const PixelBuffer& film) {
    PixelBuffer out(film.width() / kShrink, film.height() / kShrink);
    for (int y = 0; y < out.height(); ++y) {
        for (int x = 0; x < out.width() * 4; ++x) {
            int sum = kShrink * kShrink / 2;
            for (int i = 0; i < kShrink * kShrink; ++i) {
                const int column = (x / 4 * kShrink + i % kShrink) * 4 + x % 4;
                sum += film.row(y * kShrink + i / kShrink)[column];
            }
            out.row(y)[x] = static_cast<std::uint8_t>(sum / (kShrink * kShrink));
        }
    }
    return out;
}

/// Where the canvas is told to show something else than the film: pointer and rings, which grow
/// with the zoom, and the lighter shadow of the camera. Canvas pixels, from the top left.
class ToldApart {
public:
    ToldApart(const State& state, FrameSize size) : m_state(state), m_size(size) {
        addPointer();
        addCamera();
    }

    bool holds(int x, int y) const {
        return std::any_of(m_areas.begin(), m_areas.end(), [&](const Rect& area) {
            return x >= area.x && x < area.maxX() && y >= area.y && y < area.maxY();
        });
    }

private:
    void addPointer() {
        const CursorSettings& pointer = m_state.project.cursorSettings;
        const auto cursor = CursorRenderer::make(m_state.project.cursorEvents, m_state.video.height,
                                                 pointer, {}, {});
        const auto place = cursor.position(m_state.moment.time);
        if (!pointer.showCursor || !place) {
            return;
        }
        const double aspect = static_cast<double>(m_size.width) / m_size.height;
        const Rect crop =
            evaluateCamera(m_state.project.keyframes, m_state.moment.time, m_state.video, aspect);
        const double padding = m_state.project.appearanceSettings.padding;
        const double room = m_size.width * (1 - 2 * padding);
        const double scale =
            std::min(room / crop.width, m_size.height * (1 - 2 * padding) / crop.height);
        const double x = m_size.width / 2.0 + scale * (place->x - (crop.x + crop.width / 2));
        const double y = m_size.height / 2.0 - scale * (place->y - (crop.y + crop.height / 2));
        // The largest ring, its rim, and how far the click may be from the pointer.
        const double reach = pointer.cursorSize * scale * 2 + 40;
        m_areas.push_back({x - reach, y - reach, 2 * reach, 2 * reach});
    }

    void addCamera() {
        const CameraSettings& camera = m_state.project.cameraSettings;
        const Size size{static_cast<double>(m_size.width), static_cast<double>(m_size.height)};
        const auto bubble = cameraBubbleRect(camera, size);
        if (m_state.moment.cameraImage && camera.shadowEnabled && bubble) {
            constexpr double kShadow = 16; // three deviations of it, and the rim
            const Rect area = flipped(*bubble, size.height);
            m_areas.push_back({area.x - kShadow, area.y - kShadow, area.width + 2 * kShadow,
                               area.height + 2 * kShadow});
        }
    }

    const State& m_state;
    FrameSize m_size;
    std::vector<Rect> m_areas;
};

struct Difference {
    double mean = 0;  ///< Of all channels, in steps of 255.
    double edges = 0; ///< Share of the pixels that differ by more than kVisible.
    int largest = 0;
    double compared = 0; ///< Share of the picture.
};

constexpr int kVisible = 16; ///< Steps of 255.

Difference differenceOf(const PixelBuffer& canvas, const PixelBuffer& film, const ToldApart& mask) {
    Difference found;
    double pixels = 0;
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            if (mask.holds(x, y)) {
                continue;
            }
            int most = 0;
            for (int channel = 0; channel < 4; ++channel) {
                const int i = 4 * x + channel;
                const int apart = std::abs(canvas.row(y)[i] - film.row(y)[i]);
                most = std::max(most, apart);
                found.mean += apart / 4.0;
            }
            found.edges += most > kVisible ? 1 : 0;
            found.largest = std::max(found.largest, most);
            ++pixels;
        }
    }
    found.mean /= std::max(pixels, 1.0);
    found.edges /= std::max(pixels, 1.0);
    found.compared = pixels / (canvas.width() * canvas.height());
    return found;
}

class PreviewFilm : public testing::TestWithParam<unsigned> {};

TEST_P(PreviewFilm, looksLikeTheCanvas) {
    const State state = stateOf(GetParam());
    const PixelBuffer film = shrunk(filmOf(state));
    const FrameSize size{film.width(), film.height()};
    const Difference found = differenceOf(canvasOf(state, size), film, ToldApart(state, size));
    std::cout << "state " << GetParam() << ": mean " << found.mean << ", more than " << kVisible
              << " on " << found.edges * 100 << " %, largest " << found.largest << ", compared "
              << found.compared * 100 << " %\n";
    RecordProperty("mean", std::to_string(found.mean));
    EXPECT_GT(found.compared, 0.25);
    EXPECT_LT(found.mean, 0.5);
    EXPECT_LT(found.edges, 0.008); // letters of pressed keys, which are drawn anew at each size
}

INSTANTIATE_TEST_SUITE_P(AtRandom, PreviewFilm, testing::Range(1U, 21U));

} // namespace
} // namespace tavi
