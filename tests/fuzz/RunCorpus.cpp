// Runs a fuzz target over every file of the folders named on the command line,
// and over every shortened and some damaged forms of each.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr int kDamagedForms = 2000;
constexpr std::size_t kMostPrefixes = 4096;

void runOne(const std::string& input) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

void runForms(const std::string& input) {
    runOne(input);
    for (std::size_t length = 0; length < std::min(input.size(), kMostPrefixes); ++length) {
        runOne(input.substr(0, length));
    }
    std::mt19937 random(1);
    for (int i = 0; i < kDamagedForms && !input.empty(); ++i) {
        std::string damaged = input;
        for (unsigned n = 1 + random() % 3; n > 0; --n) {
            damaged[random() % damaged.size()] = static_cast<char>(random());
        }
        runOne(damaged);
    }
}

} // namespace

int main(int argc, char** argv) {
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            runForms({std::istreambuf_iterator<char>(file), {}});
            ++files;
        }
    }
    std::printf("%d corpus files\n", files);
    return files > 0 ? 0 : 1;
}
