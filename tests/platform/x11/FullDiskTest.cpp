#include "platform/x11/RecordedVideo.h"
#include "platform/x11/XTestServer.h"
#include "project/RecordingMetadataJson.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <future>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace tavi {
namespace {

using test::Painter;
using test::XTestServer;

/// A shell command line that runs `script` where it may mount: in a mount namespace of its own,
/// for others than root in a user namespace of its own as well.
std::string amongItsOwnMounts(const std::string& script) {
    const std::string unshare =
        getuid() == 0 ? "unshare --mount" : "unshare --user --map-root-user --mount";
    return unshare + " sh -ec '" + script + "'";
}

/// The same with `disk` of `folder` for documents; its messages go to `errors` there.
std::string recordingTo(const test::TemporaryFolder& folder, const XTestServer& server,
                        const std::string& script) {
    std::filesystem::create_directories(folder / "disk");
    return "DISPLAY=" + server.name() + " TAVI_DOCUMENTS_DIR=" + (folder / "disk").string() +
           " XDG_RUNTIME_DIR=" + folder.path().string() + " " + amongItsOwnMounts(script) +
           " >/dev/null 2>" + (folder / "errors").string();
}

/// Who makes the disk full.
enum class Filler { theTake, anotherProgram };

/// `tavi record` with a library on a disk of four megabytes, which lives as long as the command.
/// What the disk held at the end is copied to the folder "kept".
class TakeOnASmallDisk {
public:
    TakeOnASmallDisk(const XTestServer& server, Filler filler) {
        const std::string command = recordingTo(m_folder, server, script(filler));
        m_status = std::async(std::launch::async, [command] {
            const int raw = std::system(command.c_str());
            return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
        });
    }

    bool isRunning() const {
        return m_status.wait_for(std::chrono::seconds(0)) != std::future_status::ready;
    }

    int status() { return m_status.get(); }
    std::string errors() const { return test::readFile(m_folder / "errors"); }

    /// The take as it was left; empty without one.
    std::filesystem::path take() const {
        std::error_code error;
        const std::filesystem::directory_iterator takes(m_folder / "kept" / "Tavlin", error);
        return error || takes == std::filesystem::directory_iterator() ? "" : takes->path();
    }

private:
    std::string script(Filler filler) const {
        const std::string disk = (m_folder / "disk").string();
        // As soon as there is some video, so that the take has nothing to give back.
        const std::string fill = "while ! find " + disk +
                                 " -name video.mov -size +40k | grep -q .; do sleep 0.05; done; "
                                 "cat /dev/zero >" +
                                 disk + "/filler 2>/dev/null || true; ";
        return "mount -t tmpfs -o size=4096k tmpfs " + disk +
               "; " TAVI_BINARY_DIR "/tavi record --duration 120 & status=0; " +
               (filler == Filler::anotherProgram ? fill : "") + "wait $! || status=$?; cp -a " +
               disk + " " + (m_folder / "kept").string() + "; exit $status";
    }

    const test::TemporaryFolder m_folder;
    std::future<int> m_status;
};

/// Pictures that no encoder makes small.
void paintNoise(Painter& painter, std::mt19937& random) {
    constexpr int kSide = 200;
    std::vector<std::uint32_t> pixels(kSide * kSide);
    for (std::uint32_t& pixel : pixels) {
        pixel = static_cast<std::uint32_t>(random());
    }
    painter.put(20, 20, kSide, kSide, pixels);
}

/// Moves the pointer and paints until the recorder ends.
void keepBusy(const XTestServer& server, const TakeOnASmallDisk& recorder) {
    Painter painter(server);
    std::mt19937 random(1);
    ASSERT_TRUE(server.run("xset m 1/1 0"));
    while (recorder.isRunning()) {
        paintNoise(painter, random);
        ASSERT_TRUE(server.run("xdotool mousemove_relative 1 1"));
    }
}

class FullDisk : public testing::TestWithParam<Filler> {};

TEST_P(FullDisk, endsATakeThatIsWholeUpToThere) {
    const XTestServer server("320x240x24");
    TakeOnASmallDisk recorder(server, GetParam());
    keepBusy(server, recorder);
    EXPECT_EQ(recorder.status(), 1);
    EXPECT_THAT(recorder.errors(), testing::HasSubstr("The recording ended early."));
    EXPECT_THAT(recorder.errors(), testing::HasSubstr("full"));
    ASSERT_FALSE(recorder.take().empty()) << recorder.errors();

    const auto samples = test::readAll(recorder.take() / "video.mov");
    ASSERT_FALSE(samples.empty());
    const auto metadata =
        decodeRecordingMetadata(test::readFile(recorder.take() / "metadata.json"));
    ASSERT_TRUE(metadata) << "there was room in reserve";
    EXPECT_FALSE(metadata->cursorEvents.empty());
    EXPECT_GE(metadata->duration, samples.back().presentationTime.seconds());
    EXPECT_TRUE(std::filesystem::exists(recorder.take() / "cursor_0.png"));
    EXPECT_FALSE(std::filesystem::exists(recorder.take() / "recording.journal"));
}

INSTANTIATE_TEST_SUITE_P(Fillers, FullDisk,
                         testing::Values(Filler::theTake, Filler::anotherProgram));

TEST(ReadOnlyDisk, isToldWithTheFolderThatItRefuses) {
    const XTestServer server("320x240x24");
    const test::TemporaryFolder folder;
    const std::string disk = (folder / "disk").string();
    const std::string command =
        recordingTo(folder, server,
                    "mount -t tmpfs -o ro tmpfs " + disk +
                        "; exec " TAVI_BINARY_DIR "/tavi record --duration 1");
    const int raw = std::system(command.c_str());
    EXPECT_TRUE(WIFEXITED(raw) && WEXITSTATUS(raw) == 1);
    EXPECT_THAT(
        test::readFile(folder / "errors"),
        testing::HasSubstr("no folder can be made in " + disk + "/Tavlin (Read-only file system)"));
}

} // namespace
} // namespace tavi
