#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace tavi {

/// Where a file is made before it takes its place: a hidden name beside
/// `target`, another one at each call, since one that is being given up may meet the next.
/// Thread: any.
std::filesystem::path workingPath(const std::filesystem::path& target);

/// Makes the finished file `working` durable and puts it in the place of
/// `target`. On failure `working` is removed, `target` is as it was, and the
/// system's error number is returned; 0 for success.
int putInPlace(const std::filesystem::path& working, const std::filesystem::path& target);

/// Writes `bytes` as the file `target`, which appears whole or not at all.
/// Returns the system's error number, 0 for success.
int writeInPlace(const std::filesystem::path& target, std::span<const std::uint8_t> bytes);

} // namespace tavi
