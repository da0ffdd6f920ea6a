#include "platform/ffmpeg/HevcRows.h"

#include "platform/ffmpeg/FfmpegAsset.h"
#include "platform/ffmpeg/FfmpegHandles.h"
#include "platform/ffmpeg/TestMedia.h"

#include <gtest/gtest.h>

#include <random>

namespace tavi {
namespace {

std::vector<std::uint8_t> configurationOf(const std::string& name, const std::string& parameters) {
    const auto path = testing::generated(
        name, testing::numberedSource(30, 0.2, "256x256") +
                  " -c:v libx265 -x265-params log-level=none:" + parameters + " -tag:v hvc1");
    const auto input = openInput(path).value();
    const AVCodecParameters& codec = *input->streams[0]->codecpar;
    return {codec.extradata, codec.extradata + codec.extradata_size};
}

TEST(HevcRows, areToldByThePictureParameterSet) {
    EXPECT_TRUE(hasParallelRows(configurationOf("rows.mov", "wpp=1:pools=2")));
    EXPECT_FALSE(hasParallelRows(configurationOf("norows.mov", "wpp=0:pools=none")));
    EXPECT_TRUE(hasParallelRows(
        configurationOf("offsets.mov", "wpp=1:pools=2:cbqpoffs=-3:crqpoffs=5:aq-mode=2:tskip=1")));
}

TEST(HevcRows, aBrokenRecordHasNone) {
    const auto whole = configurationOf("rows.mov", "wpp=1:pools=2");
    EXPECT_FALSE(hasParallelRows({}));
    for (std::size_t size = 0; size < whole.size() / 2; ++size) {
        EXPECT_FALSE(hasParallelRows(std::span(whole).first(std::min<std::size_t>(size, 60))));
    }
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i) {
        auto damaged = whole;
        damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
        damaged.resize(random() % (damaged.size() + 1));
        (void)hasParallelRows(damaged); // says something, and soon
    }
}

} // namespace
} // namespace tavi
