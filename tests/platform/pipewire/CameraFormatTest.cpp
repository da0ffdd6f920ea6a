#include "platform/pipewire/CameraFormat.h"

#include <gtest/gtest.h>

#include <array>
#include <spa/param/format.h>
#include <spa/param/param.h>
#include <spa/pod/builder.h>

namespace tavi {
namespace {

CameraFormat format(spa_video_format kind, std::uint32_t width, std::uint32_t height,
                    std::uint32_t rate) {
    return {kind, {width, height}, {rate, 1}};
}

struct BestCase {
    const char* what;
    std::vector<CameraFormat> offered;
    std::size_t best;
};

class BestCameraFormat : public testing::TestWithParam<BestCase> {};

TEST_P(BestCameraFormat, isTheSmallPictureThatMovesWell) {
    const auto& [what, offered, best] = GetParam();
    const auto chosen = bestCameraFormat(offered);
    ASSERT_TRUE(chosen);
    EXPECT_EQ(chosen->format, offered[best].format) << what;
    EXPECT_EQ(chosen->size.width, offered[best].size.width) << what;
    EXPECT_EQ(chosen->rate.num, offered[best].rate.num) << what;
}

INSTANTIATE_TEST_SUITE_P(Cameras, BestCameraFormat,
                         testing::Values(BestCase{"nearest size",
                                                  {format(SPA_VIDEO_FORMAT_YUY2, 1280, 720, 30),
                                                   format(SPA_VIDEO_FORMAT_YUY2, 640, 360, 30),
                                                   format(SPA_VIDEO_FORMAT_YUY2, 160, 120, 30)},
                                                  1},
                                         BestCase{"fast enough before near",
                                                  {format(SPA_VIDEO_FORMAT_YUY2, 640, 480, 15),
                                                   format(SPA_VIDEO_FORMAT_YUY2, 320, 240, 30)},
                                                  1},
                                         BestCase{"the fastest of the slow",
                                                  {format(SPA_VIDEO_FORMAT_YUY2, 640, 480, 10),
                                                   format(SPA_VIDEO_FORMAT_YUY2, 1280, 720, 15)},
                                                  1},
                                         BestCase{"uncompressed before compressed",
                                                  {format(SPA_VIDEO_FORMAT_ENCODED, 640, 480, 30),
                                                   format(SPA_VIDEO_FORMAT_YUY2, 640, 480, 30)},
                                                  1},
                                         BestCase{"no more pictures than wanted",
                                                  {format(SPA_VIDEO_FORMAT_YUY2, 640, 480, 60),
                                                   format(SPA_VIDEO_FORMAT_YUY2, 640, 480, 30)},
                                                  1},
                                         BestCase{
                                             "29.97 is enough",
                                             {{SPA_VIDEO_FORMAT_YUY2, {640, 480}, {30000, 1001}},
                                              format(SPA_VIDEO_FORMAT_YUY2, 320, 240, 60)},
                                             0},
                                         BestCase{"any rate",
                                                  {{SPA_VIDEO_FORMAT_YUY2, {640, 480}, {0, 1}},
                                                   format(SPA_VIDEO_FORMAT_YUY2, 320, 240, 60)},
                                                  0}));

TEST(CameraFormat, nothingOfferedGivesNothing) {
    EXPECT_FALSE(bestCameraFormat({}));
}

/// A parameter in memory of its own.
class Parameter {
public:
    Parameter() {
        spa_pod_builder_init(&m_builder, m_memory.data(), m_memory.size());
        spa_pod_builder_push_object(&m_builder, &m_frame, SPA_TYPE_OBJECT_Format,
                                    SPA_PARAM_EnumFormat);
    }
    template<class... Values>
    Parameter& add(Values... values) {
        spa_pod_builder_add(&m_builder, values..., 0);
        return *this;
    }
    std::vector<CameraFormat> formats() {
        return cameraFormats(
            *static_cast<const spa_pod*>(spa_pod_builder_pop(&m_builder, &m_frame)));
    }

private:
    std::array<std::uint8_t, 2048> m_memory{};
    spa_pod_builder m_builder{};
    spa_pod_frame m_frame{};
};

TEST(CameraFormat, listsOfFormatsAndSizesAreMultiplied) {
    const spa_rectangle small{320, 240};
    const spa_rectangle large{1280, 720};
    const spa_fraction slow{15, 1};
    const spa_fraction fast{30, 1};
    const auto found =
        Parameter()
            .add(SPA_FORMAT_mediaType, SPA_POD_Id(SPA_MEDIA_TYPE_video))
            .add(SPA_FORMAT_mediaSubtype, SPA_POD_Id(SPA_MEDIA_SUBTYPE_raw))
            .add(SPA_FORMAT_VIDEO_format,
                 SPA_POD_CHOICE_ENUM_Id(4, SPA_VIDEO_FORMAT_YUY2, SPA_VIDEO_FORMAT_YUY2,
                                        SPA_VIDEO_FORMAT_GRAY8, SPA_VIDEO_FORMAT_NV12))
            .add(SPA_FORMAT_VIDEO_size, SPA_POD_CHOICE_ENUM_Rectangle(3, &small, &small, &large))
            .add(SPA_FORMAT_VIDEO_framerate, SPA_POD_CHOICE_ENUM_Fraction(3, &slow, &slow, &fast))
            .formats();
    ASSERT_EQ(found.size(), 4U) << "grey pictures are not read";
    for (const auto& one : found) {
        EXPECT_EQ(one.rate.num, 30U);
    }
    EXPECT_EQ(found[1].size.width, 1280U);
    EXPECT_EQ(found[2].format, SPA_VIDEO_FORMAT_NV12);
}

TEST(CameraFormat, rangesGiveTheValueNearestToTheWanted) {
    const spa_rectangle usual{1920, 1080};
    const spa_rectangle low{800, 100};
    const spa_rectangle high{4000, 3000};
    const spa_fraction rate{25, 1};
    const spa_fraction none{0, 1};
    const spa_fraction most{60, 1};
    const auto found =
        Parameter()
            .add(SPA_FORMAT_mediaType, SPA_POD_Id(SPA_MEDIA_TYPE_video))
            .add(SPA_FORMAT_mediaSubtype, SPA_POD_Id(SPA_MEDIA_SUBTYPE_mjpg))
            .add(SPA_FORMAT_VIDEO_size, SPA_POD_CHOICE_RANGE_Rectangle(&usual, &low, &high))
            .add(SPA_FORMAT_VIDEO_framerate, SPA_POD_CHOICE_RANGE_Fraction(&rate, &none, &most))
            .formats();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].format, SPA_VIDEO_FORMAT_ENCODED);
    EXPECT_EQ(found[0].size.width, 800U);
    EXPECT_EQ(found[0].size.height, 480U);
    EXPECT_EQ(found[0].rate.num, 30U);
}

TEST(CameraFormat, soundAndBareTypesAreNone) {
    EXPECT_TRUE(Parameter()
                    .add(SPA_FORMAT_mediaType, SPA_POD_Id(SPA_MEDIA_TYPE_audio))
                    .add(SPA_FORMAT_mediaSubtype, SPA_POD_Id(SPA_MEDIA_SUBTYPE_raw))
                    .formats()
                    .empty());
    EXPECT_TRUE(Parameter()
                    .add(SPA_FORMAT_mediaType, SPA_POD_Id(SPA_MEDIA_TYPE_video))
                    .add(SPA_FORMAT_mediaSubtype, SPA_POD_Id(SPA_MEDIA_SUBTYPE_raw))
                    .formats()
                    .empty());
}

} // namespace
} // namespace tavi
