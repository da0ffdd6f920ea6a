#include "platform/portal/PortalCasts.h"

#include "fakes/FakeExecutor.h"
#include "platform/pipewire/PipeWireTestServer.h"
#include "platform/portal/FakeCast.h"
#include "platform/portal/FakePortal.h"
#include "platform/portal/PortalScreenSystem.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <future>
#include <stdexcept>

namespace tavi {
namespace {

using test::FakeCast;
using test::FakePortal;
using test::PortalAnswer;
using test::waitFor;
using testing::ElementsAre;

const QString kToken = QStringLiteral("restore_token");

/// A program under a portal that the test plays; its streams are a compositor's that the test
/// plays as well.
class CastsOfAPortal : public testing::Test {
protected:
    void open(FakePortal::Script script) {
        cast = std::make_unique<FakeCast>(layout);
        script.node = cast->node();
        script.openRemote = FakeCast::openRemote;
        portal = std::make_unique<FakePortal>(std::move(script));
        system = PortalScreenSystem::open({main, nullptr, [] { return std::nullopt; },
                                           folder / "state/tokens", [this] { return displays; }});
        if (!system) {
            throw std::runtime_error("no portal");
        }
    }

    /// Asks while the compositor sends its first picture.
    Result<Consent, CaptureError> ask(const ScreenFilter& filter = ScreenFilter::display(1)) {
        auto asking = std::async(std::launch::async,
                                 [&] { return system->consent()->ask(filter, stop.get_token()); });
        test::CastFrame picture;
        picture.pixel = [](int, int) { return 0xFF102030U; };
        while (asking.wait_for(std::chrono::milliseconds(5)) != std::future_status::ready) {
            cast->send(picture);
        }
        return asking.get();
    }

    RestoreTokens tokens() const { return RestoreTokens(folder / "state/tokens"); }

    test::PipeWireTestServer server;
    test::TestBus bus;
    test::TemporaryFolder folder;
    FakeExecutor main;
    std::unique_ptr<FakeCast> cast;
    std::unique_ptr<FakePortal> portal;
    std::unique_ptr<PortalScreenSystem> system;
    std::stop_source stop;
    std::vector<Display> displays; ///< As the compositor tells.
    test::CastLayout layout;       ///< Of the compositor's pictures.
};

/// A display of twice as many pixels as points.
Display displayAt(std::uint32_t id, Rect place) {
    Display display;
    display.id = id;
    display.frame = {0, 0, place.width * 2, place.height * 2};
    display.place = place;
    return display;
}

class PortalOfAnyVersion : public CastsOfAPortal, public testing::WithParamInterface<uint> {};

TEST_P(PortalOfAnyVersion, givesAStreamOfWhatItsUserChose) {
    open({.version = GetParam()});
    const auto consent = ask();
    ASSERT_TRUE(consent) << consent.error().description();
    EXPECT_EQ(*consent, Consent::given);
    EXPECT_EQ(system->frames().displayFrame(1), (Rect{0, 0, 64, 48}));
    const QVariantMap asked = portal->selections().at(0);
    EXPECT_EQ(asked.value(QStringLiteral("types")).toUInt(), 1U);
    EXPECT_EQ(asked.value(QStringLiteral("cursor_mode")).toUInt(), GetParam() >= 2 ? 4U : 0U);
    EXPECT_EQ(asked.value(QStringLiteral("persist_mode")).toUInt(), GetParam() >= 4 ? 2U : 0U);
    const auto stream = system->streams().makeStream(ScreenFilter::display(1), {64, 48});
    ASSERT_TRUE(stream) << stream.error().description();
    EXPECT_EQ(portal->selections().size(), 1U) << "asked twice for one take";
}

INSTANTIATE_TEST_SUITE_P(Versions, PortalOfAnyVersion, testing::Values(1U, 2U, 3U, 4U, 5U));

TEST_F(CastsOfAPortal, answersThatComeBeforeTheReplyAreNotMissed) {
    open({.timing = FakePortal::Timing::beforeReply});
    EXPECT_EQ(ask(), Consent::given);
}

TEST_F(CastsOfAPortal, requestsOfPathsThatNobodyExpectedAreFollowed) {
    open({.timing = FakePortal::Timing::beforeReply, .hasOwnPaths = true});
    EXPECT_EQ(ask(), Consent::given);
}

TEST_F(CastsOfAPortal, refusalIsNoError) {
    open({.answer = [](const auto&) { return PortalAnswer{1}; }});
    EXPECT_EQ(ask(), Consent::declined);
    EXPECT_EQ(system->frames().displayFrame(1), std::nullopt);
    EXPECT_TRUE(waitFor([&] { return portal->closedSessions() == 1; }));
}

TEST_F(CastsOfAPortal, failureOfThePortalIsAnError) {
    open({.answer = [](const auto&) { return PortalAnswer{2}; }});
    const auto consent = ask();
    ASSERT_FALSE(consent);
    EXPECT_EQ(consent.error().kind, CaptureError::Kind::castRefused);
}

TEST_F(CastsOfAPortal, questionThatIsTakenBackClosesTheDialog) {
    open({.isDialogOpen = true});
    auto asking = std::async(std::launch::async, [&] {
        return system->consent()->ask(ScreenFilter::display(1), stop.get_token());
    });
    ASSERT_TRUE(waitFor([&] { return portal->calls().back() == "Start"; }));
    stop.request_stop();
    EXPECT_EQ(asking.get(), Consent::declined);
    EXPECT_TRUE(waitFor([&] { return portal->closedRequests() == 1; }));
}

TEST_F(CastsOfAPortal, portalThatDiesDuringTheQuestionIsAnError) {
    open({.isDialogOpen = true});
    auto asking = std::async(std::launch::async, [&] {
        return system->consent()->ask(ScreenFilter::display(1), stop.get_token());
    });
    ASSERT_TRUE(waitFor([&] { return portal->calls().back() == "Start"; }));
    portal->leave();
    const auto consent = asking.get();
    ASSERT_FALSE(consent);
    EXPECT_EQ(consent.error().kind, CaptureError::Kind::castRefused);
}

TEST_F(CastsOfAPortal, tokenAnswersTheNextTimeAndIsReplacedEachTime) {
    open({.answer = [](const QVariantMap& selected) {
        const std::string used = selected.value(kToken).toString().toStdString();
        return PortalAnswer{0, used.empty() ? "one" : used == "one" ? "two" : "three"};
    }});
    EXPECT_EQ(ask(), Consent::given);
    EXPECT_EQ(tokens().token("display-1"), "one");
    system->consent()->release();
    EXPECT_EQ(ask(), Consent::given);
    EXPECT_EQ(portal->selections().at(1).value(kToken).toString(), QStringLiteral("one"));
    EXPECT_EQ(tokens().token("display-1"), "two");
}

TEST_F(CastsOfAPortal, spentTokenWithoutAFollowerIsForgotten) {
    open({.answer = [](const auto&) { return PortalAnswer{0, ""}; }});
    tokens().setToken("display-1", "old");
    EXPECT_EQ(ask(), Consent::given);
    EXPECT_EQ(tokens().token("display-1"), std::nullopt);
}

TEST_F(CastsOfAPortal, rejectedTokenIsForgottenAndTheUserAskedOnceMore) {
    open({.rejectedToken = "stale"});
    tokens().setToken("display-1", "stale");
    EXPECT_EQ(ask(), Consent::given);
    ASSERT_EQ(portal->selections().size(), 2U);
    EXPECT_EQ(portal->selections().at(0).value(kToken).toString(), QStringLiteral("stale"));
    EXPECT_FALSE(portal->selections().at(1).contains(kToken));
    EXPECT_EQ(tokens().token("display-1"), "next");
}

TEST_F(CastsOfAPortal, refusalKeepsTheToken) {
    open({.answer = [](const auto&) { return PortalAnswer{1}; }});
    tokens().setToken("display-1", "old");
    EXPECT_EQ(ask(), Consent::declined);
    EXPECT_EQ(tokens().token("display-1"), "old");
}

TEST_F(CastsOfAPortal, displaysHaveTokensOfTheirOwn) {
    open({});
    EXPECT_EQ(ask(ScreenFilter::display(7)), Consent::given);
    system->consent()->release();
    EXPECT_EQ(ask(ScreenFilter::display(8)), Consent::given);
    EXPECT_FALSE(portal->selections().at(1).contains(kToken));
}

struct PlaceCase {
    const char* what;
    Rect place;           ///< Of what its user chose in the dialog.
    std::uint32_t holder; ///< Whose token it is then, if display 7 was chosen before.
};

class TokenOfADisplay : public CastsOfAPortal, public testing::WithParamInterface<PlaceCase> {};

TEST_P(TokenOfADisplay, belongsToWhatWasChosenInTheDialog) {
    displays = {displayAt(7, {0, 0, 1920, 1080}), displayAt(8, {1920, 0, 1920, 1080}),
                displayAt(9, {0, 1080, 1280, 720})};
    open({.answer = [](const auto&) { return PortalAnswer{0, "new", GetParam().place}; }});
    tokens().setToken("display-7", "old");
    EXPECT_EQ(ask(ScreenFilter::display(7)), Consent::given);
    for (const Display& display : displays) {
        const auto token = tokens().token("display-" + std::to_string(display.id));
        EXPECT_EQ(token, display.id == GetParam().holder ? std::optional<std::string>("new")
                                                         : std::nullopt)
            << display.id;
    }
    EXPECT_TRUE(system->frames().displayFrame(7)) << "the take is of what was chosen last";
}

INSTANTIATE_TEST_SUITE_P(Places, TokenOfADisplay,
                         testing::Values(PlaceCase{"the same", {0, 0, 1920, 1080}, 7},
                                         PlaceCase{"by its place", {1920, 0, 1920, 1080}, 8},
                                         PlaceCase{"by its size", {0, 0, 1280, 720}, 9},
                                         PlaceCase{"by its size in pixels", {0, 0, 2560, 1440}, 9},
                                         PlaceCase{"nothing told", {}, 7},
                                         PlaceCase{
                                             "what no compositor tells of", {5, 5, 800, 600}, 7}),
                         [](const auto& tested) {
                             std::string name = tested.param.what;
                             std::replace(name.begin(), name.end(), ' ', '_');
                             return name;
                         });

TEST_F(CastsOfAPortal, pointerOfTheOnlyDisplayIsNeverElsewhere) {
    displays = {displayAt(7, {0, 0, 32, 24})};
    open({});
    ASSERT_EQ(ask(ScreenFilter::display(7)), Consent::given);
    system->portalPointer().show(10, 5, 48);
    system->portalPointer().hide();
    EXPECT_EQ(system->portalPointer().query(), (Point{10, 43}));
    ASSERT_EQ(ask(ScreenFilter::window(1)), Consent::given);
    system->portalPointer().show(10, 5, 48);
    system->portalPointer().hide();
    EXPECT_LT(system->portalPointer().query().x, 0) << "it may be beside the window";
}

TEST_F(CastsOfAPortal, pointerMayBeOnAnotherDisplay) {
    displays = {displayAt(7, {0, 0, 32, 24}), displayAt(8, {32, 0, 32, 24})};
    open({});
    ASSERT_EQ(ask(ScreenFilter::display(7)), Consent::given);
    system->portalPointer().show(10, 5, 48);
    system->portalPointer().hide();
    EXPECT_LT(system->portalPointer().query().x, 0);
}

TEST_F(CastsOfAPortal, windowWithTransparentPartsHasAlpha) {
    layout.offered = {SPA_VIDEO_FORMAT_BGRx, SPA_VIDEO_FORMAT_BGRA};
    open({});
    EXPECT_FALSE(system->streams().hasAlpha(ScreenFilter::window(1))) << "not asked for yet";
    ASSERT_EQ(ask(ScreenFilter::window(1)), Consent::given);
    EXPECT_TRUE(system->streams().hasAlpha(ScreenFilter::window(1)));
    EXPECT_FALSE(system->streams().hasAlpha(ScreenFilter::display(1)));
    ASSERT_EQ(ask(ScreenFilter::display(1)), Consent::given);
    EXPECT_FALSE(system->streams().hasAlpha(ScreenFilter::display(1)));
}

TEST_F(CastsOfAPortal, windowIsAskedForEachTime) {
    open({});
    for (int take = 0; take < 2; ++take) {
        EXPECT_EQ(ask(ScreenFilter::window(1)), Consent::given);
        const QVariantMap asked = portal->selections().back();
        EXPECT_EQ(asked.value(QStringLiteral("types")).toUInt(), 2U);
        EXPECT_FALSE(asked.contains(QStringLiteral("persist_mode")));
        EXPECT_FALSE(asked.contains(kToken));
        system->consent()->release();
    }
}

TEST_F(CastsOfAPortal, windowIsAnErrorWhereThePortalHasDisplaysOnly) {
    open({.sourceTypes = 1});
    const auto content = system->content().content();
    ASSERT_TRUE(content);
    EXPECT_EQ(content->displays.size(), 1U);
    EXPECT_TRUE(content->windows.empty());
    const auto consent = system->consent()->ask(ScreenFilter::window(1), {});
    ASSERT_FALSE(consent);
    EXPECT_EQ(consent.error().kind, CaptureError::Kind::castRefused);
}

TEST_F(CastsOfAPortal, sessionThatTheDesktopEndsEndsTheStream) {
    open({});
    ASSERT_EQ(ask(), Consent::given);
    const auto stream = system->streams().makeStream(ScreenFilter::display(1), {64, 48});
    ASSERT_TRUE(stream);
    portal->endSession();
    ASSERT_TRUE(waitFor([&] { return (*stream)->failure().has_value(); }));
    EXPECT_EQ((*stream)->failure()->kind, CaptureError::Kind::castEnded);
}

TEST_F(CastsOfAPortal, endOfTheStreamEndsTheSession) {
    open({});
    ASSERT_EQ(ask(), Consent::given);
    EXPECT_EQ(portal->closedSessions(), 0);
    system->consent()->release();
    EXPECT_TRUE(waitFor([&] { return portal->closedSessions() == 1; }));
}

TEST_F(CastsOfAPortal, consentThatEndedBeforeTheTakeIsAskedForAgain) {
    open({});
    ASSERT_EQ(ask(), Consent::given);
    portal->endSession();
    ASSERT_TRUE(waitFor([&] {
        static_cast<void>(ask());
        return portal->selections().size() == 2;
    }));
}

struct ModeCase {
    uint version;
    uint offered;
    CursorMode mode;
};

class CursorModeOfAPortal : public testing::TestWithParam<ModeCase> {};

TEST_P(CursorModeOfAPortal, isTheBestThatThereIs) {
    const auto [version, offered, mode] = GetParam();
    EXPECT_EQ((ScreenCastFacts{version, 1, offered}).cursorMode(), mode);
}

INSTANTIATE_TEST_SUITE_P(
    Modes, CursorModeOfAPortal,
    testing::Values(ModeCase{4, 7, CursorMode::metadata}, ModeCase{2, 4, CursorMode::metadata},
                    ModeCase{4, 3, CursorMode::hidden}, ModeCase{4, 1, CursorMode::hidden},
                    ModeCase{4, 2, CursorMode::embedded}, ModeCase{1, 0, CursorMode::hidden}));

TEST(PortalScreenSystem, isNoneWhereNoPortalAnswers) {
    const test::TestBus bus;
    FakeExecutor main;
    EXPECT_EQ(PortalScreenSystem::open({main, nullptr, nullptr, "/nowhere"}), nullptr);
}

TEST(PortalScreenSystem, isNoneWhereThereIsNoBus) {
    { const test::TestBus bus; } // gone again
    FakeExecutor main;
    EXPECT_EQ(PortalScreenSystem::open({main, nullptr, nullptr, "/nowhere"}), nullptr);
}

} // namespace
} // namespace tavi
