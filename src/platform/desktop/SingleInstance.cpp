#include "platform/desktop/SingleInstance.h"

#include <QFile>
#include <QLocalSocket>
#include <QThread>
#include <QUrl>

#include <memory>

namespace tavi {

namespace {

constexpr int kPatience = 5000;            // milliseconds that the first start may need to answer
constexpr int kPause = 50;                 // milliseconds between two tries
constexpr qint64 kLongestLine = 64 * 1024; // bytes; a path is far shorter
const QByteArray kTaken = "ok\n";

QString textOf(const std::filesystem::path& path) {
    return QFile::decodeName(QByteArray::fromStdString(path.string()));
}

/// One line: "show", and the take's URL behind it if there is one.
QByteArray request(const std::optional<std::filesystem::path>& take) {
    const QByteArray url = take
                               ? ' ' + QUrl::fromLocalFile(textOf(std::filesystem::absolute(*take)))
                                           .toEncoded(QUrl::FullyEncoded)
                               : QByteArray();
    return "show" + url + '\n';
}

/// Absent for a line that no start of this program sends.
std::optional<QString> takeOf(const QByteArray& line) {
    const QByteArray words = line.trimmed();
    if (words == "show") {
        return QString();
    }
    const QUrl url = QUrl::fromEncoded(words.mid(5), QUrl::StrictMode);
    return words.startsWith("show ") && url.isLocalFile() ? std::optional(url.toLocalFile())
                                                          : std::nullopt;
}

bool send(const QString& socketName, const QByteArray& line) {
    QLocalSocket socket;
    socket.connectToServer(socketName);
    if (!socket.waitForConnected(kPatience)) {
        return false;
    }
    socket.write(line);
    QByteArray answer;
    while (!answer.contains('\n') && socket.waitForReadyRead(kPatience)) {
        answer += socket.readAll();
    }
    return answer == kTaken;
}

} // namespace

SingleInstance::SingleInstance(const std::filesystem::path& folder, QObject* parent)
    : QObject(parent),
      m_socket(textOf(folder / "application.socket")),
      m_lock(textOf(folder / "application.lock")) {
    m_lock.setStaleLockTime(0); // only a dead process makes a lock stale
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::serve);
}

bool SingleInstance::claim() {
    if (!m_lock.tryLock()) {
        return false;
    }
    QLocalServer::removeServer(m_socket);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    m_server.listen(m_socket);
    return true;
}

bool SingleInstance::handOver(const std::optional<std::filesystem::path>& take) {
    const QByteArray line = request(take);
    for (int waited = 0; waited < kPatience; waited += kPause) {
        if (send(m_socket, line)) {
            return true;
        }
        QThread::msleep(kPause); // the first holds its lock a moment before it listens
    }
    return false;
}

void SingleInstance::serve() {
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            if (!socket->canReadLine()) {
                if (socket->bytesAvailable() > kLongestLine) {
                    socket->abort();
                }
                return;
            }
            const auto take = takeOf(socket->readLine(kLongestLine));
            socket->write(take ? kTaken : QByteArray("no\n"));
            socket->disconnectFromServer();
            if (take) {
                emit asked(*take);
            }
        });
    }
}

} // namespace tavi
