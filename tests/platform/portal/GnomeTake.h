#pragma once

#include "base/Clock.h"
#include "platform/portal/GnomeDesktop.h"
#include "platform/x11/RecorderProcess.h"
#include "project/RecordingMetadataJson.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace tavi::test {

/// Seconds as in Date, by the clock of the log's dates.
inline double dateNow() {
    return SystemClock().now().sinceReference;
}

/// A take that `tavi record` makes under GNOME.
class GnomeTake : public testing::Test {
protected:
    explicit GnomeTake(GnomeDesktop::Portal portal = GnomeDesktop::Portal::ofGnome)
        : desktop(portal) {}

    static bool hasBegun(const RecorderProcess& recorder) {
        const std::string journal = recorder.journal();
        return std::count(journal.begin(), journal.end(), '\n') > 1;
    }

    /// Answers the desktop's question until the take runs.
    bool agree(RecorderProcess& recorder) {
        return waitFor(
            [&] {
                desktop.answerDialog();
                return waitFor([&] { return hasBegun(recorder); }, 3);
            },
            60);
    }

    /// How many events of a type ("move") are in the log so far.
    static std::size_t logged(const RecorderProcess& recorder, const std::string& type) {
        const std::string journal = recorder.journal();
        const std::string quoted = '"' + type + '"';
        std::size_t count = 0;
        for (auto at = journal.find(quoted); at != std::string::npos;
             at = journal.find(quoted, at + 1)) {
            ++count;
        }
        return count;
    }

    /// Does something and waits until the log has so many more events of that type.
    template<typename Deed>
    static void doAndWait(const RecorderProcess& recorder, const std::string& type, Deed deed,
                          std::size_t more = 1) {
        const std::size_t before = logged(recorder, type);
        deed();
        EXPECT_TRUE(waitFor([&] { return logged(recorder, type) >= before + more; }, 60)) << type;
    }

    /// A busy compositor puts moves together that it is late for: each waits for the one before.
    void movePointer(const RecorderProcess& recorder, Point to) {
        doAndWait(recorder, "move", [&] { desktop.movePointer(to.x, to.y); });
    }

    static RecordingMetadata metadataOf(const RecorderProcess& recorder) {
        return decodeRecordingMetadata(readFile(recorder.take() / "metadata.json")).value();
    }

    GnomeDesktop desktop;
};

} // namespace tavi::test
