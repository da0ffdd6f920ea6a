#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>

#include <filesystem>
#include <optional>
#include <string>

namespace tavi {

/// One running application per user: the first start listens below the user's runtime folder, a
/// later one hands over what it was started with and goes.
///
/// The lock lies beside the socket; one that a dead process left is taken over. Thread: main.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    /// `folder` is private to the user.
    explicit SingleInstance(const std::filesystem::path& folder, QObject* parent = nullptr);

    /// True when this process is the first, which listens from now on.
    bool claim();

    /// Hands over to the first: the take to open, or nothing to open. True when it took it.
    bool handOver(const std::optional<std::filesystem::path>& take);

signals:
    /// A later start asks to be shown, with a take's folder or an empty text.
    void asked(const QString& take);

private:
    void serve();

    QString m_socket;
    QLockFile m_lock;
    QLocalServer m_server;
};

} // namespace tavi
