#include "ui/Icon.h"

#include "ui/IconTable.h"

#include <QFile>
#include <QImage>
#include <gtest/gtest.h>

#include <array>
#include <set>

namespace tavi {
namespace {

// Every symbol that a screen of the program shows.
constexpr auto kUsed = std::to_array<const char*>({"gearshape",
                                                   "record.circle",
                                                   "trash",
                                                   "xmark",
                                                   "film.stack",
                                                   "film",
                                                   "checkmark",
                                                   "pencil",
                                                   "folder",
                                                   "bell.fill",
                                                   "chevron.left",
                                                   "display",
                                                   "macwindow",
                                                   "mic.fill",
                                                   "mic.slash.fill",
                                                   "chevron.up",
                                                   "video.fill",
                                                   "video.slash.fill",
                                                   "camera.fill",
                                                   "keyboard",
                                                   "backward.frame.fill",
                                                   "play.fill",
                                                   "pause.fill",
                                                   "forward.frame.fill",
                                                   "scissors",
                                                   "arrow.uturn.backward",
                                                   "plus",
                                                   "square.and.arrow.up",
                                                   "aqi.medium",
                                                   "paintbrush.fill",
                                                   "link",
                                                   "sparkle.magnifyingglass",
                                                   "cursorarrow.rays",
                                                   "cursorarrow",
                                                   "circle.fill",
                                                   "video.slash",
                                                   "wand.and.stars",
                                                   "diamond",
                                                   "chevron.right",
                                                   "chevron.down",
                                                   "xmark.circle.fill",
                                                   "checkmark.circle.fill"});

int paintedPixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            count += qAlpha(image.pixel(x, y)) > 127;
        }
    return count;
}

TEST(IconTable, hasADrawingForEverySymbolOfTheProgram) {
    for (const char* symbol : kUsed) {
        EXPECT_NE(findIcon(symbol), nullptr) << symbol;
    }
}

TEST(IconTable, hasEveryDrawingBuiltIn) {
    for (const IconEntry& icon : iconTable()) {
        EXPECT_TRUE(QFile::exists(QStringLiteral(":/tavi/icons/%1.svg")
                                      .arg(QString::fromStdString(std::string(icon.file)))))
            << icon.file;
    }
}

TEST(IconTable, knowsNoOtherSymbol) {
    EXPECT_EQ(findIcon(""), nullptr);
    EXPECT_EQ(findIcon("trash.fill.nonsense"), nullptr);
    EXPECT_TRUE(iconImage(QStringLiteral("nonsense"), 16, Qt::white).isNull());
}

TEST(IconTable, drawsEverySymbolDifferently) {
    std::set<std::string> seen;
    for (const IconEntry& icon : iconTable()) {
        const QImage image =
            iconImage(QString::fromStdString(std::string(icon.symbol)), 32, Qt::white);
        EXPECT_GT(paintedPixels(image), 30) << icon.symbol;
        seen.emplace(reinterpret_cast<const char*>(image.constBits()), size_t(image.sizeInBytes()));
    }
    EXPECT_EQ(seen.size(), iconTable().size());
}

TEST(Icon, isPaintedInItsColourOnly) {
    const QColor accent(240, 181, 41);
    const QImage image = iconImage(QStringLiteral("circle.fill"), 24, accent);
    EXPECT_EQ(QColor(image.pixel(12, 12)), accent);
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
}

TEST(Icon, pointsTheArrowToTheUpperLeft) {
    const QImage image = iconImage(QStringLiteral("cursorarrow"), 32, Qt::white);
    EXPECT_GT(paintedPixels(image.copy(0, 0, 16, 16)), paintedPixels(image.copy(16, 0, 16, 16)));
    EXPECT_GT(paintedPixels(image.copy(0, 0, 16, 16)), paintedPixels(image.copy(0, 16, 16, 16)));
}

} // namespace
} // namespace tavi
