#pragma once

#include "capture/StatusItem.h"

#include <QIcon>

#include <functional>
#include <string>

namespace tavi {

/// Items in the desktop's tray (StatusNotifierItem, or the tray of older panels). Where no tray is
/// there, a notification with an action stands in for the item; where nobody shows notifications
/// either, the window's task-bar entry and `tavi stop` remain.
///
/// A click on the item, or on the only line of its menu, is the click. The title stands in the
/// tip. Thread: main, of a QApplication.
class TrayStatusItems final : public StatusItems {
public:
    /// Draws a symbol of the program's set in one colour.
    using DrawIcon = std::function<QIcon(const std::string& symbolName)>;

    explicit TrayStatusItems(DrawIcon drawIcon) : m_drawIcon(std::move(drawIcon)) {}

    std::unique_ptr<StatusItem> makeItem(const StatusItemLook& look,
                                         std::function<void()> onClick) override;

private:
    DrawIcon m_drawIcon;
};

} // namespace tavi
