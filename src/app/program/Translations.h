#pragma once

#include <QLocale>
#include <QTranslator>

#include <memory>
#include <vector>

namespace tavi {

/// The program's texts in the user's language, as long as the object lives; English where there is
/// no translation. English needs a file too: it says in this platform's words what the source
/// calls otherwise.
class Translations {
public:
    /// Needs a QCoreApplication.
    explicit Translations(const QLocale& locale);

private:
    void install(const QLocale& locale, const QString& folder, const QString& name);

    std::vector<std::unique_ptr<QTranslator>> m_installed;
};

} // namespace tavi
