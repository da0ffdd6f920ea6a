#include "platform/x11/RecordedVideo.h"
#include "platform/x11/XTestServer.h"
#include "project/RecordingMetadataJson.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace tavi {
namespace {

using test::Painter;
using test::readAll;
using test::XTestServer;

/// A desktop with a window manager.
class Desktop {
public:
    Desktop() {
        m_manager = start({"openbox"});
        EXPECT_TRUE(test::waitFor(
            [&] { return server.run("xprop -root _NET_SUPPORTING_WM_CHECK | grep -q '#'"); }));
    }
    ~Desktop() {
        for (const pid_t pid : {m_program, m_manager}) {
            if (pid > 0) {
                kill(pid, SIGKILL);
                waitpid(pid, nullptr, 0);
            }
        }
    }

    /// A terminal with a plain background: a program that paints only when it is asked to.
    std::uint32_t startTerminal() {
        m_program = start({"xterm", "-title", "recorded", "-bg", "#3070B0", "-fg", "#3070B0", "-cr",
                           "#3070B0", "-geometry", "50x16+120+90", "+sb", "-e", "sleep 100"});
        std::uint32_t id = 0;
        EXPECT_TRUE(test::waitFor([&] {
            id = idOf("recorded");
            return id != 0;
        }));
        return id;
    }

    /// What `tavi sources` says of the window with the title.
    std::uint32_t idOf(const std::string& title) const {
        const auto listed = folder / "sources";
        run("sources", listed);
        std::istringstream lines(test::readFile(listed));
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("window ") && line.ends_with(title)) {
                return static_cast<std::uint32_t>(std::stoul(line.substr(7)));
            }
        }
        return 0;
    }

    /// Runs tavi; its exit status.
    int run(const std::string& arguments, const std::filesystem::path& out) const {
        const std::string command =
            "DISPLAY=" + server.name() + " TAVI_DOCUMENTS_DIR='" + folder.path().string() +
            "' XDG_RUNTIME_DIR='" + folder.path().string() + "' " TAVI_BINARY_DIR "/tavi " +
            arguments + " >'" + out.string() + "' 2>'" + (folder / "errors").string() + "'";
        const int raw = std::system(command.c_str());
        return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    }

    const XTestServer server{"800x600x24"};
    const test::TemporaryFolder folder;

private:
    pid_t start(std::vector<std::string> arguments) const {
        std::vector<char*> raw;
        for (auto& argument : arguments) {
            raw.push_back(argument.data());
        }
        raw.push_back(nullptr);
        const pid_t pid = fork();
        if (pid == 0) {
            setenv("DISPLAY", server.name().c_str(), 1);
            setenv("HOME", folder.path().c_str(), 1);
            std::freopen("/dev/null", "w", stderr);
            execvp(raw[0], raw.data());
            _exit(127);
        }
        return pid;
    }

    pid_t m_manager = 0;
    pid_t m_program = 0;
};

/// Pixels, away from the edges, that are further from 0xRRGGBB than coding explains.
int strangePixels(const PixelBuffer& image, std::uint32_t colour) {
    constexpr int kCodingNoise = 8;
    constexpr int kMargin = 4; // the terminal's own frame
    int count = 0;
    for (int y = kMargin; y < image.height() - kMargin; ++y) {
        for (int i = kMargin * 4; i < (image.width() - kMargin) * 4; ++i) {
            const int wanted = static_cast<int>(colour >> (8 * (i % 4))) & 0xFF;
            const bool isColour = i % 4 < 3;
            count += isColour && std::abs(image.row(y)[i] - wanted) > kCodingNoise ? 1 : 0;
        }
    }
    return count;
}

std::filesystem::path printedFolder(const std::filesystem::path& out) {
    std::string text = test::readFile(out);
    return text.substr(0, text.find('\n'));
}

TEST(RecordWindow, filmShowsAWindowThatAnotherCovers) {
    Desktop desktop;
    const std::uint32_t id = desktop.startTerminal();
    ASSERT_NE(id, 0U);
    Painter painter(desktop.server);
    painter.addWindow(0, 0, 800, 600, 0xC02020);
    const auto out = desktop.folder / "out";
    ASSERT_EQ(desktop.run("record --duration 1.5 --window " + std::to_string(id), out), 0)
        << test::readFile(desktop.folder / "errors");
    const auto take = printedFolder(out);
    const auto samples = readAll(take / "video.mov");
    ASSERT_FALSE(samples.empty());
    for (const auto& sample : samples) {
        EXPECT_EQ(strangePixels(*sample.image, 0x3070B0), 0);
    }
    const auto metadata = decodeRecordingMetadata(test::readFile(take / "metadata.json")).value();
    EXPECT_GT(metadata.screenWidth, 250);
    EXPECT_LT(metadata.screenWidth, 600) << "the window, not the display";
    EXPECT_EQ(samples[0].image->width(), metadata.screenWidth + metadata.screenWidth % 2);
    EXPECT_GT(metadata.duration, 1.4);
}

TEST(RecordWindow, filmGoesOnWhenTheWindowIsMovedMinimizedAndShownAgain) {
    Desktop desktop;
    const std::uint32_t id = desktop.startTerminal();
    ASSERT_NE(id, 0U);
    const std::string window = std::to_string(id);
    const auto done = desktop.folder / "done";
    ASSERT_TRUE(desktop.server.run("sh -c 'sleep 1; xdotool windowmove " + window +
                                   " -60 400 && xdotool windowminimize --sync " + window +
                                   " && sleep 0.5 && xdotool windowmap --sync " + window +
                                   " && touch \"" + done.string() + "\"' &"));
    const auto out = desktop.folder / "out";
    ASSERT_EQ(desktop.run("record --duration 3 --window " + window, out), 0)
        << test::readFile(desktop.folder / "errors");
    ASSERT_TRUE(std::filesystem::exists(done)) << "all that happened while it was recorded";
    const auto samples = readAll(printedFolder(out) / "video.mov");
    EXPECT_GE(samples.size(), 2U);
    for (const auto& sample : samples) {
        EXPECT_EQ(strangePixels(*sample.image, 0x3070B0), 0) << sample.presentationTime.seconds();
    }
}

TEST(RecordWindow, takeOfAWindowThatIsClosedIsSaved) {
    Desktop desktop;
    const std::uint32_t id = desktop.startTerminal();
    ASSERT_NE(id, 0U);
    const auto out = desktop.folder / "out";
    ASSERT_TRUE(
        desktop.server.run("sh -c 'sleep 2; xdotool windowkill " + std::to_string(id) + "' &"));
    EXPECT_EQ(desktop.run("record --duration 20 --window " + std::to_string(id), out), 0);
    EXPECT_THAT(test::readFile(desktop.folder / "errors"),
                testing::HasSubstr("The recorded window was closed."));
    const auto take = printedFolder(out);
    EXPECT_FALSE(readAll(take / "video.mov").empty());
    EXPECT_TRUE(std::filesystem::exists(take / "metadata.json"));
}

TEST(RecordWindow, minimizedWindowIsNeitherListedNorRecorded) {
    Desktop desktop;
    const std::uint32_t id = desktop.startTerminal();
    ASSERT_NE(id, 0U);
    ASSERT_TRUE(desktop.server.run("xdotool windowminimize --sync " + std::to_string(id)));
    ASSERT_TRUE(test::waitFor([&] { return desktop.idOf("recorded") == 0; }));
    EXPECT_EQ(desktop.run("record --window " + std::to_string(id), desktop.folder / "out"), 1);
    EXPECT_THAT(test::readFile(desktop.folder / "errors"), testing::HasSubstr("minimized"));
}

TEST(RecordWindow, unknownWindowIsTold) {
    Desktop desktop;
    EXPECT_EQ(desktop.run("record --window 4711", desktop.folder / "out"), 1);
    EXPECT_THAT(test::readFile(desktop.folder / "errors"), testing::HasSubstr("4711"));
}

} // namespace
} // namespace tavi
