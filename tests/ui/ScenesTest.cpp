#include "LongerTexts.h"
#include "Scene.h"
#include "app/program/Translations.h"

#include <QAccessible>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QQuickItem>
#include <gtest/gtest.h>

#include <set>

namespace tavi::test {
namespace {

std::string nameOf(const QString& file) {
    return QFileInfo(file).completeBaseName().toStdString();
}

bool isText(const QQuickItem& item) {
    return item.inherits("QQuickText");
}

/// The part of the window in which an item can be seen.
QRectF windowFor(const QQuickItem& item) {
    QRectF area(QPointF(), item.window()->size());
    for (const QQuickItem* parent = item.parentItem(); parent; parent = parent->parentItem())
        if (parent->clip()) {
            area &= parent->mapRectToScene(parent->boundingRect());
        }
    return area;
}

/// Texts in lists that scroll may lie below the edge.
bool scrolls(const QQuickItem& item) {
    for (const QQuickItem* parent = item.parentItem(); parent; parent = parent->parentItem())
        if (parent->inherits("QQuickFlickable")) {
            return true;
        }
    return false;
}

/// Empty when the text is there as a whole, else what is wrong with it.
QString cutOff(const QQuickItem& item) {
    const QRectF painted(0, 0, item.property("contentWidth").toDouble(),
                         item.property("contentHeight").toDouble());
    if (item.property("truncated").toBool() || painted.width() > item.width() + 0.5 ||
        painted.height() > item.height() + 0.5) {
        return QStringLiteral("is cut");
    }
    const QRectF window = windowFor(item).adjusted(-1, -1, 1, 1);
    const QRectF place = item.mapRectToScene(item.boundingRect());
    const bool isBeside = place.left() < window.left() || place.right() > window.right();
    if (isBeside || (!scrolls(item) && !window.contains(place))) {
        return QStringLiteral("leaves the window");
    }
    return {};
}

/// The two texts lie over one another.
bool overlap(const QQuickItem& one, const QQuickItem& other) {
    const QRectF common =
        one.mapRectToScene(QRectF(0, 0, one.property("contentWidth").toDouble(), one.height()))
            .intersected(other.mapRectToScene(
                QRectF(0, 0, other.property("contentWidth").toDouble(), other.height())));
    return common.width() > 1 && common.height() > 1;
}

const std::set<std::string> kWithoutControls{"splash", "countdown-overlay"};

class Scenes : public testing::TestWithParam<QString> {};

size_t coloursOf(const QImage& picture) {
    std::set<QRgb> colours;
    for (int y = 0; y < picture.height(); y += 3)
        for (int x = 0; x < picture.width(); x += 3) {
            colours.insert(picture.pixel(x, y));
        }
    return colours.size();
}

/// Every node of the accessibility tree below `node` that can be seen.
void walk(QAccessibleInterface* node, const std::function<void(QAccessibleInterface&)>& visitor) {
    if (!node || node->state().invisible) {
        return;
    }
    visitor(*node);
    for (int i = 0; i < node->childCount(); ++i) {
        walk(node->child(i), visitor);
    }
}

bool isControl(QAccessibleInterface& node) {
    const bool isWindow = node.role() == QAccessible::Window || node.role() == QAccessible::Client;
    return !isWindow && (node.state().focusable || node.actionInterface() != nullptr);
}

/// Fails on a control without a name; how many controls there are.
int expectNamedControls(Scene& scene) {
    int controls = 0;
    walk(QAccessible::queryAccessibleInterface(&scene.window()), [&](QAccessibleInterface& node) {
        if (!isControl(node)) {
            return;
        }
        ++controls;
        EXPECT_NE(node.text(QAccessible::Name).trimmed().toStdString(), "")
            << "role " << node.role() << ", " << node.object()->metaObject()->className();
        EXPECT_NE(node.role(), QAccessible::NoRole);
    });
    return controls;
}

/// Fails on a stop of the Tab key without a name; how many stops there are.
int expectNamedTabStops(Scene& scene) {
    int stops = 0;
    scene.visit([&](QQuickItem& item) {
        if (!item.activeFocusOnTab() || !item.isEnabled()) {
            return;
        }
        ++stops;
        QAccessibleInterface* node = QAccessible::queryAccessibleInterface(&item);
        ASSERT_NE(node, nullptr) << item.metaObject()->className();
        EXPECT_FALSE(node->text(QAccessible::Name).trimmed().isEmpty())
            << item.metaObject()->className();
    });
    return stops;
}

void expectWholeTexts(Scene& scene) {
    scene.visit([](QQuickItem& item) {
        if (!isText(item) || item.property("userText").toBool()) {
            return;
        }
        const QString problem = cutOff(item);
        EXPECT_TRUE(problem.isEmpty()) << '"' << item.property("text").toString().toStdString()
                                       << "\" " << problem.toStdString();
    });
}

/// Texts of the bar on top don't run into one another.
void expectHeaderTextsApart(Scene& scene) {
    std::vector<QQuickItem*> texts;
    scene.visit([&](QQuickItem& item) {
        if (isText(item) && item.mapToScene({}).y() < 44 && item.height() < 44) {
            texts.push_back(&item);
        }
    });
    for (size_t i = 0; i < texts.size(); ++i)
        for (size_t j = i + 1; j < texts.size(); ++j) {
            EXPECT_FALSE(overlap(*texts[i], *texts[j]))
                << texts[i]->property("text").toString().toStdString() << " / "
                << texts[j]->property("text").toString().toStdString();
        }
}

TEST_P(Scenes, areShownWithoutAComplaintAndNameEveryControl) {
    QAccessible::setActive(true);
    Scene scene(GetParam());
    EXPECT_EQ(scene.warnings().join(u'\n').toStdString(), "");
    EXPECT_GT(coloursOf(scene.picture()), 10U);
    const int controls = expectNamedControls(scene);
    const int stops = expectNamedTabStops(scene);
    if (!kWithoutControls.contains(nameOf(GetParam()))) {
        EXPECT_GT(controls, 0);
        EXPECT_GT(stops, 0);
    }
}

TEST_P(Scenes, keepTextsThatAreLongerWholeAndApart) {
    const LongerTexts translator;
    Scene scene(GetParam());
    expectWholeTexts(scene);
    expectHeaderTextsApart(scene);
}

void expectWordsOfThisPlatform(Scene& scene) {
    scene.visit([](QQuickItem& item) {
        for (const char* property : {"text", "hint"})
            for (const char* word : {"Finder", "System Settings", "Input Monitoring", "(⌘"}) {
                const QString text = item.property(property).toString();
                EXPECT_FALSE(text.contains(QString::fromUtf8(word))) << text.toStdString();
            }
    });
}

TEST_P(Scenes, speakOfThisPlatformInEveryLanguage) {
    for (const auto language : {QLocale::English, QLocale::German}) {
        const Translations translations{QLocale(language)};
        Scene scene(GetParam());
        expectWordsOfThisPlatform(scene);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Scenes, testing::ValuesIn(sceneFiles()), [](const auto& file) {
    return QFileInfo(file.param).completeBaseName().replace(u'-', u'_').toStdString();
});

} // namespace
} // namespace tavi::test
