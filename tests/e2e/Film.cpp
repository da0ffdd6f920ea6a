#include "e2e/Film.h"

#include "base/Clock.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "project/RecordingFolder.h"
#include "render/YuvConverter.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <thread>

namespace tavi::e2e {

namespace fs = std::filesystem;

namespace {

constexpr int kSoundRate = 44100; ///< Hz, of every film.

FfmpegMediaLibrary mediaLibrary() {
    return FfmpegMediaLibrary(std::make_shared<YuvConverter>());
}

std::uint32_t wordAt(const std::string& bytes, std::size_t position) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        word = word << 8 | static_cast<std::uint8_t>(bytes[position + i]);
    }
    return word;
}

fs::path videoOf(const EditProject& project) {
    return pathOfFileUrl(project.recordingPath) / take::kVideo;
}

/// The number in a part of a picture, in pixels.
int numberIn(const PixelBuffer& image, const Rect& part) {
    return e2e::numberIn([&](double x, double y) {
        const int column = static_cast<int>(part.x + x * part.width);
        const int row = static_cast<int>(part.y + y * part.height);
        return static_cast<int>(image.row(row)[column * PixelBuffer::kBytesPerPixel + 1]);
    });
}

std::optional<int> cameraIn(const PixelBuffer& image, const std::optional<Rect>& bubble) {
    const int number = bubble ? numberIn(image, *bubble) : kUnreadable;
    return number == kUnreadable ? std::nullopt : std::optional(number);
}

/// Looked at once per run.
const NumberedVideo& sourceOf(const fs::path& file, NumberPlace place = NumberPlace::everywhere) {
    static std::map<fs::path, NumberedVideo> known;
    const auto [entry, isNew] = known.try_emplace(file);
    if (isNew) {
        entry->second = videoByCommand(file, place);
    }
    return entry->second;
}

std::optional<CameraSource> cameraOf(const EditProject& project) {
    const fs::path file = pathOfFileUrl(project.recordingPath) / take::kCamera;
    if (!project.cameraSettings.enabled || !fs::exists(file)) {
        return std::nullopt;
    }
    return CameraSource{sourceOf(file, NumberPlace::middleSquare), project.cameraStartDelay};
}

} // namespace

EditProject plainProject(const fs::path& take) {
    EditProject project;
    project.recordingPath = folderUrl(take);
    project.outputSettings = {{160, 90}, 30, false};
    project.appearanceSettings.backgroundStyle = BackgroundStyle::solidBlack;
    project.appearanceSettings.padding = 0;
    project.appearanceSettings.cornerRadius = 0;
    project.cursorSettings.showCursor = false;
    return project;
}

void cut(EditProject& project, double start, double end) {
    project.trimState.cutSegments.push_back({Uuid::make(), start, end});
}

Result<ExportReport, ExportFailure> exportTo(const EditProject& project, const fs::path& path,
                                             const ExportProgress& progress) {
    FfmpegMediaLibrary media = mediaLibrary();
    const SystemClock clock;
    VideoExportService service(
        media, clock, mediaFolder() / "export_debug.log",
        [](std::chrono::nanoseconds time) { std::this_thread::sleep_for(time); });
    return service.exportProject(project, path, [&](double share) {
        if (progress) {
            progress(service, share);
        }
    });
}

Film exported(const EditProject& project) {
    static int count = 0;
    Film film{mediaFolder() / fmt::format("film-{}.mp4", ++count), {}, {}};
    const auto report = exportTo(project, film.path, [&](VideoExportService&, double share) {
        film.progress.push_back(share);
    });
    if (report) {
        film.report = *report;
        EXPECT_TRUE(report->hasFile()) << problemOf(*report, film.path).value_or("").english();
    } else {
        ADD_FAILURE() << description(report.error());
    }
    return film;
}

double durationOf(const fs::path& take) {
    const fs::path file = take / take::kVideo;
    // The movie's header: timescale and duration stand behind two dates.
    const std::string bytes = test::readFile(file);
    const std::size_t header = bytes.find("mvhd");
    EXPECT_NE(header, std::string::npos) << file;
    const double ticks = wordAt(bytes, header + 20);
    return ticks > 0 ? ticks / wordAt(bytes, header + 16)
                     : std::stod(probed(file, "v:0", "format=duration"));
}

std::vector<Stretch> keptBy(const EditProject& project) {
    return keptStretches(project.trimState, durationOf(pathOfFileUrl(project.recordingPath)));
}

std::vector<ExpectedPicture> expectedPictures(const EditProject& project) {
    return expectedPictures(sourceOf(videoOf(project)), keptBy(project),
                            static_cast<int>(project.outputSettings.fps), cameraOf(project));
}

std::vector<ExpectedPicture> picturesOf(const fs::path& film, const std::optional<Rect>& bubble) {
    FfmpegMediaLibrary media = mediaLibrary();
    std::vector<ExpectedPicture> pictures;
    const auto asset = media.openAsset(film);
    if (!asset || asset->videoTracks.empty()) {
        ADD_FAILURE() << film << " can't be read";
        return pictures;
    }
    const auto reader = media.makeVideoReader(*asset, asset->videoTracks.front(), {{}, {1000, 1}});
    while (const auto sample = reader ? (*reader)->copyNextSample() : std::nullopt) {
        const PixelBuffer& image = *sample->image;
        const Rect whole{0, 0, static_cast<double>(image.width()),
                         static_cast<double>(image.height())};
        EXPECT_EQ(sample->presentationTime, sample->presentationTime.rescaled(600));
        pictures.push_back({numberIn(image, whole), sample->presentationTime.rescaled(600).value,
                            cameraIn(image, bubble)});
    }
    return pictures;
}

namespace {

void expectSame(const std::vector<ExpectedPicture>& film,
                const std::vector<ExpectedPicture>& expected) {
    EXPECT_EQ(film.size(), expected.size());
    for (std::size_t i = 0; i < std::min(film.size(), expected.size()); ++i) {
        ASSERT_EQ(film[i], expected[i])
            << "picture " << i << " shows " << film[i].number << " at " << film[i].time
            << "/600 s and the camera's " << film[i].camera.value_or(kUnreadable) << " instead of "
            << expected[i].number << " at " << expected[i].time << "/600 s and "
            << expected[i].camera.value_or(kUnreadable);
    }
}

std::vector<ExpectedPicture> withoutCamera(std::vector<ExpectedPicture> pictures) {
    for (ExpectedPicture& picture : pictures) {
        picture.camera.reset();
    }
    return pictures;
}

} // namespace

Film expectFilm(const EditProject& project, const std::optional<Rect>& bubble) {
    Film film = exported(project);
    const std::vector<ExpectedPicture> expected = expectedPictures(project);
    expectSame(picturesOf(film.path, bubble), expected);
    std::vector<ExpectedPicture> byCommand;
    for (const NumberedPicture& picture : videoByCommand(film.path).pictures) {
        byCommand.push_back({picture.number, std::llround(picture.time * 600), {}});
    }
    expectSame(byCommand, withoutCamera(expected));
    return film;
}

namespace {

/// Bursts are as long as this, and further apart.
constexpr double kBurst = 0.010;

/// The middle of what is heard around a loud sample: its centre of energy.
Click clickAround(const std::vector<float>& samples, std::size_t first) {
    const auto half = static_cast<std::size_t>(kBurst * kSoundRate);
    const std::size_t begin = first > half ? first - half : 0;
    const std::size_t end = std::min(first + half, samples.size());
    double energy = 0;
    double moment = 0;
    Click click;
    for (std::size_t i = begin; i < end; ++i) {
        const double power = static_cast<double>(samples[i]) * samples[i];
        energy += power;
        moment += power * static_cast<double>(i);
        click.level = std::max(click.level, std::sqrt(power));
    }
    click.time = moment / energy / kSoundRate;
    return click;
}

std::vector<Click> clicksIn(const std::vector<float>& samples) {
    constexpr float kLoud = 0.15F;
    const auto length = static_cast<std::size_t>(2 * kBurst * kSoundRate);
    std::vector<Click> clicks;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (std::abs(samples[i]) > kLoud) {
            clicks.push_back(clickAround(samples, i));
            i += length;
        }
    }
    return clicks;
}

} // namespace

std::vector<Click> clicksByCommand(const fs::path& film) {
    const std::string raw =
        bytesFrom(fmt::format("timeout 60 ffmpeg -nostdin -v error -copyts -i '{}' -map 0:a:0 -af "
                              "aresample=async=1:first_pts=0 -f f32le -ar {} -ac 1 - </dev/null",
                              film.string(), kSoundRate));
    std::vector<float> samples(raw.size() / sizeof(float));
    std::memcpy(samples.data(), raw.data(), samples.size() * sizeof(float));
    return clicksIn(samples);
}

std::vector<Click> clicksOf(const fs::path& film) {
    FfmpegMediaLibrary media = mediaLibrary();
    std::vector<float> samples;
    const auto asset = media.openAsset(film);
    if (!asset || asset->audioTracks.empty()) {
        ADD_FAILURE() << film << " has no sound";
        return {};
    }
    const auto reader = media.makeAudioReader(*asset, asset->audioTracks.front());
    while (const auto piece = reader ? (*reader)->copyNextSample() : std::nullopt) {
        EXPECT_EQ(piece->buffer->sampleRate, kSoundRate);
        EXPECT_EQ(piece->buffer->channels, 1);
        const auto start =
            static_cast<std::size_t>(piece->presentationTime.rescaled(kSoundRate).value);
        samples.resize(std::max(samples.size(), start));
        samples.insert(samples.end(), piece->buffer->samples.begin(), piece->buffer->samples.end());
    }
    return clicksIn(samples);
}

} // namespace tavi::e2e
