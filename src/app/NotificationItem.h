#pragma once

#include "base/Date.h"

#include <string>
#include <vector>

namespace tavi {

/// One piece of news about a release.
struct NotificationItem {
    std::string id;      ///< Of the release.
    std::string version; ///< The short version that it belongs to.
    std::string title;
    std::string body; ///< One line.
    std::string url;  ///< Of the product's changelog.
    Date date;

    bool operator==(const NotificationItem&) const = default;
};

/// The news that is built in. `changelog` is the address that the page of a release is appended
/// to, without a slash at its end.
std::vector<NotificationItem> builtInNotifications(const std::string& changelog);

} // namespace tavi
