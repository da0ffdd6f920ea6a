#include "app/RecordingLibrary.h"

#include "project/RecordingFolder.h"
#include "project/RecordingMetadataJson.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace tavi {

namespace {

namespace fs = std::filesystem;

bool isTake(const fs::directory_entry& entry) {
    std::error_code error;
    return !entry.path().filename().string().starts_with('.') && entry.is_directory(error) &&
           fs::exists(entry.path() / take::kVideo, error);
}

/// The takes in listing order, not yet looked into.
std::vector<RecordingItem> listTakes(const fs::path& directory, Date now) {
    std::vector<RecordingItem> items;
    std::error_code error;
    fs::directory_iterator entry(directory, error);
    while (!error && entry != fs::directory_iterator()) {
        if (isTake(*entry)) {
            RecordingItem& item = items.emplace_back();
            item.url = entry->path();
            item.date = now;
        }
        entry.increment(error);
    }
    if (error) {
        items.clear();
    }
    return items;
}

void readSidecar(MetadataDecoder& decoder, RecordingItem& item) {
    const auto text = readTextFile(item.url / take::kMetadata);
    if (!text) {
        return;
    }
    if (const auto summary = decoder.decodeSummary(*text)) {
        item.date = summary->startDate;
        item.duration = summary->duration;
    }
}

void readSidecars(std::vector<RecordingItem>& items, const RecoverTake& recover) {
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        MetadataDecoder decoder;
        for (std::size_t i = next++; i < items.size(); i = next++) {
            if (recover) {
                recover(items[i].url);
            }
            readSidecar(decoder, items[i]);
        }
    };
    const std::size_t threads =
        std::min<std::size_t>(std::max(1u, std::thread::hardware_concurrency()), items.size());
    std::vector<std::jthread> helpers;
    for (std::size_t i = 1; i < threads; ++i) {
        helpers.emplace_back(work);
    }
    work();
}

} // namespace

std::vector<RecordingItem> scanRecordings(const fs::path& recordingsDirectory, Date now,
                                          const RecoverTake& recover) {
    std::vector<RecordingItem> items = listTakes(recordingsDirectory, now);
    readSidecars(items, recover);
    std::stable_sort(
        items.begin(), items.end(),
        [](const RecordingItem& a, const RecordingItem& b) { return a.date > b.date; });
    return items;
}

} // namespace tavi
