#include "app/TaviApp.h"
#include "ui/QuickSetup.h"

#include <QMetaMethod>
#include <QQmlComponent>
#include <QQmlEngine>
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

namespace tavi::test {
namespace {

/// What made-up view models have beyond those of the program, for the tests' own use.
const std::set<std::string> kOwn{"calls",   "problem", "fill",  "fillFromPortal",
                                 "missing", "wanted",  "opened"};

struct Pair {
    const char* fake;
    const QMetaObject& real;
};

void PrintTo(const Pair& pair, std::ostream* out) {
    *out << pair.fake;
}

std::set<std::string> methodsOf(const QMetaObject& type, int first) {
    std::set<std::string> names;
    for (int i = first; i < type.methodCount(); ++i) {
        names.insert(type.method(i).name().toStdString());
    }
    return names;
}

/// Properties tell of their changes by signals of their own; those need no other check.
bool isOwn(const std::string& name) {
    return kOwn.contains(name) || name.ends_with("Changed");
}

class Fakes : public testing::TestWithParam<Pair> {
protected:
    std::unique_ptr<QObject> create() {
        setUpEngine(m_engine);
        QQmlComponent component(
            &m_engine,
            QUrl::fromLocalFile(
                QStringLiteral(TAVI_FAKES "/%1.qml").arg(QLatin1String(GetParam().fake))));
        std::unique_ptr<QObject> fake(component.create());
        EXPECT_TRUE(fake) << component.errorString().toStdString();
        return fake;
    }

    QQmlEngine m_engine;
};

TEST_P(Fakes, haveOnlyWhatTheViewModelsHave) {
    const std::unique_ptr<QObject> fake = create();
    ASSERT_TRUE(fake);
    const QMetaObject& type = *fake->metaObject();
    for (int i = QObject::staticMetaObject.propertyCount(); i < type.propertyCount(); ++i) {
        const char* name = type.property(i).name();
        EXPECT_TRUE(isOwn(name) || GetParam().real.indexOfProperty(name) >= 0) << name;
    }
    const auto real = methodsOf(GetParam().real, 0);
    for (const std::string& name : methodsOf(type, QObject::staticMetaObject.methodCount())) {
        EXPECT_TRUE(isOwn(name) || real.contains(name)) << name;
    }
}

TEST_P(Fakes, canBeWrittenWhereTheViewModelsCan) {
    const std::unique_ptr<QObject> fake = create();
    ASSERT_TRUE(fake);
    const QMetaObject& real = GetParam().real;
    for (int i = QObject::staticMetaObject.propertyCount(); i < real.propertyCount(); ++i) {
        const QMetaProperty property = real.property(i);
        const int index = fake->metaObject()->indexOfProperty(property.name());
        const bool isFake = index >= 0;
        EXPECT_TRUE(!isFake || !property.isWritable() ||
                    fake->metaObject()->property(index).isWritable())
            << property.name();
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, Fakes,
    testing::Values(Pair{"FakeAppViewModel", AppViewModel::staticMetaObject},
                    Pair{"FakeHomeViewModel", HomeViewModel::staticMetaObject},
                    Pair{"FakeNotificationViewModel", NotificationViewModel::staticMetaObject},
                    Pair{"FakeSettingsViewModel", SettingsViewModel::staticMetaObject},
                    Pair{"FakeSettingsManager", SettingsManager::staticMetaObject},
                    Pair{"FakeThumbnails", TakeThumbnails::staticMetaObject},
                    Pair{"FakeRecordingViewModel", RecordingViewModel::staticMetaObject},
                    Pair{"FakeInputMonitoring", InputMonitoringService::staticMetaObject},
                    Pair{"FakeTaviApp", TaviApp::staticMetaObject}),
    [](const auto& pair) { return std::string(pair.param.fake); });

} // namespace
} // namespace tavi::test
