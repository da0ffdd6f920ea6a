#pragma once

#include "app/ApplicationWindows.h"
#include "app/ScreenPermission.h"
#include "app/UserDefaults.h"
#include "app/Workspace.h"
#include "fakes/CallLog.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tavi {

/// A permission that the test gives; each question is noted ("preflight", "request").
class FakeScreenPermission final : public ScreenPermission {
public:
    explicit FakeScreenPermission(CallLog& log) : m_log(log) {}

    bool preflight() override {
        m_log.note("preflight");
        return isGranted;
    }
    void request(std::function<void(bool)> answer) override {
        m_log.note("request");
        answer(isGrantedOnRequest);
    }

    bool isGranted = true;
    bool isGrantedOnRequest = false;

private:
    CallLog& m_log;
};

/// Windows that note what is done to them ("miniaturize a", "deminiaturize a", "activate").
class FakeApplicationWindows final : public ApplicationWindows {
public:
    class Window final : public ApplicationWindow {
    public:
        Window(CallLog& log, std::string windowName) : name(std::move(windowName)), m_log(log) {}

        void miniaturize() override { set(true, "miniaturize "); }
        bool isMiniaturized() const override { return m_isMiniaturized; }
        void deminiaturize() override { set(false, "deminiaturize "); }

        std::string name;

    private:
        void set(bool isMiniaturized, const char* call) {
            m_isMiniaturized = isMiniaturized;
            m_log.note(call + name);
        }

        CallLog& m_log;
        bool m_isMiniaturized = false;
    };

    explicit FakeApplicationWindows(CallLog& log) : m_log(log) {}

    ApplicationWindow* keyWindow() override { return key; }
    std::vector<ApplicationWindow*> windows() override {
        std::vector<ApplicationWindow*> all;
        for (const auto& window : m_windows) {
            all.push_back(window.get());
        }
        return all;
    }
    void activateIgnoringOtherApps() override { m_log.note("activate"); }

    Window* add(const std::string& name) {
        return m_windows.emplace_back(std::make_unique<Window>(m_log, name)).get();
    }

    Window* key = nullptr;

private:
    CallLog& m_log;
    std::vector<std::unique_ptr<Window>> m_windows;
};

/// Notes what it is asked to show ("open URL", "reveal PATH").
class FakeWorkspace final : public Workspace {
public:
    explicit FakeWorkspace(CallLog& log) : m_log(log) {}

    void openUrl(const std::string& url) override { m_log.note("open " + url); }
    void reveal(const std::filesystem::path& path) override {
        m_log.note("reveal " + path.string());
    }

private:
    CallLog& m_log;
};

class FakeUserDefaults final : public UserDefaults {
public:
    std::vector<std::string> stringArray(const std::string& key) const override {
        const auto found = arrays.find(key);
        return found == arrays.end() ? std::vector<std::string>() : found->second;
    }
    void setStringArray(const std::string& key, const std::vector<std::string>& value) override {
        arrays[key] = value;
    }

    std::map<std::string, std::vector<std::string>> arrays;
};

} // namespace tavi
