#pragma once

#include "capture/OverlayPanel.h"
#include "capture/SourceFrames.h"
#include "capture/StatusItem.h"
#include "fakes/CallLog.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavi {

/// A panel whose calls are noted ("makePanel 5", "setFrame 0,0 640x480", "close").
class FakeOverlayPanels final : public OverlayPanels {
public:
    explicit FakeOverlayPanels(CallLog* log = nullptr) : m_log(log != nullptr ? *log : m_ownLog) {}

    std::unique_ptr<OverlayPanel> makePanel(const Rect& frame, int value) override {
        lastFrame = frame;
        m_log.note("makePanel " + std::to_string(value));
        return std::make_unique<Panel>(*this);
    }

    std::vector<std::string> calls() const { return m_log.calls(); }
    bool isOpen() const { return m_open > 0; }

    Rect lastFrame;

private:
    class Panel final : public OverlayPanel {
    public:
        explicit Panel(FakeOverlayPanels& owner) : m_owner(owner) { ++owner.m_open; }
        ~Panel() override {
            --m_owner.m_open;
            m_owner.m_log.note("close");
        }
        void setFrame(const Rect& frame) override {
            m_owner.lastFrame = frame;
            m_owner.m_log.note("setFrame");
        }
        void setValue(int value) override {
            m_owner.m_log.note("setValue " + std::to_string(value));
        }
        void orderFront() override { m_owner.m_log.note("orderFront"); }

    private:
        FakeOverlayPanels& m_owner;
    };

    CallLog m_ownLog;
    CallLog& m_log;
    int m_open = 0;
};

/// Sources that stand where the test puts them.
class FakeSourceFrames final : public SourceFrames {
public:
    std::optional<Rect> displayFrame(std::uint32_t id) override { return find(displays, id); }
    std::optional<Rect> windowFrame(std::uint32_t id) override { return find(windows, id); }

    std::map<std::uint32_t, Rect> displays;
    std::map<std::uint32_t, Rect> windows;

private:
    static std::optional<Rect> find(const std::map<std::uint32_t, Rect>& frames, std::uint32_t id) {
        const auto found = frames.find(id);
        return found == frames.end() ? std::nullopt : std::optional(found->second);
    }
};

/// A tray that shows one item.
class FakeStatusItems final : public StatusItems {
public:
    std::unique_ptr<StatusItem> makeItem(const StatusItemLook& look,
                                         std::function<void()> onClick) override {
        lastLook = look;
        titles = {look.title};
        m_onClick = std::move(onClick);
        return std::make_unique<Item>(*this);
    }

    void click() const {
        if (const auto onClick = m_onClick) {
            onClick();
        }
    }
    bool isShown() const { return m_onClick != nullptr; }

    StatusItemLook lastLook;
    std::vector<std::string> titles; ///< Of the last item, each that it had.

private:
    class Item final : public StatusItem {
    public:
        explicit Item(FakeStatusItems& owner) : m_owner(owner) {}
        ~Item() override { m_owner.m_onClick = nullptr; }
        void setTitle(const std::string& title) override { m_owner.titles.push_back(title); }

    private:
        FakeStatusItems& m_owner;
    };

    std::function<void()> m_onClick;
};

} // namespace tavi
