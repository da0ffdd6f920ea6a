#include "app/NotificationViewModel.h"

#include "fakes/FakeDesktop.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class NotificationViewModelTest : public testing::Test {
protected:
    NotificationViewModel make(const std::string& version) {
        return {builtInNotifications("https://example.org"), version, defaults, workspace};
    }
    std::vector<std::string> stored() const { return defaults.stringArray("readNotificationIDs"); }

    CallLog log;
    FakeUserDefaults defaults;
    FakeWorkspace workspace{log};
};

TEST(BuiltInNotifications, areThoseOfTheTwoReleases) {
    const auto items = builtInNotifications("https://example.org");
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0].id, "1.4.0-juniper");
    EXPECT_EQ(items[0].version, "1.4");
    EXPECT_EQ(items[0].title, "Tavlin 1.4 is here!");
    EXPECT_EQ(items[0].body, "Check out what's new in this release.");
    EXPECT_EQ(items[0].url, "https://example.org/changelog/juniper");
    EXPECT_EQ(items[0].date.sinceEpoch(), 1775136394845.0);
    EXPECT_EQ(items[1].id, "1.5.0-saffron");
    EXPECT_EQ(items[1].version, "1.5");
    EXPECT_EQ(items[1].title, "Tavlin 1.5 is here!");
    EXPECT_EQ(items[1].url, "https://example.org/changelog/saffron");
}

TEST_F(NotificationViewModelTest, newsOfTheVersionAreUnreadUntilLookedAtAndNeverAgain) {
    auto model = make("1.5");
    ASSERT_EQ(model.currentNotifications().size(), 1u);
    EXPECT_TRUE(model.hasUnread());
    QSignalSpy changed(&model, &NotificationViewModel::hasUnreadChanged);
    model.markAsRead();
    model.markAsRead();
    EXPECT_FALSE(model.hasUnread());
    EXPECT_EQ(changed.count(), 1);
    EXPECT_THAT(stored(), ElementsAre("1.5.0-saffron"));
    EXPECT_FALSE(make("1.5").hasUnread());
}

TEST_F(NotificationViewModelTest, idsOfEarlierVersionsStayStored) {
    make("1.4").markAsRead();
    make("1.5").markAsRead();
    EXPECT_THAT(stored(), UnorderedElementsAre("1.4.0-juniper", "1.5.0-saffron"));
    EXPECT_FALSE(make("1.4").hasUnread());
}

TEST_F(NotificationViewModelTest, onlyTheVeryVersionHasNews) {
    for (const char* version : {"1.5.1", "1.5.0", "2.0", "1", ""}) {
        const auto model = make(version);
        EXPECT_THAT(model.currentNotifications(), IsEmpty()) << version;
        EXPECT_FALSE(model.hasUnread()) << version;
    }
}

TEST_F(NotificationViewModelTest, anItemsPageOpensInTheBrowser) {
    auto model = make("1.4");
    model.open(model.rows()[0].toMap()["url"].toString());
    EXPECT_THAT(log.calls(), ElementsAre("open https://example.org/changelog/juniper"));
}

} // namespace
} // namespace tavi
