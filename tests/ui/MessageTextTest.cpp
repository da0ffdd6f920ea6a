#include "base/MessageText.h"

#include "app/program/Translations.h"
#include "base/SystemReason.h"
#include "capture/CaptureDeviceError.h"
#include "capture/CaptureError.h"
#include "media/MediaError.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

namespace tavi {
namespace {

std::string german(const Message& message) {
    const Translations translations{QLocale(QLocale::German)};
    return translated(message).toStdString();
}

TEST(MessageText, errorsAreToldInTheUsersLanguage) {
    const MediaError full{MediaError::Kind::diskFull, "/films/a.mp4", "No space left on device"};
    EXPECT_EQ(german(full.message()),
              "Der Datenträger ist voll; bitte Platz schaffen und noch einmal versuchen: "
              "/films/a.mp4 (Auf dem Gerät ist kein Speicherplatz mehr verfügbar)");
    const CaptureError take{CaptureError::Kind::writer, {}, full.message()};
    EXPECT_EQ(german(take.message()), german(full.message())) << "also as another's cause";
    const CaptureDeviceError gone{CaptureDeviceError::Kind::gone, ""};
    EXPECT_EQ(german(gone.message()),
              "Das Gerät ist nicht da; bitte anschließen oder ein anderes Gerät wählen.");
}

/// The ones that a disk gives for its reasons.
TEST(MessageText, theSystemsReasonsAreToldInTheUsersLanguage) {
    for (const int code : {EACCES, EPERM, ENOENT, ENOSPC, EDQUOT, EROFS, EIO, EEXIST, ENOTDIR,
                           EISDIR, ENOTEMPTY, EBUSY, EFBIG, ENAMETOOLONG, EMFILE, ENOMEM}) {
        const std::string reason = systemReason(code);
        EXPECT_NE(german(reason), reason);
    }
    EXPECT_EQ(german(systemReason(ESRCH)), std::strerror(ESRCH)) << "rarer ones in its own words";
}

TEST(MessageText, withoutATranslationTheyAreEnglish) {
    const MediaError error{MediaError::Kind::cannotWrite, "/100 %1/a.mp4", "%2"};
    EXPECT_EQ(translated(error.message()).toStdString(), error.description());
}

TEST(MessageText, everyKindOfErrorHasAGermanText) {
    const auto expectGerman = [](const Message& message) {
        EXPECT_NE(german(message), message.english());
    };
    for (int kind = 0; kind <= static_cast<int>(MediaError::Kind::cannotEncode); ++kind) {
        expectGerman(MediaError{static_cast<MediaError::Kind>(kind), "file", ""}.message());
    }
    for (int kind = 0; kind <= static_cast<int>(CaptureError::Kind::camera); ++kind) {
        expectGerman(CaptureError{static_cast<CaptureError::Kind>(kind), ""}.message());
    }
    for (int kind = 0; kind <= static_cast<int>(CaptureDeviceError::Kind::unconnected); ++kind) {
        expectGerman(
            CaptureDeviceError{static_cast<CaptureDeviceError::Kind>(kind), "X"}.message());
    }
}

} // namespace
} // namespace tavi
