#include "platform/ffmpeg/PixelConversion.h"
#include "platform/ffmpeg/TestMedia.h"
#include "render/YuvConverter.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace tavi {

namespace {

using namespace tavi::testing;
namespace fs = std::filesystem;

using Rgb = std::array<int, 3>;

constexpr std::array<Rgb, 8> kBars{{{255, 255, 255},
                                    {0, 0, 0},
                                    {255, 0, 0},
                                    {0, 255, 0},
                                    {0, 0, 255},
                                    {200, 120, 40},
                                    {10, 20, 30},
                                    {128, 128, 128}}};
constexpr int kBarWidth = 32;
constexpr int kBarsWidth = kBarWidth * static_cast<int>(kBars.size());
constexpr int kBarsHeight = 64;

/// Filters that draw the bars in RGB.
std::string barsSource() {
    std::string sources;
    std::string names;
    for (std::size_t i = 0; i < kBars.size(); ++i) {
        sources += fmt::format("color=0x{:02x}{:02x}{:02x}:s={}x{}:r=10:d=0.1,format=rgb24[{}];",
                               kBars[i][0], kBars[i][1], kBars[i][2], kBarWidth, kBarsHeight, i);
        names += fmt::format("[{}]", i);
    }
    return fmt::format("{}{}hstack={}", sources, names, kBars.size());
}

struct FilmCase {
    const char* name;
    const char* matrix; ///< The scale filter's name.
    const char* tag;
    bool isFull;
    const char* encoder;
};

class FilmColour : public ::testing::TestWithParam<FilmCase> {};

/// The conversion to 4:2:0 is ffmpeg's, the one back ours.
TEST_P(FilmColour, isReadAsItWasMeant) {
    const FilmCase film = GetParam();
    const fs::path file = generated(
        fmt::format("bars-{}.mkv", film.name),
        fmt::format("-f lavfi -i \"{}\" -vf scale=out_color_matrix={}:out_range={}:flags=bicubic+"
                    "accurate_rnd+full_chroma_inp {} -colorspace {} -color_range {}",
                    barsSource(), film.matrix, film.isFull ? "full" : "limited", film.encoder,
                    film.tag, film.isFull ? "pc" : "tv"));
    const PixelBufferPtr picture = readPicture(file);
    ASSERT_EQ(picture->width(), kBarsWidth);
    for (std::size_t i = 0; i < kBars.size(); ++i) {
        const int x = static_cast<int>(i) * kBarWidth + kBarWidth / 2;
        for (const int y : {0, 31, kBarsHeight - 1}) {
            const auto bgr = colourAt(*picture, x, y);
            for (std::size_t k = 0; k < 3; ++k) {
                EXPECT_NEAR(bgr[2 - k], kBars[i][k], 2) << "bar " << i << ", channel " << k;
            }
        }
    }
}

constexpr const char* kPlanar = "-c:v ffv1 -pix_fmt yuv420p";
constexpr const char* kNv12 = "-c:v rawvideo -pix_fmt nv12";
constexpr const char* kLossless = "-c:v libx264 -qp 0 -pix_fmt yuv420p";

INSTANTIATE_TEST_SUITE_P(Films, FilmColour,
                         ::testing::Values(FilmCase{"709limited", "bt709", "bt709", false, kPlanar},
                                           FilmCase{"709full", "bt709", "bt709", true, kPlanar},
                                           FilmCase{"601limited", "bt601", "smpte170m", false,
                                                    kPlanar},
                                           FilmCase{"601full", "bt601", "smpte170m", true, kPlanar},
                                           FilmCase{"nv12", "bt709", "bt709", false, kNv12},
                                           FilmCase{"nv12full601", "bt601", "bt470bg", true, kNv12},
                                           FilmCase{"h264", "bt709", "bt709", false, kLossless},
                                           FilmCase{"h264full", "bt709", "bt709", true, kLossless}),
                         [](const auto& test) { return test.param.name; });

/// The first picture of a file by the scaling library alone.
PixelBufferPtr readByScaler(const fs::path& file) {
    FfmpegMediaLibrary library(nullptr);
    const auto asset = library.openAsset(file);
    auto reader = library.makeVideoReader(*asset, asset->videoTracks.front(), {{0, 1}, {1, 1}});
    const auto sample = (*reader)->copyNextSample();
    return sample->image;
}

bool areEqual(const PixelBuffer& a, const PixelBuffer& b) {
    bool equal = a.width() == b.width() && a.height() == b.height();
    for (int y = 0; equal && y < a.height(); ++y) {
        equal = std::equal(a.row(y), a.row(y) + a.width() * PixelBuffer::kBytesPerPixel, b.row(y));
    }
    return equal;
}

/// A film of colour noise, in which every wrong place of a sample shows.
fs::path noiseFilm(const std::string& siting) {
    const fs::path file =
        generated(fmt::format("siting-{}.mkv", siting),
                  fmt::format("-f lavfi -i \"color=black:s=130x98:r=10:d=0.1,format=yuv420p,geq="
                              "lum='random(0)*255':cb='random(1)*255':cr='random(2)*255'\" {} "
                              "-chroma_sample_location {}",
                              kLossless, siting));
    EXPECT_EQ(probe(file, "stream=chroma_location"), siting);
    return file;
}

/// The samples of a file's first picture, plane after plane, as ffmpeg decodes them.
std::string samplesOf(const fs::path& file) {
    const fs::path raw = freshPath("samples.yuv");
    EXPECT_TRUE(run(fmt::format("ffmpeg -nostdin -v error -y -i '{}' -frames:v 1 -f rawvideo '{}'",
                                file.string(), raw.string())));
    std::ifstream bytes(raw, std::ios::binary);
    return {std::istreambuf_iterator<char>(bytes), {}};
}

PixelBuffer converted(const std::string& samples, int width, int height, ChromaSiting siting) {
    const auto* first = reinterpret_cast<const std::uint8_t*>(samples.data());
    ConstYuvView view;
    view.width = width;
    view.height = height;
    view.y = {first, width};
    view.u = {view.y.row(height), view.chromaWidth()};
    view.v = {view.u.row(view.chromaHeight()), view.chromaWidth()};
    view.encoding = {YuvMatrix::bt601, YuvRange::limited, siting};
    PixelBuffer picture(width, height);
    YuvConverter().toBgra(view, picture);
    return picture;
}

TEST(FilmSiting, isTheTagged) {
    for (const auto& [name, siting] :
         {std::pair{"left", ChromaSiting::left}, std::pair{"center", ChromaSiting::centre},
          std::pair{"topleft", ChromaSiting::topLeft}}) {
        const fs::path file = noiseFilm(name);
        const PixelBufferPtr read = readPicture(file);
        EXPECT_TRUE(areEqual(*read, converted(samplesOf(file), 130, 98, siting))) << name;
        EXPECT_FALSE(areEqual(*read, *readByScaler(file))) << name;
    }
}

TEST(FilmSiting, isLeftToTheScalerWhereItIsOdd) {
    for (const char* name : {"top", "bottomleft"}) {
        const fs::path file = noiseFilm(name);
        EXPECT_TRUE(areEqual(*readPicture(file), *readByScaler(file))) << name;
    }
}

/// Decoded and converted by the ffmpeg program: RGB, three bytes a pixel.
std::string decodedByFfmpeg(const fs::path& file) {
    const fs::path raw = freshPath("decoded.rgb");
    EXPECT_TRUE(run(fmt::format("ffmpeg -nostdin -v error -y -i '{}' -frames:v 1 -vf "
                                "scale=flags=bicubic+accurate_rnd+full_chroma_int "
                                "-pix_fmt rgb24 -f rawvideo '{}'",
                                file.string(), raw.string())));
    std::ifstream bytes(raw, std::ios::binary);
    return {std::istreambuf_iterator<char>(bytes), {}};
}

PixelBufferPtr drawnBars() {
    auto picture = std::make_shared<PixelBuffer>(kBarsWidth, kBarsHeight);
    for (int y = 0; y < kBarsHeight; ++y) {
        for (int x = 0; x < kBarsWidth; ++x) {
            const Rgb& bar = kBars[static_cast<std::size_t>(x / kBarWidth)];
            for (std::size_t k = 0; k < 3; ++k) {
                picture->row(y)[4 * x + 2 - static_cast<int>(k)] =
                    static_cast<std::uint8_t>(bar[k]);
            }
            picture->row(y)[4 * x + 3] = 255;
        }
    }
    return picture;
}

FrameHandle encodedFrame(AVPixelFormat format, const PixelBuffer& picture) {
    FrameHandle frame(av_frame_alloc());
    frame->format = format;
    frame->width = picture.width();
    frame->height = picture.height();
    EXPECT_EQ(av_frame_get_buffer(frame.get(), 0), 0);
    EXPECT_TRUE(PictureEncoding(std::make_shared<YuvConverter>()).convert(picture, *frame));
    return frame;
}

/// What hardware encoders take.
TEST(PictureEncoding, nv12HoldsTheSamplesOfThePlanarPicture) {
    const PixelBufferPtr bars = drawnBars();
    const FrameHandle planar = encodedFrame(AV_PIX_FMT_YUV420P, *bars);
    const FrameHandle pairs = encodedFrame(AV_PIX_FMT_NV12, *bars);
    const auto sample = [](const AVFrame& frame, int plane, int x, int y) {
        return static_cast<int>(frame.data[plane][frame.linesize[plane] * y + x]);
    };
    for (int y = 0; y < kBarsHeight; ++y) {
        for (int x = 0; x < kBarsWidth; ++x) {
            ASSERT_EQ(sample(*pairs, 0, x, y), sample(*planar, 0, x, y));
            ASSERT_EQ(sample(*pairs, 1, x / 2 * 2, y / 2), sample(*planar, 1, x / 2, y / 2));
            ASSERT_EQ(sample(*pairs, 1, x / 2 * 2 + 1, y / 2), sample(*planar, 2, x / 2, y / 2));
        }
    }
    EXPECT_EQ(sample(*pairs, 0, 0, 0), 235);
    EXPECT_EQ(sample(*pairs, 0, kBarWidth + 9, 0), 16);
    EXPECT_EQ(sample(*pairs, 1, 4 * kBarWidth + 10, 5), 240); // blue
    EXPECT_EQ(sample(*pairs, 1, 2 * kBarWidth + 11, 5), 240); // red
}

class WrittenColour : public ::testing::TestWithParam<VideoCodec> {};

TEST_P(WrittenColour, isReadByOthersAsItWasMeant) {
    const fs::path file = freshPath("written.mov");
    FfmpegMediaLibrary library = mediaLibrary();
    auto writer = library.makeWriter(file, FileType::quickTimeMovie).value();
    VideoWriterInput* input =
        writer->addVideoInput({GetParam(), kBarsWidth, kBarsHeight, 20'000'000, 30, true}).value();
    ASSERT_TRUE(writer->startWriting());
    writer->startSession({0, 1});
    ASSERT_TRUE(input->append(drawnBars(), {0, 30}));
    ASSERT_TRUE(input->append(drawnBars(), {1, 30}));
    ASSERT_TRUE(writer->finishWriting());
    const std::string pixels = decodedByFfmpeg(file);
    ASSERT_EQ(pixels.size(), std::size_t{kBarsWidth} * kBarsHeight * 3);
    for (std::size_t i = 0; i < kBars.size(); ++i) {
        const std::size_t x = i * kBarWidth + kBarWidth / 2;
        for (const std::size_t y : {2U, 31U, 61U}) {
            for (std::size_t k = 0; k < 3; ++k) {
                const int found = static_cast<std::uint8_t>(pixels[(y * kBarsWidth + x) * 3 + k]);
                EXPECT_NEAR(found, kBars[i][k], 3) << "bar " << i << ", channel " << k;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Codecs, WrittenColour,
                         ::testing::Values(VideoCodec::hevc, VideoCodec::h264));

} // namespace

} // namespace tavi
