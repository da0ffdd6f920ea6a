#pragma once

#include <functional>
#include <string>
#include <vector>

/// Marks a text of a Message for translation (`context` is "Errors"); tools/update-translations
/// looks for it.
#define TAVI_TEXT(context, text) text

namespace tavi {

/// A text for users that is not in their language yet. The parts of the program that stand on the
/// standard library alone tell their errors with it; a window translates them (base/MessageText.h).
struct Message {
    std::string text; ///< English, or what has no language, as a path; %1 to %9 are the arguments.
    std::vector<Message> arguments;

    Message() = default;
    Message(std::string words) : text(std::move(words)) {}
    Message(const char* words) : text(words) {}
    Message(std::string words, std::vector<Message> others)
        : text(std::move(words)),
          arguments(std::move(others)) {}

    /// Gives a text in another language, placeholders included.
    using Translate = std::function<std::string(const std::string&)>;

    /// The text with its arguments; all of them go through `translate`.
    std::string in(const Translate& translate) const;

    std::string english() const;

    bool operator==(const Message& other) const {
        return text == other.text && arguments == other.arguments;
    }
};

} // namespace tavi
