#include "base/Message.h"

namespace tavi {

std::string Message::english() const {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto argument = text[i] == '%' && i + 1 < text.size()
                                  ? static_cast<std::size_t>(text[i + 1] - '1')
                                  : arguments.size();
        if (argument < arguments.size()) {
            out += arguments[argument].english();
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

} // namespace tavi
