#pragma once

#include "cli/RunTavi.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tavi::e2e {

/// A folder of this test run; removed at its end. Names in ffmpeg arguments are
/// seen from there.
const std::filesystem::path& mediaFolder();

/// The folder `name` of a take, made once per run: its video.mov is what
/// `ffmpeg <video>` writes, its camera.mov what `ffmpeg <camera>` writes, if that isn't empty.
std::filesystem::path madeTake(const std::string& name, const std::string& video,
                               const std::string& camera = {});

/// A file that `ffmpeg <arguments> <path>` makes, once per run.
std::filesystem::path made(const std::string& name, const std::string& arguments);

/// A filter graph without input whose picture n shows n: columns of black and
/// white, one for each digit of n in base 2, above them their opposites. Ends by itself.
std::string numbered(int rate, double seconds, const std::string& size = "160x90");

/// A filter graph without input: bursts of sound at clickTime(0), clickTime(1), ...
/// `channels` says for each channel whether it has them. Ends by itself.
std::string clicking(int sampleRate, double seconds, const std::vector<bool>& channels,
                     const std::string& layout);

/// When a burst is highest, in seconds. The distances differ, so that a few
/// of them tell which ones they are.
double clickTime(int k);

/// All that a command prints. Fails the test where it can't run.
std::string bytesFrom(const std::string& command);

/// What a command prints, without the last line end. Fails the test where it can't run.
std::string outputOf(const std::string& command);

/// One value of `ffprobe -show_entries`, of `stream` ("v:0", "a:0").
std::string probed(const std::filesystem::path& file, const std::string& stream,
                   const std::string& entries);

/// A picture of a numbered video.
struct NumberedPicture {
    int number = 0;  ///< kUnreadable where it shows none.
    double time = 0; ///< Seconds.
};

/// What the ffmpeg programs say of a numbered video.
struct NumberedVideo {
    std::vector<NumberedPicture> pictures;
    double end = 0; ///< When its last picture ends, in seconds.
};

inline constexpr int kUnreadable = -1;

/// Where in a picture its number is.
enum class NumberPlace { everywhere, middleSquare };

/// The first video of a file by the ffmpeg programs, tags of rotation ignored.
NumberedVideo videoByCommand(const std::filesystem::path& file,
                             NumberPlace place = NumberPlace::everywhere);

/// A sample of brightness, 0 to 255, at fractions of a picture's sides.
template<class Brightness>
int numberIn(const Brightness& brightness) {
    constexpr int kDigits = 10;
    constexpr int kClear = 100; // Between a digit and its opposite.
    int number = 0;
    for (int i = 0; i < kDigits; ++i) {
        const double x = (i + 0.5) / kDigits;
        const int difference = brightness(x, 0.1) - brightness(x, 0.3);
        if (difference > -kClear && difference < kClear) {
            return kUnreadable;
        }
        number += difference > 0 ? 1 << i : 0;
    }
    return number;
}

} // namespace tavi::e2e
