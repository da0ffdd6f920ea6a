#pragma once

#include "platform/portal/PrivateDesktop.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace tavi::test {

/// GNOME's compositor and portal without a screen: one empty monitor of 1280 x 720, and a person
/// whose hand the test moves.
class GnomeDesktop : public PrivateDesktop {
public:
    static constexpr int kWidth = 1280;
    static constexpr int kHeight = 720;
    static constexpr std::uint32_t kColour = 0x2050A0; ///< Of the terminal, 0xRRGGBB.

    /// Whose portal answers: GNOME's own, or one that the test plays.
    enum class Portal { ofGnome, ofTheTest };

    explicit GnomeDesktop(Portal portal = Portal::ofGnome);
    ~GnomeDesktop();

    /// In pixels from the monitor's top left corner.
    void movePointer(double x, double y);
    void click(double x, double y);

    /// Fills the monitor with a terminal that changes `perSecond` times a second.
    void openTerminal(int perSecond = 10);
    /// One of that size in pixels, without a frame.
    void openTerminal(int width, int height);
    void closeTerminal();

    /// Has the compositor cast the window that has the focus; its node.
    std::uint32_t castWindow();
    /// Ends that cast as the desktop's own "stop" does.
    void stopCast();

    /// Shares the first monitor in the portal's dialog, if it is open. Windows that were clicked
    /// before would keep the dialog behind them.
    void answerDialog();

    /// The compositor dies.
    void endSession();

    /// Below the home of the person.
    std::filesystem::path tokenFile() const;

private:
    QVariantList call(const QString& service, const QString& path, const QString& interface,
                      const QString& method, const QVariantList& arguments = {});
    void startPortal();
    QDBusMessage ask(const QString& service, const QString& path, const QString& interface,
                     const QString& method, const QVariantList& arguments) const;
    void takeTheMouse();
    void launchTerminal(const std::vector<std::string>& options, int perSecond);

    pid_t m_compositor = 0;
    pid_t m_terminal = 0;
    QDBusConnection m_hand;
    QString m_session; ///< Of the remote desktop, by which pointers move.
    QString m_stream;  ///< That positions count in.
    QString m_cast;    ///< Of castWindow().
};

} // namespace tavi::test
