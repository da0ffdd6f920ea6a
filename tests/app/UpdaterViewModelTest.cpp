#include "app/UpdaterController.h"
#include "fakes/FakeExecutor.h"
#include "fakes/FakeTimers.h"
#include "support/TemporaryFolder.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string feed(const std::string& items) {
    return R"(<?xml version="1.0"?><rss version="2.0" xmlns:s="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel><title>Tavlin</title>)" +
           items + "</channel></rss>";
}

std::string item(const std::string& version, const std::string& length = "4") {
    return "<item><title>Tavlin " + version + "</title><s:shortVersionString>" + version +
           "</s:shortVersionString><enclosure url=\"https://example.org/tavlin.deb\" length=\"" +
           length + "\" s:edSignature=\"c2ln\"/></item>";
}

TEST(Appcast, readsVersionFileLengthAndSignature) {
    const auto items = parseAppcast(feed(item("1.5.2")));
    ASSERT_TRUE(items) << items.error().description();
    EXPECT_THAT(*items, ElementsAre(AppcastItem{"1.5.2", "Tavlin 1.5.2",
                                                "https://example.org/tavlin.deb", 4, "c2ln"}));
}

TEST(Appcast, theVersionMayStandInTheEnclosure) {
    const auto items = parseAppcast(feed(
        R"(<item><enclosure url="https://a/b" length="4" s:version="77" s:shortVersionString="2.0" s:edSignature="c2ln"/></item>)"));
    ASSERT_TRUE(items);
    EXPECT_EQ(items->at(0).version, "2.0");
}

TEST(Appcast, itemsThatLackSomethingArePassedOver) {
    const auto items = parseAppcast(
        feed("<item/><item><title>x</title></item>" + item("") + item("3", "0") + item("3", "-5") +
             item("3", "many") +
             R"(<item><s:version>9</s:version><enclosure url="https://a" length="4"/></item>)"));
    ASSERT_TRUE(items);
    EXPECT_THAT(*items, IsEmpty());
}

TEST(Appcast, whatIsNoFeedIsRefused) {
    const std::string good = feed(item("2"));
    for (const std::string& text : {std::string(), std::string("hello"), std::string("<html/>"),
                                    good.substr(0, good.size() / 2), std::string("\xff\xfe\x00", 3),
                                    "<rss>" + std::string(100'000, '<')}) {
        const auto items = parseAppcast(text);
        ASSERT_FALSE(items) << text.substr(0, 40);
        EXPECT_THAT(items.error().description(), HasSubstr("can't be read"));
    }
}

TEST(Appcast, documentTypesAreRefusedSoThatEntitiesMultiplyNothing) {
    std::string bomb = "<!DOCTYPE rss [<!ENTITY a \"aaaaaaaaaa\">";
    for (char name = 'b'; name < 'k'; ++name) {
        const std::string inner = "&" + std::string(1, static_cast<char>(name - 1)) + ";";
        bomb += "<!ENTITY " + std::string(1, name) + " \"";
        for (int i = 0; i < 10; ++i) {
            bomb += inner;
        }
        bomb += "\">";
    }
    bomb += "]><rss><channel><item><title>&j;</title></item></channel></rss>";
    EXPECT_FALSE(parseAppcast(bomb));
    EXPECT_FALSE(parseAppcast("<!DOCTYPE rss SYSTEM \"file:///etc/passwd\"><rss/>"));
}

TEST(Appcast, deepAndLongFeedsEnd) {
    std::string deep;
    for (int i = 0; i < 20'000; ++i) {
        deep += "<a>";
    }
    EXPECT_FALSE(parseAppcast("<rss>" + deep));
    std::string many;
    for (int i = 0; i < 3000; ++i) {
        many += item("1." + std::to_string(i));
    }
    const auto items = parseAppcast(feed(many));
    ASSERT_TRUE(items);
    EXPECT_EQ(items->size(), kMostAppcastItems);
}

struct VersionCase {
    const char* running;
    std::vector<std::string> offered;
    const char* newest; ///< Empty: none.
};

class NewestUpdate : public testing::TestWithParam<VersionCase> {};

TEST_P(NewestUpdate, isTheHighestNumberAboveTheRunningOne) {
    std::vector<AppcastItem> items;
    for (const std::string& version : GetParam().offered) {
        items.push_back({version, "", "https://a", 1, "s"});
    }
    const auto update = newestUpdate(items, GetParam().running);
    EXPECT_EQ(update ? update->version : "", GetParam().newest);
}

INSTANTIATE_TEST_SUITE_P(
    Versions, NewestUpdate,
    testing::Values(VersionCase{"1.4", {}, ""}, VersionCase{"1.4", {"1.5"}, "1.5"},
                    VersionCase{"1.9", {"1.10"}, "1.10"},
                    VersionCase{"1.5", {"1.4", "1.5", "1.5.0", "0.9"}, ""}, // a downgrade is none
                    VersionCase{"1.4", {"1.4.1", "2.0", "1.9"}, "2.0"},
                    VersionCase{"1.4", {"newest", "2.0-rc", "", "9x"}, ""}));

class FakeDownloads final : public Downloads {
public:
    void fetchText(const std::string& url, std::int64_t limit, double, Text done) override {
        asked.push_back(url);
        EXPECT_EQ(limit, UpdaterController::kLargestFeed);
        text = std::move(done);
    }
    void fetchFile(const std::string& url, const std::filesystem::path& path, std::int64_t length,
                   double, File done) override {
        asked.push_back(url);
        filePath = path;
        fileLength = length;
        file = std::move(done);
    }
    void cancel() override { isCancelled = true; }

    std::vector<std::string> asked;
    Text text;
    File file;
    std::filesystem::path filePath;
    std::int64_t fileLength = 0;
    bool isCancelled = false;
};

/// Right is what the test says, of the message that it expects.
class FakeSignatures final : public Signatures {
public:
    bool isSignedBy(const std::string& key, const std::string& message,
                    const std::string& signature) const override {
        EXPECT_EQ(key, "a2V5");
        EXPECT_EQ(signature, "c2ln");
        EXPECT_EQ(message, updateMessage("1.5", 4, "abcd"));
        return isRight;
    }
    std::string sha512(const std::filesystem::path&) const override { return "abcd"; }

    bool isRight = true;
};

class UpdaterControllerTest : public testing::Test {
protected:
    void start(const PackageConfiguration& package = {"https://example.org/feed", "a2V5", ""}) {
        updater = std::make_unique<UpdaterController>(
            UpdaterController::Ports{downloads, signatures, timers, main, background,
                                     cache / "updates"},
            package, "1.4");
        told = std::make_unique<QSignalSpy>(updater.get(), &UpdaterController::told);
    }
    void answerFeed(const std::string& text) { downloads.text(text); }
    void answerFile(const std::string& content) {
        test::writeFile(downloads.filePath, content);
        downloads.file({});
        background.runAll();
        main.runAll();
    }
    std::string message() const {
        return told->isEmpty() ? "" : told->last()[0].toString().toStdString();
    }

    test::TemporaryFolder cache;
    FakeDownloads downloads;
    FakeSignatures signatures;
    FakeTimers timers;
    FakeExecutor main;
    FakeExecutor background;
    std::unique_ptr<UpdaterController> updater;
    std::unique_ptr<QSignalSpy> told;
};

TEST_F(UpdaterControllerTest, withoutAFeedThePackageManagerIsNamedAndNothingFetched) {
    start({});
    updater->startUpdater();
    updater->checkForUpdates();
    EXPECT_THAT(downloads.asked, IsEmpty());
    EXPECT_THAT(timers.running(), IsEmpty());
    EXPECT_THAT(message(), HasSubstr("package manager"));
}

TEST_F(UpdaterControllerTest, checksAtOnceAndOnceADaySilentlyWhileNothingIsNew) {
    start();
    updater->startUpdater();
    EXPECT_EQ(downloads.asked.size(), 1u);
    answerFeed(feed(item("1.4")));
    EXPECT_EQ(told->count(), 0);
    timers.tick(UpdaterController::kCheckInterval);
    EXPECT_EQ(downloads.asked.size(), 2u);
    downloads.text(fail(DownloadError{"no network"}));
    EXPECT_EQ(told->count(), 0) << "nobody asked";
    EXPECT_FALSE(updater->isBusy());
}

TEST_F(UpdaterControllerTest, itsOwnCheckTellsOfAnUpdateAndFetchesNothing) {
    start();
    updater->startUpdater();
    answerFeed(feed(item("1.5")));
    EXPECT_EQ(updater->availableVersion(), "1.5");
    EXPECT_THAT(message(), HasSubstr("1.5 is available"));
    EXPECT_EQ(downloads.asked.size(), 1u);
}

TEST_F(UpdaterControllerTest, theCommandFetchesVerifiesAndOffers) {
    start();
    updater->checkForUpdates();
    answerFeed(feed(item("1.5")));
    ASSERT_EQ(downloads.asked.size(), 2u);
    EXPECT_EQ(downloads.filePath, cache / "updates" / "tavlin.deb");
    EXPECT_EQ(downloads.fileLength, 4);
    EXPECT_TRUE(updater->isBusy());
    answerFile("file");
    EXPECT_EQ(updater->offeredFile().toStdString(), downloads.filePath.string());
    EXPECT_TRUE(std::filesystem::exists(downloads.filePath));
    EXPECT_THAT(message(), HasSubstr("signature is right"));
    EXPECT_FALSE(updater->isBusy());
}

TEST_F(UpdaterControllerTest, aWrongSignatureRemovesTheFileAndOffersNothing) {
    signatures.isRight = false;
    start();
    updater->checkForUpdates();
    answerFeed(feed(item("1.5")));
    answerFile("evil");
    EXPECT_EQ(updater->offeredFile(), "");
    EXPECT_FALSE(std::filesystem::exists(downloads.filePath));
    EXPECT_THAT(message(), HasSubstr("signature is wrong"));
}

TEST_F(UpdaterControllerTest, theCommandAlwaysAnswers) {
    start();
    updater->checkForUpdates();
    answerFeed(feed(item("1.3")));
    EXPECT_THAT(message(), HasSubstr("1.4 is the newest"));
    updater->checkForUpdates();
    answerFeed("no feed");
    EXPECT_THAT(message(), HasSubstr("can't be read"));
    updater->checkForUpdates();
    downloads.text(fail(DownloadError{"no network"}));
    EXPECT_EQ(message(), "no network");
    updater->checkForUpdates();
    answerFeed(feed(item("1.5")));
    downloads.file(fail(DownloadError{"too short"}));
    EXPECT_EQ(message(), "too short");
    EXPECT_EQ(told->count(), 4);
}

TEST_F(UpdaterControllerTest, aCommandDuringACheckJoinsIt) {
    start();
    updater->startUpdater();
    updater->checkForUpdates();
    EXPECT_EQ(downloads.asked.size(), 1u);
    answerFeed(feed(item("1.5")));
    EXPECT_EQ(downloads.asked.size(), 2u) << "the file, since the user asked";
}

TEST_F(UpdaterControllerTest, hugeFilesAndOddNamesAreNoTrouble) {
    start();
    updater->checkForUpdates();
    answerFeed(feed(item("1.5", "99999999999999")));
    EXPECT_THAT(message(), HasSubstr("too large"));
    updater->checkForUpdates();
    std::string odd = item("1.5");
    odd.replace(odd.find("tavlin.deb"), 10, "%2e%2e%2f..%2fetc%2fcron");
    answerFeed(feed(odd));
    EXPECT_EQ(downloads.filePath.parent_path(), cache / "updates");
}

TEST_F(UpdaterControllerTest, theEndOfTheProgramEndsAFetch) {
    start();
    updater->checkForUpdates();
    answerFeed(feed(item("1.5")));
    test::writeFile(downloads.filePath, "file");
    downloads.file({});
    updater.reset();
    EXPECT_TRUE(downloads.isCancelled);
    background.runAll();
    main.runAll();
}

} // namespace
} // namespace tavi
