#include "Scene.h"

#include "TestEditor.h"
#include "TestPictures.h"
#include "editor/TimelineQuickItem.h"
#include "ui/QuickSetup.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QStyleHints>
#include <QTest>

namespace tavi::test {

namespace {

// A window that drew nothing for this long is at rest, in milliseconds.
constexpr int kRest = 120;
constexpr int kLongestWait = 10'000;

/// Nothing that pulses or turns for ever does so in this engine.
void holdStill(QQmlEngine& engine) {
    QQmlComponent command(&engine);
    command.setData("import QtQml\nimport Tavi.Ui\n"
                    "QtObject { Component.onCompleted: Theme.still = true }",
                    QUrl());
    const std::unique_ptr<QObject> done(command.create());
    Q_ASSERT(done);
}

bool isShown(const QQuickItem& item) {
    return item.isVisible() && item.opacity() > 0;
}

void visitTree(QQuickItem& item, const std::function<void(QQuickItem&)>& visitor) {
    if (!isShown(item)) {
        return;
    }
    visitor(item);
    for (QQuickItem* child : item.childItems()) {
        visitTree(*child, visitor);
    }
}

} // namespace

QStringList sceneFiles() {
    const QDir folder(QStringLiteral(TAVI_SCENES));
    QStringList files;
    for (const QString& name :
         folder.entryList({QStringLiteral("*.qml")}, QDir::Files, QDir::Name)) {
        files << folder.filePath(name);
    }
    return files;
}

void prepareScenes() {
    setUpFonts();
    QGuiApplication::styleHints()->setCursorFlashTime(0);
}

Scene::Scene(const QString& file) : m_view(std::make_unique<QQuickView>()) {
    QObject::connect(m_view->engine(), &QQmlEngine::warnings, m_view.get(),
                     [this](const QList<QQmlError>& errors) {
                         for (const QQmlError& error : errors) {
                             m_warnings << error.toString();
                         }
                     });
    m_view->engine()->setOutputWarningsToStandardError(false);
    setUpEngine(*m_view->engine());
    registerEditorItems();
    m_view->rootContext()->setContextProperty(QStringLiteral("testPictures"),
                                              new TestPictures(m_view.get()));
    m_view->rootContext()->setContextProperty(QStringLiteral("testEditor"),
                                              new TestEditor(m_view.get()));
    holdStill(*m_view->engine());
    m_view->setColor(QColor::fromRgbF(0.067F, 0.067F, 0.075F));
    m_view->setResizeMode(QQuickView::SizeRootObjectToView);
    m_view->setSource(QUrl::fromLocalFile(file));
    for (const QQmlError& error : m_view->errors()) {
        m_warnings << error.toString();
    }
    m_view->show();
    // QTest's wait wants an active window, which offscreen windows are at once.
    if (!QTest::qWaitForWindowActive(m_view.get(), kLongestWait)) {
        m_warnings << QStringLiteral("the window never became active");
    }
    settle();
}

/// The items go before their window draws once more: Qt leaks the textures of images that a
/// window without a graphics card shows to its end.
Scene::~Scene() {
    m_view->setSource(QUrl());
    m_view->grabWindow();
}

void Scene::settle() {
    QElapsedTimer all;
    QElapsedTimer rest;
    all.start();
    rest.start();
    const auto connection = QObject::connect(m_view.get(), &QQuickWindow::afterRendering,
                                             m_view.get(), [&rest] { rest.restart(); });
    while (rest.elapsed() < kRest && all.elapsed() < kLongestWait) {
        QTest::qWait(10);
    }
    QObject::disconnect(connection);
}

QImage Scene::picture() {
    return m_view->grabWindow();
}

void Scene::visit(const std::function<void(QQuickItem&)>& visitor) {
    visitTree(*m_view->contentItem(), visitor);
}

} // namespace tavi::test
