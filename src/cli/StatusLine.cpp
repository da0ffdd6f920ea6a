#include "cli/StatusLine.h"

#include <iostream>
#include <unistd.h>

namespace tavi::cli {

namespace {

class TerminalPanel final : public OverlayPanel {
public:
    TerminalPanel(StatusLine& line, int value) : m_line(line), m_value(value) {}
    ~TerminalPanel() override { m_line.clear(); }

    void setFrame(const Rect&) override {}
    void setValue(int value) override {
        m_value = value;
        orderFront();
    }
    void orderFront() override { m_line.show(std::to_string(m_value)); }

private:
    StatusLine& m_line;
    int m_value;
};

} // namespace

StatusLine::StatusLine() : m_isTerminal(isatty(STDERR_FILENO) == 1) {}

StatusLine::~StatusLine() {
    clear();
}

void StatusLine::show(const std::string& text) {
    if (m_isTerminal && text != m_text) {
        std::cerr << "\r\x1b[K" << text << std::flush;
        m_text = text;
    }
}

std::unique_ptr<OverlayPanel> TerminalPanels::makePanel(const Rect&, int value) {
    return std::make_unique<TerminalPanel>(m_line, value);
}

} // namespace tavi::cli
