#pragma once

#include "capture/TakeRecorder.h"
#include "fakes/FakeCapture.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeExecutor.h"
#include "fakes/FakeHelper.h"
#include "fakes/FakePointer.h"
#include "fakes/FakeScreen.h"
#include "support/TemporaryFolder.h"

namespace tavi {

/// What a take is recorded from, all of it the test's: only media are a matter of their own.
struct FakeTakeSurroundings {
    TakePorts ports(MediaLibrary& media, ImageFiles& images, CaptureSessions& sessions) {
        return {screen,
                media,
                images,
                {pointer, pointer, pointer, launcher, clock, main, nullptr, "/package/TaviKeys"},
                &sessions};
    }

    test::TemporaryFolder library;
    FakeScreenStreams screen;
    FakePointer pointer;
    FakeHelperLauncher launcher;
    FakeClock clock;
    FakeExecutor main;
    TakeDevices devices;
};

} // namespace tavi
