#include "Scene.h"
#include "TestPictures.h"
#include "ui/QuickSetup.h"

#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

namespace tavi::test {

/// What the tests in QML need before they run.
class QuickSetupOfTests : public QObject {
    Q_OBJECT

public slots:
    void applicationAvailable() { prepareScenes(); }
    void qmlEngineAvailable(QQmlEngine* engine) {
        setUpEngine(*engine);
        engine->rootContext()->setContextProperty(QStringLiteral("testPictures"),
                                                  new TestPictures(engine));
    }
};

} // namespace tavi::test

QUICK_TEST_MAIN_WITH_SETUP(tavi, tavi::test::QuickSetupOfTests)

#include "QuickMain.moc"
