#include "project/RecordingMetadataJson.h"
#include "support/HourLog.h"

#include <benchmark/benchmark.h>

namespace tavi {
namespace {

const std::string& hourJson() {
    static const std::string json = encodeRecordingMetadata(bench::hourMetadata()).value();
    return json;
}

/// At least 200 MB/s.
void decodeHourMetadata(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(decodeRecordingMetadata(hourJson()));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * hourJson().size()));
}
BENCHMARK(decodeHourMetadata)->Unit(benchmark::kMillisecond);

void summarizeHourMetadata(benchmark::State& state) {
    MetadataDecoder decoder;
    for (auto _ : state) {
        benchmark::DoNotOptimize(decoder.decodeSummary(hourJson()));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * hourJson().size()));
}
BENCHMARK(summarizeHourMetadata)->Unit(benchmark::kMillisecond);

void encodeHourMetadata(benchmark::State& state) {
    const RecordingMetadata metadata = bench::hourMetadata();
    for (auto _ : state) {
        benchmark::DoNotOptimize(encodeRecordingMetadata(metadata));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * hourJson().size()));
}
BENCHMARK(encodeHourMetadata)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavi
