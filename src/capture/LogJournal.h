#pragma once

#include "base/SerialQueue.h"
#include "capture/CursorTrackingService.h"
#include "capture/JournalFile.h"
#include "project/RecordingMetadata.h"

#include <filesystem>
#include <memory>
#include <string>

namespace tavi {

/// Keeps the journal of one take while it is recorded (project/TakeJournal.h), so that nothing but
/// the last moment is lost when its recorder dies.
///
/// Opened before the take's video, updated while the take runs, and removed when the files that
/// it stands in for are on the disk; without the removal the destructor leaves it to TakeRecovery.
/// Threads: one thread at a time, that of the take; the disk is written on "com.tavi.journal", so
/// that a slow one holds nobody up.
class LogJournal {
public:
    /// Creates the journal with what is known of the take so far. Null where the folder takes none:
    /// the take then is recorded all the same.
    static std::unique_ptr<LogJournal> create(const std::filesystem::path& path,
                                              const RecordingMetadata& facts);

    /// Waits until all is written.
    ~LogJournal();

    /// Adds what is new since the last call: events, images, facts. To be called every 0.1 s; what
    /// came after the last call is what a crash loses. Does not wait for the disk. The lists of
    /// `facts` are not looked at.
    void update(const RecordingMetadata& facts, const CursorTrackingService& log);

    /// Makes room on the disk for the files that complete the take. Waits.
    void releaseReserve();

    /// Ends the journal and removes it. Waits. The last call.
    void remove();

private:
    explicit LogJournal(std::unique_ptr<JournalFile> file);

    void addFacts(std::string& text, const RecordingMetadata& facts);
    void addLog(std::string& text, const CursorTrackingService& log);

    std::unique_ptr<JournalFile> m_file; ///< On the queue only.
    RecordingMetadata m_facts;           ///< As they were written last; lists empty.
    std::size_t m_events = 0;
    std::size_t m_images = 0;
    SerialQueue m_queue; ///< The last: ends before what its blocks use.
};

} // namespace tavi
