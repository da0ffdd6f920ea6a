#pragma once

#include "app/ScreenPermission.h"
#include "capture/ShareableContent.h"

namespace tavi {

/// Under X11 a program that may connect to the display may read it; there is nobody to ask.
class DesktopScreenPermission final : public ScreenPermission {
public:
    /// `content` outlives it and answers quickly.
    explicit DesktopScreenPermission(ShareableContentSource& content) : m_content(content) {}

    bool preflight() override { return m_content.content().has_value(); }
    void request(std::function<void(bool)> answer) override { answer(preflight()); }

private:
    ShareableContentSource& m_content;
};

} // namespace tavi
