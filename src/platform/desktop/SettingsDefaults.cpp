#include "platform/desktop/SettingsDefaults.h"

#include <QFile>
#include <QStandardPaths>

namespace tavi {

SettingsDefaults::SettingsDefaults(const std::filesystem::path& file)
    : m_settings(QFile::decodeName(QByteArray::fromStdString(file.string())),
                 QSettings::IniFormat) {}

std::filesystem::path SettingsDefaults::standardFile() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return QFile::encodeName(folder + QStringLiteral("/tavlin/tavlin.conf")).toStdString();
}

std::vector<std::string> SettingsDefaults::stringArray(const std::string& key) const {
    std::vector<std::string> values;
    for (const QString& value : m_settings.value(QString::fromStdString(key)).toStringList()) {
        values.push_back(value.toStdString());
    }
    return values;
}

void SettingsDefaults::setStringArray(const std::string& key,
                                      const std::vector<std::string>& value) {
    QStringList texts;
    for (const std::string& text : value) {
        texts.append(QString::fromStdString(text));
    }
    m_settings.setValue(QString::fromStdString(key), texts);
    m_settings.sync();
}

} // namespace tavi
