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

std::vector<std::int64_t> numbersFrom(const std::string& command) {
    std::istringstream lines(outputOf(command));
    std::vector<std::int64_t> numbers;
    for (std::string line; std::getline(lines, line);) {
        char* end = nullptr;
        const long long value = std::strtoll(line.c_str(), &end, 10);
        if (end != line.c_str()) {
            numbers.push_back(value);
        }
    }
    return numbers;
}

std::string probed(const fs::path& file, const std::string& stream, const std::string& entries) {
    return outputOf(fmt::format("ffprobe -v error -select_streams {} -show_entries {} "
                                "-of default=nw=1:nk=1 {} | head -1",
                                stream, entries, quoted(file)));
}

namespace {

/// The number in each picture of a file. The pictures are reduced to twenty by ten
/// pixels, which leaves the middle of each digit clear.
std::vector<int> numbersByCommand(const fs::path& file) {
    constexpr int kWidth = 20;
    constexpr int kHeight = 10;
    constexpr std::size_t kBytes = std::size_t{kWidth} * kHeight;
    const std::string raw = bytesFrom(
        fmt::format("timeout 60 ffmpeg -nostdin -v error -noautorotate -i {} -map 0:v:0 -fps_mode "
                    "passthrough -vf scale={}:{}:flags=neighbor,format=gray -f rawvideo - "
                    "</dev/null",
                    quoted(file), kWidth, kHeight));
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

} // namespace

std::vector<NumberedPicture> picturesByCommand(const fs::path& file) {
    const std::vector<std::int64_t> ticks =
        numbersFrom(fmt::format("ffprobe -v error -select_streams v:0 -show_entries frame=pts -of "
                                "default=nw=1:nk=1 {}",
                                quoted(file)));
    int numerator = 0;
    int denominator = 0;
    std::sscanf(probed(file, "v:0", "stream=time_base").c_str(), "%d/%d", &numerator, &denominator);
    const std::vector<int> numbers = numbersByCommand(file);
    EXPECT_EQ(ticks.size(), numbers.size()) << file;
    std::vector<NumberedPicture> pictures;
    for (std::size_t i = 0; i < std::min(ticks.size(), numbers.size()); ++i) {
        const double time = static_cast<double>(ticks[i] * numerator) / denominator;
        pictures.push_back({numbers[i], time});
    }
    return pictures;
}

} // namespace tavi::e2e
