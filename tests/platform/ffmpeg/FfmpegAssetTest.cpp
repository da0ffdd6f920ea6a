#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "platform/ffmpeg/MovieHeader.h"
#include "platform/ffmpeg/TestMedia.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <random>

namespace tavi {

namespace {

using namespace tavi::testing;
namespace fs = std::filesystem;
using Kind = MediaError::Kind;

fs::path sample() {
    return generated("sample.mov", numberedSource(30, 1) + " -c:v libx264 -crf 10");
}

MediaError errorOf(const fs::path& path) {
    const auto asset = mediaLibrary().openAsset(path);
    EXPECT_FALSE(asset) << path;
    return asset ? MediaError{} : asset.error();
}

void writeText(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

MovieHeader parse(const std::vector<std::uint8_t>& bytes) {
    return parseMovieHeader(
        [&](std::uint64_t offset, std::span<std::uint8_t> into) {
            EXPECT_LE(into.size(), bytes.size());
            if (offset + into.size() > bytes.size()) {
                return false;
            }
            std::memcpy(into.data(), bytes.data() + offset, into.size());
            return true;
        },
        bytes.size());
}

std::vector<std::uint8_t> box(const char* type, const std::vector<std::uint8_t>& content) {
    const auto size = static_cast<std::uint32_t>(content.size() + 8);
    std::vector<std::uint8_t> bytes{
        static_cast<std::uint8_t>(size >> 24), static_cast<std::uint8_t>(size >> 16),
        static_cast<std::uint8_t>(size >> 8), static_cast<std::uint8_t>(size)};
    bytes.insert(bytes.end(), type, type + 4);
    bytes.insert(bytes.end(), content.begin(), content.end());
    return bytes;
}

std::vector<std::uint8_t> mvhd(int version, std::uint32_t timescale, std::uint64_t duration) {
    std::vector<std::uint8_t> bytes{static_cast<std::uint8_t>(version), 0, 0, 0};
    bytes.resize(version == 1 ? 20 : 12);
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<std::uint8_t>(timescale >> shift));
    }
    for (int shift = version == 1 ? 56 : 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<std::uint8_t>(duration >> shift));
    }
    bytes.resize(bytes.size() + 80);
    return box("mvhd", bytes);
}

} // namespace

TEST(FfmpegAsset, tellsDurationAndTracks) {
    const fs::path file = generated(
        "sound.mov", numberedSource(30, 2) + " -f lavfi -i sine=440:d=2 -c:v libx264 -c:a aac");
    const auto asset = mediaLibrary().openAsset(file);
    ASSERT_TRUE(asset);
    ASSERT_EQ(asset->videoTracks.size(), 1U);
    EXPECT_EQ(asset->videoTracks[0].naturalSize, (Size{64, 48}));
    ASSERT_EQ(asset->audioTracks.size(), 1U);
    EXPECT_EQ(asset->audioTracks[0].sampleRate, 44100);
    EXPECT_EQ(asset->audioTracks[0].channels, 1);
    EXPECT_NEAR(asset->duration.seconds(), 2, 0.03);
}

TEST(FfmpegAsset, durationIsTheMovieHeadersOwnFraction) {
    // 100 pictures at 30000/1001: no number of microseconds.
    const fs::path file =
        generated("ntsc.mp4", "-f lavfi -i color=red:s=64x48:r=30000/1001 -frames:v 100 "
                              "-c:v libx264 -movie_timescale 30000");
    const auto asset = mediaLibrary().openAsset(file);
    ASSERT_TRUE(asset);
    EXPECT_EQ(asset->duration.timescale, 30000);
    EXPECT_EQ(asset->duration.value, 100100);
}

TEST(FfmpegAsset, fragmentedFileLastsAsLongAsItsTracks) {
    const fs::path file =
        generated("fragments.mov", numberedSource(30, 2) + " -c:v libx264 -g 15 -bf 0 "
                                                           "-movflags frag_keyframe+empty_moov");
    const auto asset = mediaLibrary().openAsset(file);
    ASSERT_TRUE(asset);
    EXPECT_NEAR(asset->duration.seconds(), 2, 0.001);
}

TEST(FfmpegAsset, naturalSizeIsBeforeRotation) {
    const fs::path file = generated(
        "rotated.mov", fmt::format("-i '{}' -c copy -metadata:s:v:0 rotate=90", sample().string()));
    const auto asset = mediaLibrary().openAsset(file);
    ASSERT_TRUE(asset);
    EXPECT_EQ(asset->videoTracks[0].naturalSize, (Size{64, 48}));
}

TEST(FfmpegAsset, oddSizesAreKept) {
    const fs::path file =
        generated("odd.mov", numberedSource(30, 0.2, "641x359") + " -c:v libx264 -pix_fmt yuv444p");
    const auto asset = mediaLibrary().openAsset(file);
    ASSERT_TRUE(asset);
    EXPECT_EQ(asset->videoTracks[0].naturalSize, (Size{641, 359}));
}

TEST(FfmpegAsset, soundAloneHasNoVideoTrack) {
    const fs::path file = generated("sound.m4a", "-f lavfi -i sine=440:d=1 -c:a aac");
    const auto asset = mediaLibrary().openAsset(file);
    ASSERT_TRUE(asset);
    EXPECT_TRUE(asset->videoTracks.empty());
}

TEST(FfmpegAsset, opensPathsThatLookLikeAddresses) {
    const fs::path file = freshPath("http:--x.mov?a=%20 b");
    fs::copy_file(sample(), file);
    EXPECT_TRUE(mediaLibrary().openAsset(file));
}

TEST(FfmpegAsset, missingFileIsNotFound) {
    const MediaError error = errorOf(mediaFolder() / "missing.mov");
    EXPECT_EQ(error.kind, Kind::notFound);
    EXPECT_EQ(error.file, (mediaFolder() / "missing.mov").string());
    EXPECT_EQ(error.reason, "No such file or directory");
}

TEST(FfmpegAsset, folderIsNoMedia) {
    const MediaError error = errorOf(mediaFolder());
    EXPECT_EQ(error.kind, Kind::notMedia);
    EXPECT_EQ(error.reason, "it is a folder");
}

TEST(FfmpegAsset, emptyFileIsNoMedia) {
    const fs::path file = freshPath("empty.mov");
    writeText(file, "");
    EXPECT_EQ(errorOf(file).kind, Kind::notMedia);
    EXPECT_EQ(errorOf(file).reason, "it is empty");
}

TEST(FfmpegAsset, textIsNoMedia) {
    const fs::path file = freshPath("video.mov");
    writeText(file, "This is a letter, and no film.\n");
    EXPECT_EQ(errorOf(file).kind, Kind::notMedia);
}

TEST(FfmpegAsset, aPlaylistDoesNotOpenWhatItLists) {
    const fs::path file = freshPath("list.mov");
    writeText(file, "#EXTM3U\n#EXTINF:1,\n" + sample().string() + "\n#EXT-X-ENDLIST\n");
    EXPECT_EQ(errorOf(file).kind, Kind::notMedia);
    writeText(file, "ffconcat version 1.0\nfile '" + sample().string() + "'\n");
    EXPECT_EQ(errorOf(file).kind, Kind::notMedia);
}

TEST(FfmpegAsset, fileWithoutIndexSaysSo) {
    const fs::path file = freshPath("truncated.mov");
    fs::copy_file(sample(), file); // Its index stands at its end.
    fs::resize_file(file, fs::file_size(file) / 2);
    const MediaError error = errorOf(file);
    EXPECT_EQ(error.kind, Kind::notMedia);
    EXPECT_EQ(error.reason, "it has no index: it was cut short or is still being written");
}

TEST(FfmpegAsset, everyCutOfAFileOpensOrIsRefused) {
    const fs::path whole =
        generated("cutme.mov", numberedSource(30, 0.2) + " -c:v libx264 -movflags +faststart");
    const fs::path file = mediaFolder() / "cut-anywhere.mov";
    for (std::uintmax_t size = 1; size < fs::file_size(whole); size += 37) {
        fs::copy_file(whole, file, fs::copy_options::overwrite_existing);
        fs::resize_file(file, size);
        const auto asset = mediaLibrary().openAsset(file);
        if (!asset) {
            EXPECT_EQ(asset.error().kind, Kind::notMedia);
        }
    }
}

TEST(MovieHeader, readsBothVersions) {
    std::vector<std::uint8_t> bytes = box("ftyp", {'q', 't', ' ', ' '});
    const auto moov = box("moov", mvhd(0, 90000, 123456));
    bytes.insert(bytes.end(), moov.begin(), moov.end());
    EXPECT_EQ(parse(bytes).duration, (MediaTime{123456, 90000}));
    EXPECT_EQ(parse(bytes).duration->timescale, 90000);
    const auto longer = box("moov", mvhd(1, 600, 0x1'0000'0000));
    EXPECT_EQ(parse(longer).duration, (MediaTime{0x1'0000'0000, 600}));
}

TEST(MovieHeader, unknownAndZeroCountAsAbsent) {
    EXPECT_FALSE(parse(box("moov", mvhd(0, 600, 0))).duration);
    EXPECT_FALSE(parse(box("moov", mvhd(0, 600, 0xffffffff))).duration);
    EXPECT_FALSE(parse(box("moov", mvhd(1, 600, ~std::uint64_t{0}))).duration);
    EXPECT_FALSE(parse(box("moov", mvhd(0, 0, 600))).duration);
    EXPECT_FALSE(parse(box("moov", mvhd(0, 0x80000000, 600))).duration);
    EXPECT_FALSE(parse(box("moov", {})).duration);
    EXPECT_TRUE(parse(box("moov", {})).hasIndex);
}

TEST(MovieHeader, endsOnBoxesThatLeadNowhere) {
    EXPECT_FALSE(parse({}).isMovie);
    EXPECT_FALSE(parse({0, 0, 0, 1, 'f', 't', 'y', 'p'}).isMovie);
    std::vector<std::uint8_t> zeroSized = box("ftyp", {});
    zeroSized.insert(zeroSized.end(), {0, 0, 0, 4, 'f', 'r', 'e', 'e'});
    EXPECT_FALSE(parse(zeroSized).hasIndex);
    std::vector<std::uint8_t> huge = box("ftyp", {});
    huge.insert(huge.end(),
                {0, 0, 0, 1, 'f', 'r', 'e', 'e', 255, 255, 255, 255, 255, 255, 255, 255});
    EXPECT_FALSE(parse(huge).hasIndex);
}

TEST(MovieHeader, survivesRandomDamage) {
    std::vector<std::uint8_t> whole = box("ftyp", {'q', 't', ' ', ' '});
    const auto moov = box("moov", mvhd(1, 90000, 123456));
    whole.insert(whole.end(), moov.begin(), moov.end());
    std::mt19937 random(7);
    for (int i = 0; i < 20000; ++i) {
        std::vector<std::uint8_t> bytes = whole;
        for (int k = 0; k < 4; ++k) {
            bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
        }
        bytes.resize(random() % (bytes.size() + 1));
        const MovieHeader header = parse(bytes);
        if (header.duration) {
            EXPECT_GT(header.duration->value, 0);
            EXPECT_GT(header.duration->timescale, 0);
        }
    }
}

} // namespace tavi
