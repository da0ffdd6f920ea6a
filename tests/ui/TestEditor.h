#pragma once

#include "editor/EditorScreenViewModel.h"
#include "fakes/FakeAssets.h"
#include "fakes/FakeClock.h"
#include "fakes/FakePlayer.h"
#include "platform/qt/QtExecutor.h"
#include "platform/qt/QtTimers.h"
#include "support/TemporaryFolder.h"

#include <QObject>

#include <memory>

namespace tavi::test {

/// The editor of a made-up take for scenes: its view models are the program's own, its video is a
/// picture that never moves.
class TestEditor : public QObject {
    Q_OBJECT
    /// A take of 42 seconds with four zooms and a cut.
    Q_PROPERTY(QObject* screen READ screen CONSTANT)

public:
    explicit TestEditor(QObject* parent = nullptr);
    ~TestEditor() override;

    QObject* screen();

    /// Opens a take with a camera instead.
    Q_INVOKABLE void recordCamera() { m_hasCamera = true; }

    Q_INVOKABLE void select(int keyframe);
    Q_INVOKABLE void setLook(const QString& style, double padding);

    /// Lets the playhead stand there, without pointer and seeking.
    Q_INVOKABLE void moveTo(double seconds);

private:
    class Background;

    void writeTake();

    bool m_hasCamera = false;
    TemporaryFolder m_library;
    CallLog m_log;
    FakePlayers m_players{m_log};
    FakeAssets m_media;
    std::unique_ptr<Background> m_background;
    FakeClock m_clock;
    QtExecutor m_main;
    QtTimers m_timers;
    std::unique_ptr<EditorScreenViewModel> m_screen;
};

} // namespace tavi::test
