#pragma once

#include "app/ApplicationWindows.h"

#include <QWindow>

#include <memory>
#include <vector>

namespace tavi {

/// The program's windows as Qt knows them: those with a task-bar entry, no panels, popups and tips.
class QtApplicationWindows final : public ApplicationWindows {
public:
    ApplicationWindow* keyWindow() override;
    std::vector<ApplicationWindow*> windows() override;
    void activateIgnoringOtherApps() override;

private:
    class Window final : public ApplicationWindow {
    public:
        explicit Window(QWindow* window) : m_window(window) {}

        void miniaturize() override;
        bool isMiniaturized() const override;
        void deminiaturize() override;

    private:
        QWindow* m_window;
    };

    ApplicationWindow* add(QWindow* window);

    std::vector<std::unique_ptr<Window>> m_handles; ///< Those of the last call.
};

} // namespace tavi
