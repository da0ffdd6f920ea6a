// Measures the player: player_bench open|seek|step|scrub|together|rest FILE [COUNT or SECONDS]

#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "platform/ffmpeg/FfmpegMediaPlayers.h"
#include "player/Measurement.h"
#include "render/YuvConverter.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <thread>

namespace tavi::bench {
namespace {

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

    /// A pointer dragged over the timeline, 60 seeks a second: how often the picture changes,
    /// and how long a call takes.
    void scrub(int seconds) {
        show();
        int pictures = 0;
        m_player->setPictureObserver([&] { ++pictures; });
        std::vector<double> calls;
        const double start = now();
        for (int i = 0; i < seconds * 60; ++i) {
            const double due = start + i / 60.0;
            m_loop.runUntil([&] { return now() >= due; });
            const double share = 0.5 - 0.5 * std::cos(i * 0.02);
            const double before = now();
            m_player->seek(MediaTime::fromSeconds(share * length()));
            calls.push_back(now() - before);
        }
        fmt::print("scrub: {} pictures a second of 60 seeks\n", pictures / seconds);
        print("call of seek()", std::move(calls));
    }

    /// Two players started on one tick: by how much their pictures differ.
    void together(int seconds) {
        show();
        const auto second = m_players.makePlayer({m_file, {}});
        m_loop.runUntil([&] { return second->currentPicture() != nullptr; });
        std::map<MediaPlayer*, double> changed;
        std::vector<double> differences;
        const double lead = 0.05;
        const MediaTime tick = hostTime() + MediaTime::fromSeconds(lead);
        int shown = 0;
        const double processor = processorSeconds();
        m_player->setPictureObserver([&] { ++shown; });
        m_player->setPeriodicTimeObserver({1, 30}, [&](MediaTime time) {
            differences.push_back(std::abs((time - second->currentTime()).seconds()));
        });
        for (MediaPlayer* player : {m_player.get(), second.get()}) {
            player->setRate(1, {0, 1}, tick);
        }
        const double end = std::min<double>(seconds, length() - 0.1);
        m_loop.runUntil([&] { return m_player->currentTime().seconds() >= end; });
        print("difference of two players' times", std::move(differences));
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
