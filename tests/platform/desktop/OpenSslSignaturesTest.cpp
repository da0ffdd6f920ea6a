#include "platform/desktop/OpenSslSignatures.h"

#include "support/TemporaryFolder.h"

#include <QByteArray>
#include <gtest/gtest.h>

namespace tavi {
namespace {

/// RFC 8032, section 7.1, test 3.
const std::string kKey =
    QByteArray::fromHex("fc51cd8e6218a1a38da47ed00230f0580816ed13ba3303ac5deb911548908025")
        .toBase64()
        .toStdString();
const std::string kSignature =
    QByteArray::fromHex("6291d657deec24024827e69c3abe01a30ce548a284743a445e3680d7db5ac3ac"
                        "18ff9b538d16f290ae67f760984dc6594a7c15e9716ed28dc027beceea1ec40a")
        .toBase64()
        .toStdString();
const std::string kMessage = "\xaf\x82";

TEST(OpenSslSignatures, acceptsTheVectorOfTheStandard) {
    EXPECT_TRUE(OpenSslSignatures().isSignedBy(kKey, kMessage, kSignature));
}

TEST(OpenSslSignatures, refusesEverySmallestChange) {
    const OpenSslSignatures signatures;
    EXPECT_FALSE(signatures.isSignedBy(kKey, "\xaf\x83", kSignature));
    EXPECT_FALSE(signatures.isSignedBy(kKey, "", kSignature));
    for (std::size_t i = 0; i < 64; ++i) {
        auto bytes = QByteArray::fromBase64(QByteArray::fromStdString(kSignature));
        bytes[static_cast<qsizetype>(i)] = static_cast<char>(bytes[static_cast<qsizetype>(i)] ^ 1);
        EXPECT_FALSE(signatures.isSignedBy(kKey, kMessage, bytes.toBase64().toStdString())) << i;
    }
}

TEST(OpenSslSignatures, refusesWhatIsNoKeyOrSignature) {
    const OpenSslSignatures signatures;
    for (const std::string& text : {std::string(), std::string("AAAA"), kKey + "AAAA",
                                    std::string("!") + kKey, std::string(10'000, 'A')}) {
        EXPECT_FALSE(signatures.isSignedBy(text, kMessage, kSignature));
        EXPECT_FALSE(signatures.isSignedBy(kKey, kMessage, text));
    }
}

TEST(OpenSslSignatures, digestsFilesOfAnySize) {
    const test::TemporaryFolder folder;
    const OpenSslSignatures signatures;
    test::writeFile(folder / "abc", "abc");
    EXPECT_EQ(signatures.sha512(folder / "abc"),
              "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
              "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f");
    test::writeFile(folder / "empty", "");
    EXPECT_EQ(signatures.sha512(folder / "empty").substr(0, 16), "cf83e1357eefb8bd");
    test::writeFile(folder / "million", std::string(1'000'000, 'a'));
    EXPECT_EQ(signatures.sha512(folder / "million").substr(0, 16), "e718483d0ce76964");
    EXPECT_EQ(signatures.sha512(folder / "missing"), "");
    EXPECT_EQ(signatures.sha512(folder.path()), "") << "a folder is no file";
}

} // namespace
} // namespace tavi
