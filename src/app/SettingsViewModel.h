#pragma once

#include "app/Workspace.h"
#include "base/Executor.h"

#include <QLocale>
#include <QObject>
#include <QString>

#include <filesystem>
#include <memory>
#include <string>

namespace tavi {

/// What a program says about itself.
struct ProgramVersion {
    std::string version; ///< "1.4"
    std::string build;
};

/// The settings panel: where the takes lie, how much room they take, and the version.
/// Thread: main; the size is added up in the background.
class SettingsViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString locationText READ locationText CONSTANT)
    Q_PROPERTY(QString storageSizeText READ storageSizeText NOTIFY storageSizeTextChanged)
    Q_PROPERTY(QString versionText READ versionText CONSTANT)
    Q_PROPERTY(QString buildText READ buildText CONSTANT)

public:
    /// All outlive it.
    struct Ports {
        Workspace& workspace;
        Executor& main;
        Executor& background;
    };

    SettingsViewModel(Ports ports, std::filesystem::path recordingsDirectory,
                      ProgramVersion version, QLocale locale = QLocale(),
                      QObject* parent = nullptr);

    QString locationText() const;
    /// Empty until it was added up.
    const QString& storageSizeText() const { return m_storageSizeText; }
    QString versionText() const { return QString::fromStdString(m_version.version); }
    QString buildText() const { return QString::fromStdString(m_version.build); }

    /// The panel came up: the size is computed anew.
    Q_INVOKABLE void appear();

    /// The panel is gone: a result that comes later is dropped.
    Q_INVOKABLE void disappear();

    /// Shows the library in the file manager.
    Q_INVOKABLE void revealLibrary();

    /// The updater's command; see checkForUpdatesAsked().
    Q_INVOKABLE void checkForUpdates() { emit checkForUpdatesAsked(); }

signals:
    void storageSizeTextChanged();
    void checkForUpdatesAsked();

private:
    struct Appearance {};

    void setStorageSizeText(QString text);

    Ports m_ports;
    std::filesystem::path m_recordingsDirectory;
    ProgramVersion m_version;
    QLocale m_locale;
    QString m_storageSizeText;
    std::shared_ptr<Appearance> m_appearance; ///< There while the panel is; held weakly by blocks.
};

} // namespace tavi
