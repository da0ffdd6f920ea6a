#pragma once

#include "app/Appcast.h"
#include "app/PackageConfiguration.h"
#include "app/UpdateServices.h"
#include "base/Executor.h"
#include "base/Timers.h"

#include <QObject>
#include <QString>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace tavi {

/// Looks for newer versions in the package's feed, and fetches one when the user asks.
///
/// A file is offered only if its signature is right, and never installed by this program. Without
/// a feed the package manager brings updates, and the command says so.
/// States: idle -> checking -> fetching -> idle. Checks of its own, at start and once a day, tell
///         only of a newer version; what the user asked for is always answered.
/// Thread: main; the file's digest is computed in the background.
class UpdaterController : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY isBusyChanged)
    /// The newest version that the feed has; empty when none is newer than the running one.
    Q_PROPERTY(QString availableVersion READ availableVersion NOTIFY availableVersionChanged)
    /// The verified file; empty before one was fetched.
    Q_PROPERTY(QString offeredFile READ offeredFile NOTIFY offeredFileChanged)

public:
    static constexpr double kCheckInterval = 24 * 60 * 60; ///< Seconds.
    static constexpr std::int64_t kLargestFeed = 1 << 20;  ///< Bytes.
    static constexpr std::int64_t kLargestFile = std::int64_t{1} << 30;
    static constexpr double kFeedSeconds = 30;  ///< For the whole feed.
    static constexpr double kStallSeconds = 60; ///< For a file that doesn't come.

    /// All outlive it.
    struct Ports {
        Downloads& downloads;
        Signatures& signatures;
        Timers& timers;
        Executor& main;
        Executor& background;
        std::filesystem::path folder; ///< Where fetched files go; made when needed.
    };

    UpdaterController(Ports ports, PackageConfiguration package, std::string runningVersion,
                      QObject* parent = nullptr);
    ~UpdaterController() override;

    /// Begins with the checks of its own.
    void startUpdater();

    /// The command: checks, fetches what is newer, and tells what came of it.
    Q_INVOKABLE void checkForUpdates();

    bool isBusy() const { return m_isBusy; }
    QString availableVersion() const { return m_availableVersion; }
    QString offeredFile() const;

signals:
    void isBusyChanged();
    void availableVersionChanged();
    void offeredFileChanged();

    /// Something that the user must know.
    void told(const QString& message);

private:
    struct Alive {};

    void check();
    void checkItself();
    void readFeed(const Result<std::string, DownloadError>& feed);
    void fetch(const AppcastItem& item);
    void verify(const AppcastItem& item, const std::filesystem::path& path);
    void offer(const AppcastItem& item, const std::filesystem::path& path, bool isGenuine);
    void finish(const QString& message);
    void setBusy(bool isBusy);
    void setAvailableVersion(const QString& version);

    Ports m_ports;
    PackageConfiguration m_package;
    std::string m_runningVersion;
    std::shared_ptr<Alive> m_alive = std::make_shared<Alive>(); ///< Held weakly by blocks.
    std::unique_ptr<Timers::Timer> m_timer;
    bool m_isBusy = false;
    bool m_isAnswerWanted = false; ///< The user waits for it.
    QString m_availableVersion;
    std::filesystem::path m_offeredFile;
};

} // namespace tavi
