#pragma once

#include <string>
#include <vector>

namespace tavi {

/// Small facts that the program remembers about its user, beside the settings. Thread: main.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// Empty when nothing, or something else, is stored under the key.
    virtual std::vector<std::string> stringArray(const std::string& key) const = 0;
    virtual void setStringArray(const std::string& key, const std::vector<std::string>& value) = 0;
};

} // namespace tavi
