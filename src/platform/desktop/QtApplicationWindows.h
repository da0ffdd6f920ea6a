#pragma once

#include "app/ApplicationWindows.h"

#include <QWindow>

#include <memory>
#include <string_view>
#include <vector>

namespace tavi {

/// True where minimizing takes a Wayland window off the screen. Compositors that tile ignore it.
/// `desktop` is $XDG_CURRENT_DESKTOP; one without a name counts as tiling.
bool minimizesWindows(std::string_view desktop);

/// The program's windows as Qt knows them: those with a task-bar entry, no panels, popups and tips.
///
/// Under Wayland no program can bring its minimized window back: it is shown as a new one. Where
/// minimizing does nothing, a window is hidden instead.
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
