#pragma once

#include <QQuickItem>

#include <memory>

class QQmlEngine;

namespace tavi {

/// The countdown's picture, filling what it is put into, with a property "value". Null, and a
/// warning, when it can't be made. Main thread.
std::unique_ptr<QQuickItem> makeCountdownView(QQmlEngine& engine, int value);

} // namespace tavi
