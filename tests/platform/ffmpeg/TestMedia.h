#pragma once

#include "media/AssetReader.h"
#include "media/MediaLibrary.h"
#include "platform/ffmpeg/FfmpegImageGenerator.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"

#include <array>
#include <filesystem>
#include <string>
#include <vector>

namespace tavi::testing {

/// The media stack as the programs put it together.
FfmpegMediaLibrary mediaLibrary();
FfmpegImageGenerator imageGenerator();

/// A folder of this test run; removed at its end.
const std::filesystem::path& mediaFolder();

/// A path in it for a file that a single test makes; what stood there is removed.
std::filesystem::path freshPath(const std::string& name);

/// Runs a shell command; false unless it exits 0.
bool run(const std::string& command);

/// What a command prints, without the last line end.
std::string outputOf(const std::string& command);

/// The file that `ffmpeg <arguments> <path>` makes, made once per run.
std::filesystem::path generated(const std::string& name, const std::string& arguments);

/// Arguments of a 64x48 source whose picture n shows n (see numberIn).
std::string numberedSource(int rate, double seconds, const std::string& size = "64x48");

/// The number that a picture of a numbered source shows, 0 to 2499: read at a
/// quarter and three quarters of its width.
int numberIn(const PixelBuffer& image);

/// The picture whose number is `n`, to be written by a writer.
void drawNumber(PixelBuffer& image, int n);

/// The size of the pictures below.
inline constexpr int kPictureWidth = 160;
inline constexpr int kPictureHeight = 120;

/// A picture that shows its number (see drawNumber).
PixelBufferPtr numbered(int n);

/// A picture that no encoder makes small.
PixelBufferPtr noise(int seed);

/// One value of `ffprobe -show_entries`, of the first video stream or the format.
std::string probe(const std::filesystem::path& file, const std::string& entries);

/// The types of the outermost boxes of a QuickTime or MP4 file, in their order.
std::string boxesOf(const std::filesystem::path& file);

struct NumberedTime {
    int number = 0;
    double time = 0;
};

/// Every sample of a range of the first video track. Fails the test when the
/// file can't be read.
std::vector<NumberedTime> readNumbers(const std::filesystem::path& file, double start = 0,
                                      double end = 1000);

/// The first picture of a file at or after a time.
PixelBufferPtr readPicture(const std::filesystem::path& file, double time = 0);

/// Blue, green, red at a position.
std::array<int, 3> colourAt(const PixelBuffer& image, int x, int y);

} // namespace tavi::testing
