#include "capture/TakeRecovery.h"

#include "capture/CursorImageFiles.h"
#include "capture/JournalFile.h"
#include "project/RecordingFolder.h"
#include "project/RecordingMetadataJson.h"
#include "project/TakeJournal.h"

#include <string>
#include <system_error>
#include <vector>

namespace tavi {

namespace {

namespace fs = std::filesystem;

bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

bool hasSidecar(const fs::path& folder) {
    const auto text = readTextFile(folder / take::kMetadata);
    return text && MetadataDecoder().decodeSummary(*text).has_value();
}

/// Files under a hidden name that were about to become a sidecar or an image.
bool isUnfinished(const fs::path& path) {
    const std::string name = path.filename().string();
    return name.starts_with(std::string(".") + take::kMetadata + ".") ||
           name.starts_with(".cursor_");
}

void removeUnfinished(const fs::path& folder) {
    std::vector<fs::path> unfinished;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        if (isUnfinished(entry->path())) {
            unfinished.push_back(entry->path());
        }
    }
    for (const fs::path& path : unfinished) {
        fs::remove(path, error);
    }
}

} // namespace

TakeRecovery::TakeRecovery(MediaLibrary& media, ImageFiles& imageFiles)
    : m_media(media),
      m_imageFiles(imageFiles) {}

bool TakeRecovery::recover(const fs::path& folder) const {
    if (!isThere(folder / take::kJournal) || !isThere(folder / take::kVideo)) {
        return false;
    }
    const auto journal = JournalFile::openLeftBehind(folder / take::kJournal);
    if (!journal) {
        return false;
    }
    // The recorder may have died when all was written but the journal still there.
    const bool wasComplete = hasSidecar(folder);
    if (!wasComplete && !complete(folder)) {
        return false;
    }
    removeUnfinished(folder);
    journal->remove();
    return !wasComplete;
}

bool TakeRecovery::complete(const fs::path& folder) const {
    const auto text = readTextFile(folder / take::kJournal);
    auto take = text ? decodeTakeJournal(*text) : std::nullopt;
    if (!take) {
        return false;
    }
    refine(take->metadata, folder);
    const auto json = encodeRecordingMetadata(take->metadata);
    writeCursorImages(folder, take->cursorImageDatas, m_imageFiles);
    return json && createTextFile(folder / take::kMetadata, *json);
}

/// The files know better than the journal how long the take became and what there is.
void TakeRecovery::refine(RecordingMetadata& metadata, const fs::path& folder) const {
    const auto video = m_media.openAsset(folder / take::kVideo);
    if (video && video->duration.seconds() > 0) {
        metadata.duration = video->duration.seconds();
    }
    metadata.hasCameraRecording = metadata.hasCameraRecording || isThere(folder / take::kCamera);
}

} // namespace tavi
