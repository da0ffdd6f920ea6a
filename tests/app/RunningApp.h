#pragma once

#include "app/AppViewModel.h"
#include "capture/RecordingScreen.h"
#include "fakes/FakeDesktop.h"
#include "fakes/FakeExecutor.h"
#include "project/RecordingMetadataJson.h"

#include <filesystem>
#include <memory>
#include <string>

namespace tavi::test {

/// Makes a take of the library.
inline void makeTake(const std::filesystem::path& folder, double date = 100, double duration = 2) {
    RecordingMetadata metadata;
    metadata.startDate = Date{date};
    metadata.duration = duration;
    writeFile(folder / "video.mov", "");
    writeFile(folder / "metadata.json", encodeRecordingMetadata(metadata).value());
}

/// The root state over fakes of the desktop. `library` and the recording screen's model are those
/// of RecordingScreen.
class RunningApp : public RecordingScreen {
protected:
    AppPorts ports() {
        return {permission, content, windows, workspace,  {statusItems, clock, timers},
                clock,      timers,  appMain, background, library.path()};
    }

    /// Starts the program; the permission is looked up at once.
    void launch() {
        app = std::make_unique<AppViewModel>(ports());
        settle();
    }
    /// Runs what waits for the main thread or the background.
    void settle() {
        while (background.waiting() + appMain.waiting() > 0) {
            background.runAll();
            appMain.runAll();
        }
    }
    void endSplash() {
        timers.tick(AppViewModel::kSplashSeconds);
        settle();
    }
    void launchHome() {
        launch();
        endSplash();
    }

    std::string mode() const { return app->currentModeName().toStdString(); }
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const RecordingItem& item : app->recordings()) {
            all.push_back(item.url.filename().string());
        }
        return all;
    }

    CallLog desktop;
    FakeScreenPermission permission{desktop};
    FakeApplicationWindows windows{desktop};
    FakeWorkspace workspace{desktop};
    FakeStatusItems statusItems;
    FakeExecutor appMain;
    FakeExecutor background;
    std::unique_ptr<AppViewModel> app;
};

} // namespace tavi::test
