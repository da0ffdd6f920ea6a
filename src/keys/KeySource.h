#pragma once

#include <functional>
#include <string>

namespace tavi {

/// Where key presses of the whole desktop come from.
///
/// A held key counts once. Threads: one.
class KeySource {
public:
    /// Gets whole key lines.
    using Handler = std::function<void(const std::string& line)>;

    virtual ~KeySource() = default;

    /// Readable when there is news.
    virtual int descriptor() const = 0;

    /// Handles what has come; false when nothing will come any more.
    virtual bool readEvents() = 0;

    /// True while presses would be seen.
    virtual bool isListening() const = 0;
};

} // namespace tavi
