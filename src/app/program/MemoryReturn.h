#pragma once

#include "app/TaviApp.h"

#include <QObject>
#include <QTimer>

namespace tavi {

/// Gives memory back to the system when the program needs less of it than before: a moment after
/// a screen was left, an export has ended or was cancelled.
/// Thread: main; the work is done on a thread of Qt's pool. `app` outlives it.
class MemoryReturn : public QObject {
public:
    explicit MemoryReturn(TaviApp& app);

private:
    void watchExports();
    void later() { m_timer.start(); }

    TaviApp& m_app;
    QTimer m_timer;
};

} // namespace tavi
