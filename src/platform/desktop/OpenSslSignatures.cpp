#include "platform/desktop/OpenSslSignatures.h"

#include <QByteArray>

#include <array>
#include <fstream>
#include <memory>
#include <openssl/evp.h>
#include <vector>

namespace tavi {

namespace {

constexpr std::size_t kKeyBytes = 32;
constexpr std::size_t kSignatureBytes = 64;

struct FreeKey {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct FreeDigest {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using Key = std::unique_ptr<EVP_PKEY, FreeKey>;
using Digest = std::unique_ptr<EVP_MD_CTX, FreeDigest>;

/// Empty unless the text is that many bytes in strict base64.
QByteArray decoded(const std::string& text, std::size_t bytes) {
    const auto result = QByteArray::fromBase64Encoding(QByteArray::fromStdString(text),
                                                       QByteArray::Base64Encoding |
                                                           QByteArray::AbortOnBase64DecodingErrors);
    const bool isRight = result && (*result).size() == static_cast<qsizetype>(bytes);
    return isRight ? *result : QByteArray();
}

const unsigned char* bytesOf(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}

} // namespace

bool OpenSslSignatures::isSignedBy(const std::string& key, const std::string& message,
                                   const std::string& signature) const {
    const QByteArray keyBytes = decoded(key, kKeyBytes);
    const QByteArray signatureBytes = decoded(signature, kSignatureBytes);
    if (keyBytes.isEmpty() || signatureBytes.isEmpty()) {
        return false;
    }
    const Key publicKey(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr,
                                                    bytesOf(keyBytes.constData()), kKeyBytes));
    const Digest context(EVP_MD_CTX_new());
    return publicKey && context &&
           EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, publicKey.get()) == 1 &&
           EVP_DigestVerify(context.get(), bytesOf(signatureBytes.constData()), kSignatureBytes,
                            bytesOf(message.data()), message.size()) == 1;
}

std::string OpenSslSignatures::sha512(const std::filesystem::path& path) const {
    std::ifstream file(path, std::ios::binary);
    const Digest context(EVP_MD_CTX_new());
    if (!file || !context || EVP_DigestInit_ex(context.get(), EVP_sha512(), nullptr) != 1) {
        return {};
    }
    std::vector<char> block(std::size_t{1} << 16);
    while (file.read(block.data(), static_cast<std::streamsize>(block.size())), file.gcount() > 0) {
        EVP_DigestUpdate(context.get(), block.data(), static_cast<std::size_t>(file.gcount()));
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    if (file.bad() || EVP_DigestFinal_ex(context.get(), digest.data(), &length) != 1) {
        return {};
    }
    return QByteArray(reinterpret_cast<const char*>(digest.data()), static_cast<qsizetype>(length))
        .toHex()
        .toStdString();
}

} // namespace tavi
