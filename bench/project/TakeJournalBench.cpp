#include "project/TakeJournal.h"
#include "support/HourLog.h"

#include <benchmark/benchmark.h>

namespace tavi {
namespace {

std::string hourJournal() {
    const RecordingMetadata metadata = bench::hourMetadata();
    std::string journal;
    appendTakeLine(journal, metadata);
    for (const CursorEvent& event : metadata.cursorEvents) {
        appendEventLine(journal, event);
    }
    return journal;
}

/// What an event costs the thread of the take, and the disk.
void appendEvents(benchmark::State& state) {
    const std::vector<CursorEvent> log = bench::hourLog(10'000);
    std::size_t bytes = 0;
    for (auto _ : state) {
        std::string journal;
        for (const CursorEvent& event : log) {
            appendEventLine(journal, event);
        }
        bytes = journal.size();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * log.size()));
    state.counters["bytes/event"] = static_cast<double>(bytes) / static_cast<double>(log.size());
}
BENCHMARK(appendEvents)->Unit(benchmark::kMillisecond);

/// What the recovery of an hour's take costs.
void decodeHourJournal(benchmark::State& state) {
    const std::string journal = hourJournal();
    for (auto _ : state) {
        benchmark::DoNotOptimize(decodeTakeJournal(journal));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * journal.size()));
}
BENCHMARK(decodeHourJournal)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavi
