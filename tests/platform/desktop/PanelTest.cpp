#include "platform/desktop/DesktopSession.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <gtest/gtest.h>

namespace tavi {
namespace {

using test::waitPatiently;

constexpr const char* kPanel = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array"><value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="32"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
    </property>
  </property>
</channel>
)";

/// The application on a desktop with a real panel, whose tray is at the top left.
class Panel : public testing::Test {
protected:
    Panel() {
        const auto settings = session.folder() / "xfce4/xfconf/xfce-perchannel-xml";
        std::filesystem::create_directories(settings);
        test::writeFile(settings / "xfce4-panel.xml", kPanel);
        panel.setProgram(QStringLiteral("xfce4-panel"));
        session.start(
            panel, panel.program(),
            {QStringLiteral("--disable-wm-check"), QStringLiteral("--sm-client-disable")});
        // The watcher's name is owned before there is a host.
        EXPECT_TRUE(waitPatiently([this] {
            return watched("IsStatusNotifierHostRegistered").toBool();
        })) << "the panel has no tray";
    }
    ~Panel() override {
        panel.kill();
        panel.waitForFinished();
    }

    QVariant watched(const char* property) {
        const QString watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
        auto get = QDBusMessage::createMethodCall(watcher, QStringLiteral("/StatusNotifierWatcher"),
                                                  QStringLiteral("org.freedesktop.DBus.Properties"),
                                                  QStringLiteral("Get"));
        get << watcher << QString::fromLatin1(property);
        const QDBusReply<QDBusVariant> answer = session.bus().call(get);
        return answer.isValid() ? answer.value().variant() : QVariant();
    }
    qsizetype items() { return watched("RegisteredStatusNotifierItems").toStringList().size(); }

    test::DesktopSession session;
    QProcess panel;
};

TEST_F(Panel, itsTrayShowsTheTakeAndAClickThereEndsIt) {
    session.startApplication();
    EXPECT_EQ(items(), 0);
    session.record();
    ASSERT_TRUE(waitPatiently([this] { return items() == 1; }));
    // The icon appears a moment after it was announced.
    EXPECT_TRUE(waitPatiently([this] {
        session.clickScreen(16, 16);
        return session.isTakeSaved();
    }));
    EXPECT_TRUE(waitPatiently([this] { return session.isWindowShown(); }));
    EXPECT_TRUE(waitPatiently([this] { return items() == 0; })) << "the item goes with the take";
}

} // namespace
} // namespace tavi
