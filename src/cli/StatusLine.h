#pragma once

#include "capture/OverlayPanel.h"

#include <string>

namespace tavi::cli {

/// One line on a terminal that is written over and over; nothing where standard error is
/// none. The destructor clears it.
class StatusLine {
public:
    StatusLine();
    ~StatusLine();
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    void show(const std::string& text);
    void clear() { show(""); }

private:
    bool m_isTerminal;
    std::string m_text;
};

/// Countdowns on a terminal.
class TerminalPanels final : public OverlayPanels {
public:
    explicit TerminalPanels(StatusLine& line) : m_line(line) {}

    std::unique_ptr<OverlayPanel> makePanel(const Rect& frame, int value) override;

private:
    StatusLine& m_line;
};

} // namespace tavi::cli
