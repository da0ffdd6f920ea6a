#pragma once

#include "media/ImageGenerator.h"
#include "media/MediaLibrary.h"
#include "project/RecordingMetadata.h"

#include <filesystem>

namespace tavi {

/// Completes takes whose recorder died: from the journal in their folder it makes the
/// sidecar and the cursor images that a stop would have written.
///
/// Dying at any moment, or two at once, does no harm: the sidecar appears whole and last, and the
/// journal goes after it. A take that somebody records just now is left alone.
/// Thread: any, several at once.
class TakeRecovery {
public:
    /// The ports outlive the object.
    TakeRecovery(MediaLibrary& media, ImageFiles& imageFiles);

    /// Looks at a take's folder; true when it was completed now. Nothing is changed, and it is no
    /// error, where there is no video or no journal, where the journal tells nothing, and where
    /// the folder can't be written.
    bool recover(const std::filesystem::path& folder) const;

private:
    bool complete(const std::filesystem::path& folder) const;
    void refine(RecordingMetadata& metadata, const std::filesystem::path& folder) const;

    MediaLibrary& m_media;
    ImageFiles& m_imageFiles;
};

} // namespace tavi
