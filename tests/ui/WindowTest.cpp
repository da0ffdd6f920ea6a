#include "TavlinWindow.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tavi::test {
namespace {

const QColor kAccent(240, 181, 41);
const QColor kFilm(200, 30, 30);
const QColor kRaised(37, 37, 40);

// Places in the window, from its upper left corner; the sizes are those of the screens.
constexpr int kHeader = 44;
constexpr int kSpace = 20;
constexpr int kCardPitchX = 364; ///< In a window 1120 wide, three in a row.
constexpr int kCardPitchY = 248;

QPoint cardCorner(int index) {
    return {kSpace + kCardPitchX * (index % 3), kHeader + kSpace + kCardPitchY * (index / 3)};
}

QPoint cardMiddle(int index) {
    return cardCorner(index) + QPoint(175, 90);
}

/// Inside the badge of a selected card, beside its tick.
QPoint badge(int index) {
    return cardCorner(index) + QPoint(12, 19);
}

/// The program on a desktop of its own, with a library of three takes.
class TavlinWindowTest : public testing::Test {
protected:
    void SetUp() override {
        m_window.addTake("Newest", 3);
        m_window.addTake("Middle", 2);
        m_window.addTake("Oldest", 1);
        m_window.start();
        ASSERT_TRUE(isHome());
    }

    bool has(QPoint place, const QColor& colour) {
        return m_window.eventually([&] { return m_window.shows(place, colour); });
    }
    bool hasNot(QPoint place, const QColor& colour) {
        return m_window.eventually([&] { return !m_window.shows(place, colour); });
    }

    /// A place of the button "New Recording".
    QPoint newRecording() { return {m_window.size().width() - kSpace - 6, kHeader / 2}; }
    bool isHome() { return has(newRecording(), kAccent); }

    /// The gear stands a box and two gaps left of the button.
    QPoint gear() {
        QPoint place = newRecording();
        const QImage picture = m_window.picture();
        while (place.x() > 0 && picture.pixelColor(place) == kAccent) {
            --place.rx();
        }
        // The edge's letters interrupt the colour; its upper edge doesn't.
        place.ry() = kHeader / 2 - 11;
        while (place.x() > 0 && picture.pixelColor(place) == kAccent) {
            --place.rx();
        }
        return {place.x() - 28, kHeader / 2};
    }

    /// Does what opens a dialog, and waits until it stands there.
    void openDialog(const std::string& key) {
        m_window.press(key);
        EXPECT_TRUE(hasNot(newRecording(), kAccent)); // under the dialog's layer
        m_window.waitUntilStill();
    }

    bool gone(const std::string& name) {
        return m_window.eventually([&] { return !exists(m_window.library() / name); });
    }
    bool there(const std::string& name) {
        return m_window.eventually([&] { return exists(m_window.library() / name); });
    }

    TavlinWindow m_window;
};

TEST_F(TavlinWindowTest, showsTheFirstPictureOfEveryTake) {
    for (int card = 0; card < 3; ++card) {
        EXPECT_TRUE(has(cardMiddle(card), kFilm)) << card;
    }
}

TEST_F(TavlinWindowTest, opensAndClosesTheSettingsByPointer) {
    m_window.click(gear());
    EXPECT_TRUE(hasNot(newRecording(), kAccent)); // under the layer
    m_window.click({30, m_window.size().height() - 30});
    EXPECT_TRUE(isHome());
}

TEST_F(TavlinWindowTest, opensAndClosesTheSettingsByKeys) {
    m_window.press("ctrl+comma");
    EXPECT_TRUE(hasNot(newRecording(), kAccent));
    m_window.press("Escape");
    EXPECT_TRUE(isHome());
}

TEST_F(TavlinWindowTest, renamesATakeByItsMenu) {
    m_window.click(cardMiddle(1), 3);
    const QPoint firstRow = cardMiddle(1) + QPoint(150, 19);
    ASSERT_TRUE(has(firstRow, kRaised));
    m_window.click(firstRow);
    ASSERT_TRUE(hasNot(newRecording(), kAccent));
    m_window.waitUntilStill();
    m_window.type("A better name");
    m_window.press("Return");
    EXPECT_TRUE(there("A better name"));
    EXPECT_TRUE(gone("Middle"));
    EXPECT_TRUE(isHome());
}

TEST_F(TavlinWindowTest, refusesABadNameAndAsksAgain) {
    m_window.press("Right", "Left");
    openDialog("F2");
    m_window.type(".hidden");
    m_window.press("Return"); // the alert says why
    m_window.waitUntilStill();
    m_window.press("Return"); // the dialog returns with what was typed
    m_window.waitUntilStill();
    EXPECT_FALSE(exists(m_window.library() / ".hidden"));
    m_window.press("Home", "Delete", "Return");
    EXPECT_TRUE(there("hidden"));
    EXPECT_TRUE(gone("Newest"));
}

TEST_F(TavlinWindowTest, deletesSelectedTakesByPointer) {
    m_window.click(cardMiddle(0), 1, "ctrl");
    ASSERT_TRUE(has(badge(0), kAccent));
    m_window.click(cardMiddle(2)); // a selection turns clicks into selection clicks
    ASSERT_TRUE(has(badge(2), kAccent));
    openDialog("Delete");
    m_window.press("Tab", "Return"); // past the answer that keeps them
    EXPECT_TRUE(gone("Newest"));
    EXPECT_TRUE(gone("Oldest"));
    EXPECT_TRUE(exists(m_window.library() / "Middle" / "video.mov"));
    EXPECT_TRUE(isHome());
}

TEST_F(TavlinWindowTest, keepsTakesWhenTheDeleteIsCancelled) {
    m_window.press("ctrl+a");
    ASSERT_TRUE(has(badge(0), kAccent));
    ASSERT_TRUE(has(badge(2), kAccent));
    for (const char* refusal : {"Escape", "Return"}) {
        openDialog("Delete");
        m_window.press(refusal);
        m_window.waitUntilStill();
        EXPECT_TRUE(has(badge(0), kAccent)) << refusal;
    }
    m_window.press("Escape");
    EXPECT_TRUE(hasNot(badge(0), kAccent));
    EXPECT_TRUE(isHome());
    for (const char* name : {"Newest", "Middle", "Oldest"}) {
        EXPECT_TRUE(exists(m_window.library() / name / "video.mov"));
    }
}

TEST_F(TavlinWindowTest, isUsedByTheKeyboardAlone) {
    m_window.press("Right", "space"); // selects the second take
    ASSERT_TRUE(has(badge(1), kAccent));
    openDialog("Delete");
    m_window.press("Tab", "Return");
    ASSERT_TRUE(gone("Middle"));
    ASSERT_TRUE(isHome());
    m_window.press("Home", "Return"); // opens the first take
    ASSERT_TRUE(hasNot(newRecording(), kAccent));
    m_window.waitUntilStill();
    m_window.press("Tab", "Return"); // the way back comes first
    EXPECT_TRUE(isHome());
}

TEST_F(TavlinWindowTest, opensATakeByAClickAndComesBack) {
    m_window.click(cardMiddle(2));
    ASSERT_TRUE(hasNot(newRecording(), kAccent));
    m_window.waitUntilStill();
    m_window.click({40, kHeader / 2});
    EXPECT_TRUE(isHome());
}

TEST_F(TavlinWindowTest, tellsOfATakeThatIsGoneFromTheDiskAndStaysInTheLibrary) {
    std::filesystem::remove_all(m_window.library() / "Middle");
    m_window.click(cardMiddle(1));
    ASSERT_TRUE(hasNot(newRecording(), kAccent)); // under the message
    m_window.waitUntilStill();
    m_window.press("Return");
    EXPECT_TRUE(isHome());
    EXPECT_TRUE(hasNot(cardMiddle(2), kFilm)) << "two are left";
    EXPECT_TRUE(has(cardMiddle(1), kFilm));
}

TEST_F(TavlinWindowTest, leavesTakesWithoutThreadsAndFilesOfTheirs) {
    const auto visit = [this](int card) {
        m_window.click(cardMiddle(card));
        ASSERT_TRUE(hasNot(newRecording(), kAccent));
        m_window.press("space"); // plays
        m_window.click({40, kHeader / 2});
        ASSERT_TRUE(isHome());
    };
    visit(0); // what the first of all takes brings may stay
    m_window.waitUntilStill();
    const std::size_t threads = m_window.threads();
    const std::size_t descriptors = m_window.descriptors();
    for (int i = 0; i < 9; ++i) {
        visit(i % 3);
    }
    EXPECT_TRUE(m_window.eventually([&] { return m_window.threads() <= threads; }));
    EXPECT_TRUE(m_window.eventually([&] { return m_window.descriptors() <= descriptors; }));
}

TEST_F(TavlinWindowTest, isNoSmallerThanItsScreensNeed) {
    m_window.resize({300, 200});
    EXPECT_TRUE(m_window.eventually([&] { return m_window.size() == QSize(800, 600); }));
}

TEST_F(TavlinWindowTest, quitsByItsKey) {
    m_window.press("ctrl+q");
    EXPECT_TRUE(m_window.hasEnded());
}

TEST_F(TavlinWindowTest, restsWhenNothingMoves) {
    m_window.waitUntilStill();
    const double before = m_window.processorSeconds();
    m_window.pass(2.0);
    EXPECT_LT(m_window.processorSeconds() - before, 0.1);
}

} // namespace
} // namespace tavi::test
