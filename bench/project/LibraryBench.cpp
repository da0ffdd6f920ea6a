#include "app/RecordingLibrary.h"
#include "project/RecordingFolder.h"
#include "project/RecordingMetadataJson.h"
#include "support/HourLog.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>

namespace tavi {
namespace {

/// A library of takes with 2,000 events each, gone at the end.
class Library {
public:
    explicit Library(std::int64_t takes) {
        std::string pattern = (std::filesystem::temp_directory_path() / "tavi-bench-XXXXXX");
        m_folder = mkdtemp(pattern.data());
        const std::string json = encodeRecordingMetadata(bench::hourMetadata(2000)).value();
        for (std::int64_t i = 0; i < takes; ++i) {
            const auto folder = m_folder / std::to_string(i);
            std::filesystem::create_directory(folder);
            std::ofstream(folder / take::kVideo) << "";
            std::ofstream(folder / take::kMetadata) << json;
        }
        m_bytes = static_cast<std::int64_t>(json.size()) * takes;
    }
    ~Library() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    const std::filesystem::path& folder() const { return m_folder; }
    std::int64_t bytes() const { return m_bytes; }

private:
    std::filesystem::path m_folder;
    std::int64_t m_bytes = 0;
};

/// 1,000 takes under 1 s, and linear in bytes.
void scanLibrary(benchmark::State& state) {
    const Library library(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(scanRecordings(library.folder(), Date{}));
    }
    state.SetBytesProcessed(state.iterations() * library.bytes());
}
BENCHMARK(scanLibrary)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace tavi
