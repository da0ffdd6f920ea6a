#include "platform/desktop/CountdownView.h"

#include <QQmlComponent>
#include <QQmlEngine>

namespace tavi {

std::unique_ptr<QQuickItem> makeCountdownView(QQmlEngine& engine, int value) {
    QQmlComponent component(
        &engine, QUrl(QStringLiteral("qrc:/qt/qml/Tavi/Capture/CountdownOverlayView.qml")));
    std::unique_ptr<QQuickItem> view(qobject_cast<QQuickItem*>(
        component.createWithInitialProperties({{QStringLiteral("value"), value}})));
    if (!view) {
        qWarning("The countdown can't be shown: %s", qPrintable(component.errorString()));
    }
    return view;
}

} // namespace tavi
