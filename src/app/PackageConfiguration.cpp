#include "app/PackageConfiguration.h"

#include "app/PathText.h"

#include <QSettings>

namespace tavi {

namespace {

/// A changelog is installed with the program for those who have no other.
std::string installedChangelog(const std::filesystem::path& packageFolder) {
    return "file://" + packageFolder.string();
}

std::string text(const QSettings& settings, const char* key, const std::string& otherwise = {}) {
    const QString value = settings.value(QLatin1String(key)).toString().trimmed();
    return value.isEmpty() ? otherwise : value.toStdString();
}

} // namespace

PackageConfiguration readPackageConfiguration(const std::filesystem::path& packageFolder) {
    const QSettings settings(textOf(packageFolder / "package.ini"), QSettings::IniFormat);
    return {text(settings, "updates/feed"), text(settings, "updates/key"),
            text(settings, "changelog/url", installedChangelog(packageFolder))};
}

} // namespace tavi
