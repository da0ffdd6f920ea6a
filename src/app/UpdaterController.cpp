#include "app/UpdaterController.h"

#include "app/PathText.h"
#include "base/MessageText.h"

#include <QUrl>

#include <utility>

namespace tavi {

namespace {

/// The last part of the address, if it is a plain file name.
std::string fileNameOf(const std::string& url) {
    const QString name = QUrl(QString::fromStdString(url)).fileName();
    const bool isPlain = !name.isEmpty() && !name.startsWith(u'.') && !name.contains(u'/');
    return isPlain ? name.toStdString() : std::string("tavlin-update");
}

} // namespace

UpdaterController::UpdaterController(Ports ports, PackageConfiguration package,
                                     std::string runningVersion, QObject* parent)
    : QObject(parent),
      m_ports(std::move(ports)),
      m_package(std::move(package)),
      m_runningVersion(std::move(runningVersion)) {}

UpdaterController::~UpdaterController() {
    m_ports.downloads.cancel();
}

QString UpdaterController::offeredFile() const {
    return textOf(m_offeredFile);
}

void UpdaterController::startUpdater() {
    if (m_package.updateFeed.empty()) {
        return;
    }
    m_timer = m_ports.timers.repeat(kCheckInterval, [this] { checkItself(); });
    checkItself();
}

void UpdaterController::checkItself() {
    if (!m_isBusy) {
        check();
    }
}

void UpdaterController::checkForUpdates() {
    if (m_package.updateFeed.empty()) {
        emit told(tr("Tavlin was installed by your system's package manager, which also brings its "
                     "updates."));
        return;
    }
    m_isAnswerWanted = true; // a check that runs already answers too
    if (!m_isBusy) {
        check();
    }
}

void UpdaterController::check() {
    setBusy(true);
    m_ports.downloads.fetchText(m_package.updateFeed, kLargestFeed, kFeedSeconds,
                                [this](const auto& feed) { readFeed(feed); });
}

void UpdaterController::readFeed(const Result<std::string, DownloadError>& feed) {
    if (!feed) {
        finish(translated(feed.error().message()));
        return;
    }
    const auto items = parseAppcast(*feed);
    if (!items) {
        finish(translated(items.error().message()));
        return;
    }
    const auto update = newestUpdate(*items, m_runningVersion);
    setAvailableVersion(update ? QString::fromStdString(update->version) : QString());
    if (!update) {
        finish(
            tr("Tavlin %1 is the newest version.").arg(QString::fromStdString(m_runningVersion)));
    } else if (m_isAnswerWanted) {
        fetch(*update);
    } else {
        m_isAnswerWanted = true;
        finish(tr("Tavlin %1 is available. \"Check for Updates...\" fetches it.")
                   .arg(m_availableVersion));
    }
}

void UpdaterController::fetch(const AppcastItem& item) {
    if (item.length > kLargestFile) {
        finish(tr("The update is refused: its file is too large."));
        return;
    }
    std::error_code error;
    std::filesystem::create_directories(m_ports.folder, error);
    const auto path = m_ports.folder / fileNameOf(item.url);
    m_ports.downloads.fetchFile(item.url, path, item.length, kStallSeconds,
                                [this, item, path](const Result<void, DownloadError>& fetched) {
                                    if (fetched) {
                                        verify(item, path);
                                    } else {
                                        finish(translated(fetched.error().message()));
                                    }
                                });
}

void UpdaterController::verify(const AppcastItem& item, const std::filesystem::path& path) {
    m_ports.background.post([this, alive = std::weak_ptr(m_alive), item, path,
                             key = m_package.updateKey, &main = m_ports.main,
                             &signatures = m_ports.signatures] {
        const std::string digest = signatures.sha512(path);
        const bool isGenuine =
            !digest.empty() &&
            signatures.isSignedBy(key, updateMessage(item.version, item.length, digest),
                                  item.edSignature);
        main.post([this, alive, item, path, isGenuine] {
            if (!alive.expired()) {
                offer(item, path, isGenuine);
            }
        });
    });
}

void UpdaterController::offer(const AppcastItem& item, const std::filesystem::path& path,
                              bool isGenuine) {
    if (!isGenuine) {
        std::error_code error;
        std::filesystem::remove(path, error);
        finish(tr("The update is refused: its signature is wrong."));
        return;
    }
    m_offeredFile = path;
    emit offeredFileChanged();
    finish(tr("Tavlin %1 was fetched and its signature is right. Install it with your package "
              "installer: %2")
               .arg(QString::fromStdString(item.version), textOf(path)));
}

void UpdaterController::finish(const QString& message) {
    setBusy(false);
    if (std::exchange(m_isAnswerWanted, false)) {
        emit told(message);
    }
}

void UpdaterController::setBusy(bool isBusy) {
    if (m_isBusy != isBusy) {
        m_isBusy = isBusy;
        emit isBusyChanged();
    }
}

void UpdaterController::setAvailableVersion(const QString& version) {
    if (m_availableVersion != version) {
        m_availableVersion = version;
        emit availableVersionChanged();
    }
}

} // namespace tavi
