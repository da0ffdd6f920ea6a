#pragma once

#include "platform/portal/PrivateDesktop.h"

#include <QDBusConnection>

namespace tavi::test {

/// GNOME's compositor and portal without a screen: one empty monitor of 1280 x 720, and a person
/// whose hand the test moves.
class GnomeDesktop : public PrivateDesktop {
public:
    static constexpr int kWidth = 1280;
    static constexpr int kHeight = 720;
    static constexpr std::uint32_t kColour = 0x2050A0; ///< Of the terminal, 0xRRGGBB.

    GnomeDesktop();
    ~GnomeDesktop();

    /// In pixels from the monitor's top left corner.
    void movePointer(double x, double y);
    void click(double x, double y);

    /// Fills the monitor with a terminal in which something moves.
    void openTerminal();

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
    void takeTheMouse();

    pid_t m_compositor = 0;
    QDBusConnection m_hand;
    QString m_session; ///< Of the remote desktop, by which pointers move.
    QString m_stream;  ///< That positions count in.
};

} // namespace tavi::test
