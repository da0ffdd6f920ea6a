#include "platform/desktop/HttpDownloads.h"

#include <QFile>
#include <QNetworkRequest>
#include <QUrl>

#include <functional>
#include <optional>
#include <utility>

namespace tavi {

/// One fetch, its limits and where its bytes go.
struct HttpDownloads::Fetch {
    Fetch() { timer->setSingleShot(true); }
    ~Fetch() {
        // The timer may be what calls us: it goes once its signal has returned.
        timer->stop();
        timer->disconnect();
        timer->deleteLater();
    }
    Fetch(const Fetch&) = delete;
    Fetch& operator=(const Fetch&) = delete;

    std::int64_t limit = 0;        ///< Bytes.
    bool isLimitExact = false;     ///< Fewer bytes are an error too.
    bool isProgressEnough = false; ///< The clock starts anew whenever something comes.
    std::chrono::duration<double> patience{};
    std::function<bool(const QByteArray&)> take; ///< False when it can't be written.
    std::function<void(std::optional<Message> problem)> done;

    std::int64_t bytes = 0;
    QTimer* timer = new QTimer;
    QNetworkReply* reply = nullptr;
};

HttpDownloads::HttpDownloads(Transport transport) : m_transport(transport) {}

HttpDownloads::~HttpDownloads() {
    cancel();
}

void HttpDownloads::fetchText(const std::string& url, std::int64_t limit, double seconds,
                              Text done) {
    auto fetch = std::make_unique<Fetch>();
    fetch->limit = limit;
    fetch->patience = std::chrono::duration<double>(seconds);
    const auto text = std::make_shared<std::string>();
    fetch->take = [text](const QByteArray& bytes) {
        text->append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        return true;
    };
    fetch->done = [text, done = std::move(done)](const std::optional<Message>& problem) {
        problem ? done(fail(DownloadError{*problem})) : done(std::move(*text));
    };
    start(url, std::move(fetch));
}

void HttpDownloads::fetchFile(const std::string& url, const std::filesystem::path& path,
                              std::int64_t length, double seconds, File done) {
    auto fetch = std::make_unique<Fetch>();
    fetch->limit = length;
    fetch->isLimitExact = true;
    fetch->isProgressEnough = true;
    fetch->patience = std::chrono::duration<double>(seconds);
    const auto file =
        std::make_shared<QFile>(QFile::decodeName(QByteArray::fromStdString(path.string())));
    fetch->take = [file](const QByteArray& bytes) {
        const bool isOpen = file->isOpen() || file->open(QIODevice::WriteOnly);
        return isOpen && file->write(bytes) == bytes.size();
    };
    fetch->done = [file, done = std::move(done)](std::optional<Message> problem) {
        if (!problem && (!file->flush() || file->error() != QFileDevice::NoError)) {
            problem = Message(TAVI_TEXT("Errors", "The update can't be saved: %1."),
                              {file->errorString().toStdString()});
        }
        file->close();
        if (problem) {
            file->remove();
            done(fail(DownloadError{*problem}));
        } else {
            done({});
        }
    };
    start(url, std::move(fetch));
}

void HttpDownloads::start(const std::string& url, std::unique_ptr<Fetch> fetch) {
    m_fetch = std::move(fetch);
    const QUrl address(QString::fromStdString(url));
    const bool isAllowed =
        address.scheme() == QLatin1String("https") ||
        (m_transport == Transport::any && address.scheme() == QLatin1String("http"));
    if (!isAllowed) {
        QObject::connect(m_fetch->timer, &QTimer::timeout, [this] {
            refuse(TAVI_TEXT("Errors", "Updates are fetched over https only."));
        });
        m_fetch->timer->start(0);
        return;
    }
    QNetworkRequest request(address);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(5);
    m_fetch->reply = m_network.get(request);
    // A server that sends faster than the limit allows fills no memory meanwhile.
    m_fetch->reply->setReadBufferSize(1 << 18);
    QObject::connect(m_fetch->reply, &QNetworkReply::readyRead, [this] { read(); });
    QObject::connect(m_fetch->reply, &QNetworkReply::finished, [this] { finish(); });
    QObject::connect(m_fetch->timer, &QTimer::timeout, [this] {
        refuse(TAVI_TEXT("Errors", "The server of the updates doesn't answer in time."));
    });
    m_fetch->timer->start(std::chrono::duration_cast<std::chrono::milliseconds>(m_fetch->patience));
}

void HttpDownloads::read() {
    const QByteArray bytes = m_fetch->reply->readAll();
    m_fetch->bytes += bytes.size();
    if (m_fetch->bytes > m_fetch->limit) {
        refuse(TAVI_TEXT("Errors", "The server of the updates sends more than it said or may."));
    } else if (!m_fetch->take(bytes)) {
        refuse(TAVI_TEXT("Errors", "The update can't be saved."));
    } else if (m_fetch->isProgressEnough && !bytes.isEmpty()) {
        m_fetch->timer->start();
    }
}

void HttpDownloads::finish() {
    if (m_fetch->reply->error() != QNetworkReply::NoError) {
        refuse({TAVI_TEXT("Errors", "The updates can't be reached: %1."),
                {m_fetch->reply->errorString().toStdString()}});
        return;
    }
    QNetworkReply* reply = m_fetch->reply;
    read();
    if (!m_fetch || m_fetch->reply != reply) {
        return; // that was too much
    }
    if (m_fetch->isLimitExact && m_fetch->bytes != m_fetch->limit) {
        refuse(TAVI_TEXT("Errors", "The update's file is shorter than it should be."));
        return;
    }
    const auto done = m_fetch->done;
    cancel();
    done(std::nullopt);
}

void HttpDownloads::refuse(const Message& problem) {
    const auto done = m_fetch->done;
    cancel();
    done(problem);
}

void HttpDownloads::cancel() {
    const auto fetch = std::move(m_fetch);
    if (fetch && fetch->reply != nullptr) {
        fetch->reply->disconnect();
        fetch->reply->abort();
        fetch->reply->deleteLater();
    }
}

} // namespace tavi
