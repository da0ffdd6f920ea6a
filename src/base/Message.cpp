#include "base/Message.h"

namespace tavi {

std::string Message::in(const Translate& translate) const {
    const std::string words = translate(text);
    std::string out;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const auto argument = words[i] == '%' && i + 1 < words.size()
                                  ? static_cast<std::size_t>(words[i + 1] - '1')
                                  : arguments.size();
        if (argument < arguments.size()) {
            out += arguments[argument].in(translate);
            ++i;
        } else {
            out += words[i];
        }
    }
    return out;
}

std::string Message::english() const {
    return in([](const std::string& words) { return words; });
}

} // namespace tavi
