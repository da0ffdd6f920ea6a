#include "platform/qt/QtExecutor.h"

#include <QCoreApplication>

namespace tavi {

void QtExecutor::post(std::function<void()> block) {
    QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(block), Qt::QueuedConnection);
}

} // namespace tavi
