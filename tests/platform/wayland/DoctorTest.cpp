#include "platform/portal/SwayDesktop.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <gtest/gtest.h>

namespace tavi {
namespace {

/// What `tavi doctor --json` tells in the environment of this process.
std::map<QString, QJsonObject> examine() {
    QProcess doctor;
    doctor.start(QStringLiteral(TAVI_BINARY_DIR "/tavi"), {"doctor", "--json"});
    EXPECT_TRUE(doctor.waitForFinished(120'000));
    EXPECT_EQ(doctor.exitCode(), 0);
    std::map<QString, QJsonObject> findings;
    for (const auto& finding : QJsonDocument::fromJson(doctor.readAllStandardOutput()).array()) {
        findings[finding.toObject()["name"].toString()] = finding.toObject();
    }
    return findings;
}

TEST(Doctor, tellsWhatAWaylandDesktopLacksAndWhatThatCosts) {
    const test::SwayDesktop desktop;
    auto findings = examine();
    EXPECT_TRUE(findings["session"]["works"].toBool());
    EXPECT_TRUE(findings["session"]["detail"].toString().startsWith("Wayland (sway)"));
    EXPECT_EQ(findings["sources"]["detail"].toString(), "displays only");
    EXPECT_FALSE(findings["pointer"]["works"].toBool()) << "this portal doesn't tell of it";
    EXPECT_TRUE(findings["pointer"]["cost"].toString().contains("automatic zoom"));
    EXPECT_FALSE(findings["tray"]["works"].toBool());
    EXPECT_TRUE(findings["displays"]["detail"].toString().startsWith("HEADLESS-1 1280x720"));
    for (const auto& [name, finding] : findings) {
        EXPECT_EQ(finding["works"].toBool(), finding["fix"].toString().isEmpty())
            << name.toStdString();
    }
}

TEST(Doctor, withoutASessionSaysSoAndGoesOn) {
    const std::map<std::string, std::string> without{
        {"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}, {"XDG_SESSION_TYPE", ""}};
    const test::Surroundings surroundings(without);
    auto findings = examine();
    EXPECT_FALSE(findings["session"]["works"].toBool());
    EXPECT_TRUE(findings.contains("library"));
    EXPECT_FALSE(findings.contains("pointer"));
}

} // namespace
} // namespace tavi
