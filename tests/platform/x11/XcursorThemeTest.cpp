#include "platform/x11/XcursorTheme.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

void append(std::string& bytes, std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(value >> shift);
    }
}

/// A cursor file with one square picture per nominal size, filled with the size.
std::string cursorFile(const std::vector<std::uint32_t>& sizes) {
    std::string bytes = "Xcur";
    append(bytes, 16);
    append(bytes, 0x10000);
    append(bytes, static_cast<std::uint32_t>(sizes.size()));
    std::uint32_t position = 16 + 12 * static_cast<std::uint32_t>(sizes.size());
    for (const auto size : sizes) {
        append(bytes, 0xFFFD0002);
        append(bytes, size);
        append(bytes, position);
        position += 36 + size * size * 4;
    }
    for (const auto size : sizes) {
        for (const std::uint32_t field :
             {36U, 0xFFFD0002U, size, 1U, size, size, size / 4, size / 2, 0U}) {
            append(bytes, field);
        }
        for (std::uint32_t i = 0; i < size * size; ++i) {
            append(bytes, 0xFF000000U + size);
        }
    }
    return bytes;
}

std::optional<XcursorImage> read(const std::string& file, int size) {
    return readXcursor({reinterpret_cast<const std::uint8_t*>(file.data()), file.size()}, size);
}

TEST(XcursorFile, givesTheNearestSize) {
    const std::string file = cursorFile({16, 24, 48});
    const auto nearest = [&file](int size) { return read(file, size)->image.width(); };
    EXPECT_EQ(nearest(1), 16);
    EXPECT_EQ(nearest(24), 24);
    EXPECT_EQ(nearest(30), 24);
    EXPECT_EQ(nearest(400), 48);
    const auto cursor = read(file, 24);
    EXPECT_EQ(cursor->hotSpotX, 6);
    EXPECT_EQ(cursor->hotSpotY, 12);
    EXPECT_EQ(cursor->image.row(23)[23 * 4], 24);
    EXPECT_EQ(cursor->image.row(23)[23 * 4 + 3], 255);
}

TEST(XcursorFile, cutShortAnywhereGivesNothing) {
    const std::string file = cursorFile({8});
    ASSERT_TRUE(read(file, 8));
    for (std::size_t length = 0; length < file.size(); ++length) {
        EXPECT_FALSE(read(file.substr(0, length), 8)) << length;
    }
    EXPECT_FALSE(read("P" + file.substr(1), 8));
}

TEST(XcursorTheme, arrowComesFromTheThemeOrFromThoseItInherits) {
    const test::TemporaryFolder folder;
    const std::vector<std::filesystem::path> folders{folder / "a", folder / "b"};
    EXPECT_FALSE(themeArrow({"mine", 24}, folders));
    test::writeFile(folder / "a/mine/index.theme", "[Icon Theme]\nInherits = other , ring\n");
    test::writeFile(folder / "a/ring/index.theme", "[Icon Theme]\nInherits=mine\n");
    EXPECT_FALSE(themeArrow({"mine", 24}, folders));
    test::writeFile(folder / "b/other/cursors/arrow", cursorFile({12}));
    EXPECT_EQ(themeArrow({"mine", 24}, folders)->image.width(), 12);
    test::writeFile(folder / "b/mine/cursors/left_ptr", cursorFile({32}));
    EXPECT_EQ(themeArrow({"mine", 24}, folders)->image.width(), 32);
}

} // namespace
} // namespace tavi
