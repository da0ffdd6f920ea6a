#pragma once

#include <functional>
#include <memory>
#include <string>

namespace tavi {

/// What an item of the desktop's tray looks like at first.
struct StatusItemLook {
    std::string symbolName;        ///< The icon, by its name in the program's set; shown in red.
    std::string accessibilityText; ///< What a screen reader says for the icon.
    std::string title;             ///< Beside the icon where the tray has room for text.
};

/// An item in the desktop's tray. Main thread. The destructor removes it; a click may lead to it.
class StatusItem {
public:
    virtual ~StatusItem() = default;
    virtual void setTitle(const std::string& title) = 0;
};

/// Makes items.
class StatusItems {
public:
    virtual ~StatusItems() = default;

    /// `onClick` is called on the main thread, at each click on the item.
    virtual std::unique_ptr<StatusItem> makeItem(const StatusItemLook& look,
                                                 std::function<void()> onClick) = 0;
};

} // namespace tavi
