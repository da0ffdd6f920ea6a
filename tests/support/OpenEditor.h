#pragma once

#include "editor/EditorViewModel.h"
#include "fakes/FakeAssets.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeExecutor.h"
#include "fakes/FakePlayer.h"
#include "fakes/FakeTimers.h"
#include "project/EditProjectJson.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>

namespace tavi::test {

/// A library with one take whose videos have the length and size that the test says.
class OpenEditor : public testing::Test {
protected:
    OpenEditor();

    static Asset asset(double seconds, std::optional<Size> size) {
        return FakeAssets::asset(seconds, size);
    }

    void writeFile(const char* name, const std::string& text) const;
    void writeProject(const EditProject& project) const;
    void addCamera(double delay);

    /// Opens the take; what is loaded in the background is there with `settle`.
    void open(bool settle = true);
    void settle();

    /// What stands in `project.json`; fails the test where that doesn't decode.
    EditProject saved() const;
    bool isSaved() const;
    void removeSaved() const;

    /// Lets the half second after the last change go by.
    void pass() { timers.tick(0.5); }

    /// The calls of the players since the last time this was asked.
    std::vector<std::string> newCalls();

    FakePlayer& video() { return *players.made.at("video.mov"); }

    TemporaryFolder library;
    std::filesystem::path folder;
    CallLog log;
    FakePlayers players{log};
    FakeAssets media;
    FakeClock clock;
    FakeExecutor main;
    FakeExecutor background;
    FakeTimers timers;
    std::unique_ptr<EditorViewModel> editor;

private:
    std::size_t m_seen = 0;
};

} // namespace tavi::test
