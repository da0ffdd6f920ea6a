#pragma once

#include "platform/x11/XTestServer.h"
#include "support/TemporaryFolder.h"

#include <QImage>
#include <QPoint>
#include <QProcess>
#include <QSize>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tavi::test {

/// The real program in a window of a real desktop (an X server with a window
/// manager), used by pointer and keys.
///
/// Everything lies in a folder of its own and ends with the object.
class TavlinWindow {
public:
    explicit TavlinWindow(const std::string& screen = "1280x800x24");
    ~TavlinWindow();

    std::filesystem::path library() const { return m_folder / "Documents" / "Tavlin"; }

    /// A take with a red film; a higher `age` is a later date.
    void addTake(const std::string& name, int age);

    /// Starts the program and waits for its window.
    void start(const QStringList& arguments = {});

    QSize size();
    void resize(QSize size);

    /// What the window shows.
    QImage picture();
    /// The colour is that at a place, or close to it.
    bool shows(QPoint place, const QColor& colour);

    /// Clicks a button of the mouse at a place of the window.
    void click(QPoint place, int button = 1, const std::string& modifier = "");
    /// Moves with the left button down from one place to the next.
    void drag(const std::vector<QPoint>& places);
    /// Presses keys, one after the other.
    template<typename... Keys>
    void press(const Keys&... keys) {
        (pressKey(keys), ...);
    }
    void type(const std::string& text);

    /// Waits until two pictures, taken a moment apart, are the same, and the program is not about
    /// to draw another.
    void waitUntilStill();
    /// Waits until a condition holds; false when it doesn't for a long time.
    bool eventually(const std::function<bool()>& condition);
    void pass(double seconds);

    bool hasEnded();
    /// Processor time that the program took until now.
    double processorSeconds();
    /// How many threads it has, and how many files and connections are open.
    std::size_t threads();
    std::size_t descriptors();

protected:
    /// What a program that is run in the window's surroundings prints.
    std::string output(const QString& program, const QStringList& arguments);
    /// For the program, before it is started.
    void setVariable(const QString& name, const QString& value);
    const TemporaryFolder& folder() const { return m_folder; }
    /// The window's number in the X server, in decimal digits.
    const std::string& id() const { return m_window; }

private:
    QStringList moveTo(QPoint place) const;
    void pressKey(const std::string& key);
    /// Whether all threads of the program wait for something.
    bool isAsleep();
    /// How many entries a folder of the program in /proc has.
    std::size_t processEntries(const std::string& folder);

    TemporaryFolder m_folder;
    XTestServer m_server;
    QProcess m_manager;
    QProcess m_program;
    std::string m_window; ///< Number of the window in the X server.
};

} // namespace tavi::test
