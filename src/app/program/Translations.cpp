#include "app/program/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>

#include <utility>

namespace tavi {

namespace {

const QString kFolder = QStringLiteral(":/tavi/translations");
const QString kName = QStringLiteral("tavlin");

} // namespace

/// The one that is installed last is asked first.
Translations::Translations(const QLocale& locale) {
    install(locale, QLibraryInfo::path(QLibraryInfo::TranslationsPath), QStringLiteral("qtbase"));
    install(QLocale(QLocale::English), kFolder, kName);
    install(locale, kFolder, kName);
}

void Translations::install(const QLocale& locale, const QString& folder, const QString& name) {
    auto translator = std::make_unique<QTranslator>();
    if (translator->load(locale, name, QStringLiteral("_"), folder)) {
        QCoreApplication::installTranslator(translator.get());
        m_installed.push_back(std::move(translator));
    }
}

} // namespace tavi
