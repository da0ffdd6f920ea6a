#include "app/SettingsViewModel.h"

#include "app/PathText.h"
#include "app/StorageSize.h"

#include <utility>

namespace tavi {

SettingsViewModel::SettingsViewModel(Ports ports, std::filesystem::path recordingsDirectory,
                                     ProgramVersion version, QLocale locale, QObject* parent)
    : QObject(parent),
      m_ports(ports),
      m_recordingsDirectory(std::move(recordingsDirectory)),
      m_version(std::move(version)),
      m_locale(std::move(locale)) {}

QString SettingsViewModel::locationText() const {
    return textOf(m_recordingsDirectory);
}

void SettingsViewModel::appear() {
    m_appearance = std::make_shared<Appearance>();
    setStorageSizeText({});
    m_ports.background.post([this, seen = std::weak_ptr(m_appearance), &main = m_ports.main,
                             folder = m_recordingsDirectory] {
        main.post([this, seen, bytes = totalSize(folder)] {
            if (!seen.expired()) {
                setStorageSizeText(byteCountText(bytes, m_locale));
            }
        });
    });
}

void SettingsViewModel::disappear() {
    m_appearance.reset();
}

void SettingsViewModel::revealLibrary() {
    m_ports.workspace.reveal(m_recordingsDirectory);
}

void SettingsViewModel::setStorageSizeText(QString text) {
    if (m_storageSizeText != text) {
        m_storageSizeText = std::move(text);
        emit storageSizeTextChanged();
    }
}

} // namespace tavi
