#include "platform/desktop/HttpDownloads.h"

#include "support/RunLoop.h"
#include "support/TemporaryFolder.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <gmock/gmock.h>

namespace tavi {
namespace {

using test::readFile;
using test::runLoopUntil;
using testing::HasSubstr;

/// A server that answers each request in the way that the test says.
class Server {
public:
    Server() {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, [this] {
            QTcpSocket* socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                if (socket->readAll().contains("\r\n\r\n")) {
                    answer(*socket);
                }
            });
        });
    }
    std::string url() const {
        return "http://127.0.0.1:" + std::to_string(m_server.serverPort()) + "/feed";
    }
    /// Sends a whole answer.
    void serve(const QByteArray& body) {
        answer = [body](QTcpSocket& socket) {
            socket.write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) +
                         "\r\nConnection: close\r\n\r\n" + body);
            socket.disconnectFromHost();
        };
    }

    std::function<void(QTcpSocket&)> answer;

private:
    QTcpServer m_server;
};

class HttpDownloadsTest : public testing::Test {
protected:
    /// The text, or the problem.
    std::string text(const std::string& url, std::int64_t limit = 1000, double seconds = 10) {
        std::optional<Result<std::string, DownloadError>> result;
        downloads.fetchText(url, limit, seconds, [&](auto answer) { result = std::move(answer); });
        EXPECT_TRUE(runLoopUntil([&] { return result.has_value(); }));
        return result->has_value() ? **result : result->error().description();
    }
    /// "" or the problem.
    std::string file(std::int64_t length, double seconds = 10) {
        std::optional<Result<void, DownloadError>> result;
        downloads.fetchFile(server.url(), folder / "file", length, seconds,
                            [&](auto answer) { result = answer; });
        EXPECT_TRUE(runLoopUntil([&] { return result.has_value(); }));
        return result->has_value() ? "" : result->error().description();
    }

    test::TemporaryFolder folder;
    Server server;
    HttpDownloads downloads{HttpDownloads::Transport::any};
};

TEST_F(HttpDownloadsTest, fetchesTextsAndFiles) {
    server.serve("hello");
    EXPECT_EQ(text(server.url()), "hello");
    EXPECT_EQ(file(5), "");
    EXPECT_EQ(readFile(folder / "file"), "hello");
    EXPECT_EQ(text(server.url()), "hello") << "one after the other";
}

TEST_F(HttpDownloadsTest, unencryptedAddressesAreRefusedByDefault) {
    HttpDownloads careful;
    for (const std::string& url : {server.url(), std::string("file:///etc/passwd"),
                                   std::string("ftp://localhost/"), std::string()}) {
        std::optional<Result<std::string, DownloadError>> result;
        careful.fetchText(url, 1000, 10, [&](auto answer) { result = std::move(answer); });
        ASSERT_TRUE(runLoopUntil([&] { return result.has_value(); }));
        ASSERT_FALSE(result->has_value());
        EXPECT_THAT(result->error().description(), HasSubstr("https"));
    }
}

TEST_F(HttpDownloadsTest, whatIsLargerThanAllowedIsNotRead) {
    server.answer = [](QTcpSocket& socket) { // endless
        socket.write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n");
        auto* timer = new QTimer(&socket);
        QObject::connect(timer, &QTimer::timeout, &socket,
                         [&socket] { socket.write(QByteArray(4096, 'x')); });
        timer->start(1);
    };
    EXPECT_THAT(text(server.url(), 100'000), HasSubstr("more than"));
    EXPECT_THAT(file(100'000), HasSubstr("more than"));
    EXPECT_FALSE(std::filesystem::exists(folder / "file"));
}

TEST_F(HttpDownloadsTest, aServerThatSaysNothingIsGivenUp) {
    server.answer = [](QTcpSocket&) {};
    EXPECT_THAT(text(server.url(), 1000, 0.1), HasSubstr("in time"));
    EXPECT_THAT(file(5, 0.1), HasSubstr("in time"));
}

TEST_F(HttpDownloadsTest, aTextThatTricklesIsGivenUpWhenItsTimeIsOver) {
    server.answer = [](QTcpSocket& socket) {
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n");
        auto* timer = new QTimer(&socket);
        QObject::connect(timer, &QTimer::timeout, &socket, [&socket] { socket.write("x"); });
        timer->start(10);
    };
    EXPECT_THAT(text(server.url(), 1000, 0.3), HasSubstr("in time"));
}

TEST_F(HttpDownloadsTest, aFileThatIsTooShortIsRemoved) {
    server.serve("hell");
    EXPECT_THAT(file(5), HasSubstr("shorter"));
    EXPECT_FALSE(std::filesystem::exists(folder / "file"));
}

TEST_F(HttpDownloadsTest, errorsOfTheServerAreTold) {
    server.answer = [](QTcpSocket& socket) {
        socket.write("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
        socket.disconnectFromHost();
    };
    EXPECT_THAT(text(server.url()), HasSubstr("can't be reached"));
}

TEST_F(HttpDownloadsTest, redirectionsInACircleEnd) {
    server.answer = [](QTcpSocket& socket) {
        socket.write("HTTP/1.1 302 Found\r\nLocation: /feed\r\nContent-Length: 0\r\n\r\n");
    };
    EXPECT_THAT(text(server.url()), HasSubstr("can't be reached"));
}

TEST_F(HttpDownloadsTest, aFileThatCannotBeWrittenIsTold) {
    server.serve("hello");
    std::filesystem::create_directory(folder / "file");
    EXPECT_THAT(file(5), HasSubstr("saved"));
}

TEST_F(HttpDownloadsTest, aFetchThatIsCancelledTellsNothing) {
    server.answer = [](QTcpSocket&) {};
    bool isTold = false;
    downloads.fetchText(server.url(), 10, 10, [&](const auto&) { isTold = true; });
    downloads.cancel();
    server.serve("hello");
    EXPECT_EQ(text(server.url()), "hello");
    EXPECT_FALSE(isTold);
}

} // namespace
} // namespace tavi
