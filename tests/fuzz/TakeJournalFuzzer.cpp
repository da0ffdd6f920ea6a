#include "project/RecordingMetadataJson.h"
#include "project/TakeJournal.h"

#include <cstdint>
#include <cstdlib>

/// What is read makes a sidecar, with as many images as its table has rows, and is read again
/// from a journal of its own.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto take = tavi::decodeTakeJournal({reinterpret_cast<const char*>(data), size});
    if (!take) {
        return 0;
    }
    const tavi::RecordingMetadata& metadata = take->metadata;
    if (!tavi::encodeRecordingMetadata(metadata) ||
        take->cursorImageDatas.size() != metadata.cursorImageInfos.size()) {
        std::abort();
    }
    std::string journal;
    tavi::appendTakeLine(journal, metadata);
    for (std::size_t i = 0; i < take->cursorImageDatas.size(); ++i) {
        tavi::appendImageLine(journal, metadata.cursorImageInfos[i], take->cursorImageDatas[i]);
    }
    for (const tavi::CursorEvent& event : metadata.cursorEvents) {
        tavi::appendEventLine(journal, event);
    }
    if (tavi::decodeTakeJournal(journal) != take) {
        std::abort();
    }
    return 0;
}
