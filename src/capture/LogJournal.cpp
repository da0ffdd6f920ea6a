#include "capture/LogJournal.h"

#include "project/TakeJournal.h"

#include <cmath>

namespace tavi {

namespace {

/// Seconds between two entries of the elapsed time alone: it counts only for a take
/// whose video can't be read, so it need not keep the disk awake.
constexpr double kElapsedInterval = 1;

} // namespace

std::unique_ptr<LogJournal> LogJournal::create(const std::filesystem::path& path,
                                               const RecordingMetadata& facts) {
    auto file = JournalFile::create(path);
    if (!file) {
        return nullptr;
    }
    std::string text;
    appendTakeLine(text, facts);
    file->append(text);
    return std::unique_ptr<LogJournal>(new LogJournal(std::move(file)));
}

LogJournal::LogJournal(std::unique_ptr<JournalFile> file)
    : m_file(std::move(file)),
      m_queue("com.tavi.journal") {}

LogJournal::~LogJournal() = default;

void LogJournal::update(const RecordingMetadata& facts, const CursorTrackingService& log) {
    std::string text;
    addLog(text, log);
    addFacts(text, facts);
    if (!text.empty()) {
        m_queue.post([file = m_file.get(), text = std::move(text)] { file->append(text); });
    }
}

/// Images first, so that no event stands in front of the image that it names.
void LogJournal::addLog(std::string& text, const CursorTrackingService& log) {
    for (const CursorTrackingService::Image& image : log.cursorImagesFrom(m_images)) {
        appendImageLine(text, image.info, image.bytes);
        ++m_images;
    }
    for (; m_events < log.events().size(); ++m_events) {
        appendEventLine(text, log.events()[m_events]);
    }
}

void LogJournal::addFacts(std::string& text, const RecordingMetadata& facts) {
    RecordingMetadata known = facts;
    known.cursorEvents.clear();
    known.cursorImageInfos.clear();
    known.duration = m_facts.duration;
    const bool isNew = known != m_facts;
    const bool isDue =
        !text.empty() || std::abs(facts.duration - m_facts.duration) >= kElapsedInterval;
    if (!isNew && !isDue) {
        return;
    }
    known.duration = facts.duration;
    m_facts = std::move(known);
    if (isNew) {
        appendTakeLine(text, m_facts);
    } else {
        appendElapsedLine(text, m_facts.duration);
    }
}

void LogJournal::releaseReserve() {
    m_queue.sync([this] { m_file->releaseReserve(); });
}

void LogJournal::remove() {
    m_queue.sync([this] { m_file->remove(); });
}

} // namespace tavi
