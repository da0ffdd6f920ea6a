#include "ui/QuickSetup.h"

#include <QDir>
#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQmlEngine>
#include <QQuickWindow>

void qml_register_types_Tavi_Ui(); // made by the build

namespace tavi {

namespace {

/// The kernel knows a graphics card. Where it doesn't, OpenGL need not even be loaded, which
/// takes a good part of the time to the first picture.
bool hasCardDevice() {
    return !QDir(QStringLiteral("/dev/dri"))
                .entryList({QStringLiteral("card*"), QStringLiteral("renderD*")}, QDir::System)
                .isEmpty() ||
           QFile::exists(QStringLiteral("/dev/nvidiactl"));
}

/// True when a graphics card, and no emulation of one, draws for OpenGL.
bool hasGraphicsCard() {
    if (!hasCardDevice()) {
        return false;
    }
    QOpenGLContext context;
    if (!context.create()) {
        return false;
    }
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    if (!surface.isValid() || !context.makeCurrent(&surface)) {
        return false;
    }
    const auto* name = reinterpret_cast<const char*>(context.functions()->glGetString(GL_RENDERER));
    const QByteArray renderer = QByteArray(name).toLower();
    context.doneCurrent();
    return !renderer.isEmpty() && !renderer.contains("llvmpipe") &&
           !renderer.contains("softpipe") && !renderer.contains("swrast");
}

} // namespace

QString chooseGraphics() {
    if (qEnvironmentVariableIsSet("QT_QUICK_BACKEND") ||
        qEnvironmentVariableIsSet("QSG_RHI_BACKEND")) {
        return QStringLiteral("environment");
    }
    const bool card = hasGraphicsCard();
    QQuickWindow::setGraphicsApi(card ? QSGRendererInterface::OpenGL
                                      : QSGRendererInterface::Software);
    return card ? QStringLiteral("opengl") : QStringLiteral("software");
}

void setUpFonts() {
    for (const char* face : {"TavlinSans-Regular", "TavlinSans-Medium", "TavlinSans-SemiBold",
                             "TavlinSansTabular-Regular", "TavlinSansTabular-Medium",
                             "TavlinSansTabular-SemiBold", "TavlinSansTabular-ExtraLight"}) {
        QFontDatabase::addApplicationFont(
            QStringLiteral(":/tavi/fonts/%1.otf").arg(QLatin1String(face)));
    }
    QFont font(QStringLiteral("Tavlin Sans"));
    font.setPixelSize(13);
    QGuiApplication::setFont(font);
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
}

void setUpEngine(QQmlEngine& engine) {
    qml_register_types_Tavi_Ui();
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    QObject::connect(&engine, &QQmlEngine::quit, QCoreApplication::instance(),
                     &QCoreApplication::quit, Qt::QueuedConnection);
}

} // namespace tavi
