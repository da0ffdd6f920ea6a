#pragma once

#include "app/UpdateServices.h"

namespace tavi {

/// Ed25519 and SHA-512 of OpenSSL's libcrypto.
class OpenSslSignatures final : public Signatures {
public:
    bool isSignedBy(const std::string& key, const std::string& message,
                    const std::string& signature) const override;
    std::string sha512(const std::filesystem::path& path) const override;
};

} // namespace tavi
