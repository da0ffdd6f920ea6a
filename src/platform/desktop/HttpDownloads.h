#pragma once

#include "app/UpdateServices.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

#include <memory>

namespace tavi {

/// Fetches by HTTP over TLS, and by nothing less, redirections included.
class HttpDownloads final : public Downloads {
public:
    enum class Transport {
        encrypted, ///< https only.
        any,       ///< Also http, for servers of tests.
    };

    explicit HttpDownloads(Transport transport = Transport::encrypted);
    ~HttpDownloads() override;

    void fetchText(const std::string& url, std::int64_t limit, double seconds, Text done) override;
    void fetchFile(const std::string& url, const std::filesystem::path& path, std::int64_t length,
                   double seconds, File done) override;
    void cancel() override;

private:
    struct Fetch;

    void start(const std::string& url, std::unique_ptr<Fetch> fetch);
    void read();
    void finish();
    void refuse(const Message& problem);

    Transport m_transport;
    QNetworkAccessManager m_network;
    std::unique_ptr<Fetch> m_fetch;
};

} // namespace tavi
