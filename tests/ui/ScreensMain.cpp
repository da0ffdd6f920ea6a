#include "LongerTexts.h"
#include "Scene.h"
#include "app/program/Translations.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>

#include <cstdio>
#include <optional>

/// Draws every scene into a folder: tavi-screens <folder> [scene...]
/// With the environment variable TAVI_LONGER_TEXTS every text is 40 % longer;
/// QT_SCALE_FACTOR gives pictures of other scales.
int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() < 2) {
        std::fputs("Use: tavi-screens <folder> [scene...]\n", stderr);
        return 2;
    }
    const QDir folder(arguments[1]);
    if (!QDir().mkpath(folder.path())) {
        std::fprintf(stderr, "%s can't be made.\n", qPrintable(folder.path()));
        return 1;
    }
    tavi::test::prepareScenes();
    const tavi::Translations translations(QLocale(QLocale::English));
    std::optional<tavi::test::LongerTexts> translator;
    if (qEnvironmentVariableIsSet("TAVI_LONGER_TEXTS")) {
        translator.emplace();
    }
    int bad = 0;
    for (const QString& file : tavi::test::sceneFiles()) {
        const QString name = QFileInfo(file).completeBaseName();
        if (arguments.size() > 2 && !arguments.contains(name)) {
            continue;
        }
        tavi::test::Scene scene(file);
        const QImage picture = scene.picture().convertToFormat(QImage::Format_RGB888);
        if (picture.isNull() || !picture.save(folder.filePath(name + QStringLiteral(".png")))) {
            std::fprintf(stderr, "%s: no picture\n", qPrintable(name));
            ++bad;
        }
        for (const QString& warning : scene.warnings()) {
            std::fprintf(stderr, "%s\n", qPrintable(warning));
            ++bad;
        }
    }
    return bad ? 1 : 0;
}
