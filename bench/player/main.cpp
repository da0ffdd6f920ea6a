// Measures the player: player_bench open|seek|step|scrub|together|rest FILE [COUNT or SECONDS]

#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "platform/ffmpeg/FfmpegMediaPlayers.h"
#include "player/Measurement.h"
#include "player/PictureNumber.h"
#include "render/YuvConverter.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <thread>

namespace tavi::bench {
namespace {

constexpr double kFrameRate = 60; ///< Of films whose pictures have numbers.

MediaTime hostTime() {
    return SystemClock().hostTime();
}

/// One player over a file.
class Bench {
public:
    explicit Bench(std::filesystem::path file) : m_file(std::move(file)) {}

    void open(int count) {
        std::vector<double> seconds;
        for (int i = 0; i < count; ++i) {
            const double start = now();
            const auto player = m_players.makePlayer({m_file, {}});
            m_loop.runUntil([&] { return player->currentPicture() != nullptr; });
            seconds.push_back(now() - start);
        }
        print("open to the first picture", std::move(seconds));
    }

    /// From each seek to the picture that it asks for; times are in the middle of pictures.
    void seek(int count) {
        show();
        std::mt19937 random(1);
        std::uniform_real_distribution<double> any(0, length());
        std::vector<double> times;
        for (int i = 0; i < count; ++i) {
            times.push_back(any(random));
        }
        const double processor = processorSeconds();
        print("exact seek", seekThrough(times));
        fmt::print("processor: {:.1f} ms a seek\n", (processorSeconds() - processor) / count * 1e3);
    }

    void step(int count) {
        show();
        std::vector<double> forward;
        for (int i = 0; i < count; ++i) {
            forward.push_back(length() / 2 + i / 60.0);
        }
        std::vector<double> back(forward.rbegin(), forward.rend());
        seekThrough({length() / 2});
        print("step forward by a picture", seekThrough(forward));
        print("step back by a picture", seekThrough(back));
    }

    /// A pointer dragged over the timeline, 60 seeks a second: over the whole film in a second and
    /// a half and back, over a third in four, over a second of it in five.
    void scrub(int seconds) {
        show();
        m_period = periodOf();
        const auto wave = [](double phase) { return 1 - std::abs(1 - std::fmod(phase, 2.0)); };
        drag("over the film", seconds, [&](double t) { return wave(t / 1.5) * length(); });
        drag("over a third", seconds, [&](double t) { return (1 + wave(t / 4)) * length() / 3; });
        drag("over a second", seconds, [&](double t) { return length() / 2 + wave(t / 5); });
    }

    /// Two players started on one tick: by how much their clocks and their pictures differ.
    void together(int seconds) {
        show();
        m_period = periodOf();
        m_player->seek({});
        const auto second = m_players.makePlayer({m_file, {}});
        m_loop.runUntil([&] { return second->currentPicture() != nullptr; });
        std::vector<double> differences;
        std::map<int, int> pictures;
        const double lead = 0.05;
        const MediaTime tick = hostTime() + MediaTime::fromSeconds(lead);
        int shown = 0;
        const double processor = processorSeconds();
        m_player->setPictureObserver([&] { ++shown; });
        m_player->setPeriodicTimeObserver({1, 30}, [&](MediaTime time) {
            differences.push_back(std::abs((time - second->currentTime()).seconds()));
            if (const auto apart = picturesApart(*m_player, *second)) {
                ++pictures[*apart];
            }
        });
        for (MediaPlayer* player : {m_player.get(), second.get()}) {
            player->setRate(1, {0, 1}, tick);
        }
        const double end = std::min<double>(seconds, length() - 0.1);
        m_loop.runUntil([&] { return m_player->currentTime().seconds() >= end; });
        print("difference of two players' times", std::move(differences));
        for (const auto& [apart, count] : pictures) {
            fmt::print("pictures {:+d} apart: {} times\n", apart, count);
        }
        fmt::print("shown: {:.1f} pictures a second; processor {:.0f} % of a core for both\n",
                   shown / end, (processorSeconds() - processor) / end * 100);
    }

    void rest(int seconds) {
        show();
        seekThrough({length() / 3});
        const double before = processorSeconds();
        std::this_thread::sleep_for(std::chrono::seconds(seconds));
        fmt::print("paused: {:.3f} % of a core\n", (processorSeconds() - before) / seconds * 100);
    }

private:
    void show() {
        m_player = m_players.makePlayer({m_file, {}});
        m_loop.runUntil([&] { return m_player->currentPicture() != nullptr; });
        const auto asset = m_library.openAsset(m_file);
        m_length = asset ? asset->duration.seconds() : 0;
    }

    double length() const { return m_length; }

    /// How many pictures there are until numbers begin anew; absent where they have none.
    std::optional<int> periodOf() {
        seekThrough({length() - 0.001});
        const auto last = numberOf(*m_player->currentPicture());
        return last ? std::optional(*last + 1) : std::nullopt;
    }

    /// How far a number is from the one of another picture, the short way round.
    int apart(int number, int other) const {
        const int difference = ((number - other) % *m_period + *m_period) % *m_period;
        return difference > *m_period / 2 ? difference - *m_period : difference;
    }

    std::optional<int> picturesApart(const MediaPlayer& a, const MediaPlayer& b) const {
        const auto first = m_period ? numberOf(*a.currentPicture()) : std::nullopt;
        const auto second = first ? numberOf(*b.currentPicture()) : std::nullopt;
        return second ? std::optional(apart(*first, *second)) : std::nullopt;
    }

    /// How far the picture shown is from the one at `time`, in seconds.
    std::optional<double> distanceFrom(double time) const {
        const auto number = m_period ? numberOf(*m_player->currentPicture()) : std::nullopt;
        const int wanted = static_cast<int>(time * kFrameRate + 1e-6);
        return number ? std::optional(std::abs(apart(*number, wanted)) / kFrameRate) : std::nullopt;
    }

    /// 60 seeks a second to where the pointer is after so many seconds: how often the picture
    /// changes, how far it is from the pointer's, and how long a call takes.
    void drag(const std::string& name, int seconds, const std::function<double(double)>& pointer) {
        seekThrough({pointer(0)});
        int pictures = 0;
        m_player->setPictureObserver([&] { ++pictures; });
        std::vector<double> calls;
        std::vector<double> distances;
        const double start = now();
        const double processor = processorSeconds();
        for (int i = 0; i < seconds * 60; ++i) {
            const double due = start + i / 60.0;
            m_loop.runUntil([&] { return now() >= due; });
            const double target = pointer(due - start);
            if (const auto distance = distanceFrom(target)) {
                distances.push_back(*distance);
            }
            const double before = now();
            m_player->seek(MediaTime::fromSeconds(target));
            calls.push_back(now() - before);
        }
        const double spent = processorSeconds() - processor;
        fmt::print("scrub {}: {:.1f} pictures a second, {:.0f} % of a core\n", name,
                   static_cast<double>(pictures) / seconds, spent / seconds * 100);
        printMean("its distance from the pointer, in seconds of film", distances);
        print("call of seek()", std::move(calls));
    }

    std::vector<double> seekThrough(const std::vector<double>& times) {
        std::vector<double> seconds;
        for (const double time : times) {
            bool isShown = false;
            m_player->setPictureObserver([&] { isShown = true; });
            const double start = now();
            m_player->seek(MediaTime::fromSeconds(time, 90000));
            m_loop.runUntil([&] { return isShown || now() > start + 2; });
            if (isShown) { // Else the same picture was asked for again.
                seconds.push_back(now() - start);
            }
        }
        return seconds;
    }

    std::filesystem::path m_file;
    MainLoop m_loop;
    SilentOutputs m_silence;
    std::shared_ptr<const ColorConverter> m_colours = std::make_shared<YuvConverter>();
    FfmpegMediaLibrary m_library{m_colours};
    FfmpegMediaPlayers m_players{m_loop, m_colours, m_silence};
    std::unique_ptr<MediaPlayer> m_player;
    double m_length = 0;
    std::optional<int> m_period; ///< See periodOf().
};

int run(const std::string& what, const std::string& file, int count) {
    const std::map<std::string, void (Bench::*)(int)> known{
        {"open", &Bench::open},   {"seek", &Bench::seek},         {"step", &Bench::step},
        {"scrub", &Bench::scrub}, {"together", &Bench::together}, {"rest", &Bench::rest}};
    const auto found = known.find(what);
    if (found == known.end() || count <= 0 || !std::filesystem::exists(file)) {
        fmt::print(stderr, "usage: player_bench open|seek|step|scrub|together|rest FILE [COUNT]\n");
        return 2;
    }
    Bench bench(file);
    (bench.*found->second)(count);
    return 0;
}

} // namespace
} // namespace tavi::bench

int main(int argc, char** argv) {
    const std::string what = argc > 2 ? argv[1] : "";
    const int count = argc > 3 ? std::atoi(argv[3]) : 100;
    return tavi::bench::run(what, argc > 2 ? argv[2] : "", count);
}
