#include "e2e/RealMedia.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <sstream>

namespace tavi::e2e {

namespace fs = std::filesystem;

namespace {

std::string quoted(const fs::path& path) {
    return "'" + path.string() + "'";
}

void ffmpeg(const std::string& arguments, const fs::path& path) {
    const std::string command =
        fmt::format("cd {} && timeout 60 ffmpeg -nostdin -v error -y {} {} </dev/null",
                    quoted(mediaFolder()), arguments, quoted(path));
    const test::Outcome made = test::runShell(command);
    EXPECT_EQ(made.status, 0) << command << "\n" << made.err;
}

} // namespace

const fs::path& mediaFolder() {
    static const test::TemporaryFolder folder;
    return folder.path();
}

fs::path made(const std::string& name, const std::string& arguments) {
    fs::path path = mediaFolder() / name;
    if (!fs::exists(path)) {
        ffmpeg(arguments, path);
    }
    return path;
}

fs::path madeTake(const std::string& name, const std::string& video, const std::string& camera) {
    fs::path folder = mediaFolder() / name;
    if (!fs::exists(folder)) {
        fs::create_directories(folder);
        ffmpeg(video, folder / "video.mov");
        if (!camera.empty()) {
            ffmpeg(camera, folder / "camera.mov");
        }
    }
    return folder;
}

std::string numbered(int rate, double seconds, const std::string& size) {
    // Drawn with a pixel for each digit, then enlarged.
    return fmt::format("color=black:s=10x5:r={}:d={},format=gray,geq=lum='st(0,mod(floor(N/"
                       "pow(2,X)),2));255*if(lt(Y,1),ld(0),if(lt(Y,2),1-ld(0),0.5))',"
                       "scale={}:flags=neighbor",
                       rate, seconds, size);
}

double clickTime(int k) {
    return 0.25 * k + 0.05 + 0.015 * (7 * k % 10);
}

std::string clicking(int sampleRate, double seconds, const std::vector<bool>& channels,
                     const std::string& layout) {
    const std::string burst = "st(0,floor(t/0.25));st(1,t-0.25*ld(0)-0.05-0.015*mod(7*ld(0),10));"
                              "if(lt(abs(ld(1)),0.01),0.8*exp(-pow(ld(1)/0.001,2))*"
                              "cos(2*PI*1500*ld(1)),0)";
    std::string expressions;
    for (const bool isHeard : channels) {
        expressions += (expressions.empty() ? "" : "|") + (isHeard ? burst : "0");
    }
    return fmt::format("aevalsrc='{}':s={}:d={}:c={}", expressions, sampleRate, seconds, layout);
}

std::string bytesFrom(const std::string& command) {
    const test::Outcome outcome = test::runShell(command);
    EXPECT_EQ(outcome.status, 0) << command << "\n" << outcome.err;
    return outcome.out;
}

std::string outputOf(const std::string& command) {
    std::string text = bytesFrom(command);
    while (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    return text;
}

std::string probed(const fs::path& file, const std::string& stream, const std::string& entries) {
    return outputOf(fmt::format("ffprobe -v error -select_streams {} -show_entries {} "
                                "-of default=nw=1:nk=1 {} | head -1",
                                stream, entries, quoted(file)));
}

namespace {

/// The number in each picture of a file. The pictures are reduced to twenty by ten
/// pixels, which leaves the middle of each digit clear.
std::vector<int> numbersByCommand(const fs::path& file, NumberPlace place) {
    const std::string part =
        place == NumberPlace::middleSquare ? "crop='min(iw,ih)':'min(iw,ih)'," : "";
    constexpr int kWidth = 20;
    constexpr int kHeight = 10;
    constexpr std::size_t kBytes = std::size_t{kWidth} * kHeight;
    const std::string raw = bytesFrom(
        fmt::format("timeout 60 ffmpeg -nostdin -v error -noautorotate -i {} -map 0:v:0 -fps_mode "
                    "passthrough -vf \"{}scale={}:{}:flags=neighbor,format=gray\" -f rawvideo - "
                    "</dev/null",
                    quoted(file), part, kWidth, kHeight));
    EXPECT_EQ(raw.size() % kBytes, 0u) << file;
    std::vector<int> numbers;
    for (std::size_t start = 0; start + kBytes <= raw.size(); start += kBytes) {
        numbers.push_back(numberIn([&](double x, double y) {
            const auto column = static_cast<std::size_t>(x * kWidth);
            const auto row = static_cast<std::size_t>(y * kHeight);
            return static_cast<int>(static_cast<std::uint8_t>(raw[start + row * kWidth + column]));
        }));
    }
    return numbers;
}

/// When the pictures of a file begin, and the last one ends.
struct Times {
    std::vector<std::int64_t> ticks;
    int numerator = 0; ///< Of a tick, in seconds.
    int denominator = 1;
    double start = 0; ///< Seconds.
    double duration = 0;
};

Times timesByCommand(const fs::path& file) {
    std::istringstream lines(
        outputOf(fmt::format("ffprobe -v error -select_streams v:0 -show_entries "
                             "frame=pts:stream=time_base,start_time,duration -of default=nw=1 {}",
                             quoted(file))));
    Times times;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t sign = line.find('=');
        const std::string key = line.substr(0, sign);
        const std::string value = sign == std::string::npos ? "" : line.substr(sign + 1);
        if (key == "pts") {
            times.ticks.push_back(std::stoll(value));
        } else if (key == "time_base") {
            std::sscanf(value.c_str(), "%d/%d", &times.numerator, &times.denominator);
        } else if (key == "start_time") {
            times.start = std::stod(value);
        } else if (key == "duration") {
            times.duration = std::stod(value);
        }
    }
    return times;
}

} // namespace

NumberedVideo videoByCommand(const fs::path& file, NumberPlace place) {
    const Times times = timesByCommand(file);
    const std::vector<int> numbers = numbersByCommand(file, place);
    EXPECT_EQ(times.ticks.size(), numbers.size()) << file;
    NumberedVideo video{{}, times.start + times.duration};
    for (std::size_t i = 0; i < std::min(times.ticks.size(), numbers.size()); ++i) {
        const double time = static_cast<double>(times.ticks[i] * times.numerator);
        video.pictures.push_back({numbers[i], time / times.denominator});
    }
    return video;
}

} // namespace tavi::e2e
