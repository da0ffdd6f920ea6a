#include "editor/InspectorViewModel.h"

#include "editor/EditorScreenViewModel.h"
#include "editor/ExportSettingsViewModel.h"
#include "editor/InspectorControls.h"
#include "editor/ZoomTabViewModel.h"
#include "support/OpenEditor.h"

#include <QCoreApplication>
#include <QFile>
#include <QSignalSpy>
#include <QTranslator>
#include <QXmlStreamReader>
#include <gmock/gmock.h>

#include <set>

namespace tavi {
namespace {

using Role = InspectorViewModel::Role;

/// The take of a minute with an inspector beside it.
class Inspector : public test::OpenEditor {
protected:
    void SetUp() override {
        open();
        pass();
        style = std::make_unique<InspectorViewModel>(*editor);
        zoom = std::make_unique<ZoomTabViewModel>(*editor);
        film = std::make_unique<ExportSettingsViewModel>(*editor);
    }

    int row(const QString& label, const QString& kind) const {
        for (int i = 0; i < style->rowCount(); ++i) {
            if (at(i, Role::LabelRole) == label && at(i, Role::KindRole) == kind) {
                return i;
            }
        }
        return -1;
    }
    QVariant at(int row, int role) const { return style->data(style->index(row), role); }

    ZoomKeyframe select(double start) {
        editor->seek(start);
        editor->addKeyframe();
        const auto added =
            std::ranges::find(editor->project().keyframes, start, &ZoomKeyframe::timestamp);
        editor->selectKeyframe(added->id);
        return *added;
    }

    std::unique_ptr<InspectorViewModel> style;
    std::unique_ptr<ZoomTabViewModel> zoom;
    std::unique_ptr<ExportSettingsViewModel> film;
};

TEST_F(Inspector, sliderEditsTheProjectAndItsText) {
    const int padding = row("Background Size", "slider");
    QSignalSpy told(style.get(), &InspectorViewModel::dataChanged);
    style->setValue(padding, 0.118);
    EXPECT_DOUBLE_EQ(editor->project().appearanceSettings.padding, 0.12);
    EXPECT_EQ(at(padding, Role::TextRole), "12%");
    EXPECT_EQ(told.size(), 1);
    pass();
    EXPECT_DOUBLE_EQ(saved().appearanceSettings.padding, 0.12);
}

TEST_F(Inspector, sliderOnTheSameStepSavesNothing) {
    removeSaved();
    style->setValue(row("Background Size", "slider"), 0.0301);
    pass();
    EXPECT_FALSE(isSaved());
}

TEST_F(Inspector, rowsComeAndGoWithTheBackground) {
    const int tiles = row("Background", "tiles");
    EXPECT_GE(row("Blur Radius", "slider"), 0) << "a fresh take is blurred";
    QSignalSpy resets(style.get(), &InspectorViewModel::modelReset);
    style->setValue(tiles, 3);
    EXPECT_EQ(row("Blur Radius", "slider"), -1);
    EXPECT_EQ(row("Preset", "gradients"), tiles + 1);
    style->setValue(tiles, 5);
    EXPECT_EQ(row("Preset", "wallpapers"), tiles + 1);
    EXPECT_EQ(row("Animate", "toggle"), tiles + 2);
    EXPECT_EQ(resets.size(), 0) << "what stays keeps its place";
}

TEST_F(Inspector, colorIsShownAndSet) {
    style->setValue(row("Background", "tiles"), 2);
    style->setSolidColor(1, 0.5, 0, 1);
    EXPECT_EQ(editor->project().appearanceSettings.solidColor, (CodableColor{1, 0.5, 0, 1}));
    EXPECT_EQ(at(row("Color", "color"), Role::TextRole), "#ffff8000");
}

TEST_F(Inspector, titleMayCarryASwitch) {
    EXPECT_FALSE(at(row("APPEARANCE", "title"), Role::HasSwitchRole).toBool());
    const int cursor = row("CURSOR", "title");
    EXPECT_TRUE(at(cursor, Role::HasSwitchRole).toBool());
    style->setValue(cursor, 0);
    EXPECT_FALSE(editor->project().cursorSettings.showCursor);
}

TEST_F(Inspector, choicesCarryTheirSymbols) {
    const QVariantList choices = at(row("Style", "choice"), Role::ChoicesRole).toList();
    ASSERT_EQ(choices.size(), 3);
    EXPECT_EQ(choices[1].toMap()["text"], "System");
    EXPECT_EQ(choices[1].toMap()["symbol"], "cursorarrow");
}

TEST_F(Inspector, takeWithoutACameraHasANote) {
    EXPECT_GE(row("No camera recorded", "note"), 0);
    EXPECT_EQ(row("Position", "choice"), -1);
}

TEST_F(Inspector, whatIsNotARowIsIgnored) {
    const EditProject before = editor->project();
    style->setValue(-1, 1);
    style->setValue(1000, 1);
    style->setValue(row("APPEARANCE", "title"), 1);
    style->setValue(row("Background", "tiles"), std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(editor->project(), before);
}

TEST_F(Inspector, intensityGoesInTenths) {
    EXPECT_EQ(zoom->intensityText(), "50%");
    zoom->setIntensity(0.68);
    EXPECT_DOUBLE_EQ(editor->autoZoomSettings().aggressiveness, 0.7);
    EXPECT_EQ(zoom->intensityText(), "70%");
    zoom->setIntensity(4);
    EXPECT_EQ(zoom->intensity(), 1);
}

TEST_F(Inspector, withoutASelectionNothingIsShownOfAKeyframe) {
    EXPECT_FALSE(zoom->hasSelection());
    EXPECT_EQ(zoom->title(), "");
    EXPECT_TRUE(zoom->details().isEmpty());
    zoom->setSpeed(1);
    zoom->setEasing(1);
    zoom->deleteKeyframe();
    EXPECT_FALSE(zoom->hasKeyframes());
}

TEST_F(Inspector, selectedKeyframeIsShownAndEdited) {
    select(30);
    select(10.5);
    EXPECT_EQ(zoom->title(), "KEYFRAME 1");
    EXPECT_EQ(zoom->startText(), "00:10:15");
    EXPECT_EQ(zoom->endText(), "00:12:15");
    EXPECT_EQ(zoom->details(), QStringList({"896", "504", "192", "108"}));
    EXPECT_EQ(zoom->speedText(), "0.5s");
    zoom->setSpeed(0.04);
    EXPECT_EQ(editor->project().keyframes[0].transitionDuration, 0.1);
    zoom->setEasing(4);
    EXPECT_EQ(editor->project().keyframes[0].easingType, EasingType::spring);
    EXPECT_EQ(saved().keyframes, editor->project().keyframes) << "at once";
    zoom->deleteKeyframe();
    EXPECT_EQ(editor->project().keyframes.size(), 1U);
    EXPECT_FALSE(zoom->hasSelection());
}

TEST_F(Inspector, easingsHaveTheirNames) {
    EXPECT_EQ(zoom->easings(),
              QStringList({"Linear", "Ease In", "Ease Out", "Ease In-Out", "Spring"}));
}

TEST_F(Inspector, resultIsToldOnceThereIsOne) {
    EXPECT_EQ(zoom->resultText(), "");
    editor->changeProject([](EditProject& p) {
        p.cursorEvents = {{5, 200, 200, CursorEventType::leftMouseDown}};
        p.videoHeight = 720;
    });
    editor->generateKeyframes();
    settle();
    EXPECT_EQ(zoom->resultText(), "1 keyframes generated");
}

TEST_F(Inspector, presetSetsTheSizeAlone) {
    editor->changeProject([](EditProject& p) { p.outputSettings = {{1920, 1080}, 24, true}; });
    film->chooseResolution(2);
    EXPECT_EQ(editor->project().outputSettings, (OutputSettings{{3840, 2160}, 24, true}));
    EXPECT_EQ(film->resolution(), 2);
    EXPECT_FALSE(film->isCustomResolution());
}

TEST_F(Inspector, customSizeIsTypedAndKeepsTheSourcesAspect) {
    film->chooseResolution(3);
    EXPECT_TRUE(film->isCustomResolution());
    EXPECT_EQ(film->resolution(), 3);
    film->commitWidth("1921");
    EXPECT_EQ(editor->project().outputSettings.resolution, (Size{1922, 1082}));
    film->commitHeight("400");
    EXPECT_EQ(film->customWidth(), "712");
    film->commitWidth("");
    film->commitHeight("0");
    EXPECT_EQ(film->customHeight(), "400");
}

TEST_F(Inspector, customRateIsTyped) {
    EXPECT_EQ(film->frameRates(), QStringList({"30 fps", "60 fps", "Custom"}));
    EXPECT_EQ(film->frameRate(), 1);
    film->chooseFrameRate(2);
    film->commitFPS("500");
    EXPECT_EQ(editor->project().outputSettings.fps, 120);
    film->commitFPS("x");
    EXPECT_EQ(film->customFPSText(), "120");
    film->chooseFrameRate(0);
    EXPECT_EQ(editor->project().outputSettings.fps, 30);
    EXPECT_FALSE(film->isCustomFPS());
}

/// What the translators are asked for the inspector's table of controls.
std::set<std::string> textsForTranslators() {
    QFile file(TAVI_TEST_DATA "/../../translations/tavlin_de.ts");
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    std::set<std::string> texts;
    std::string context;
    while (!xml.atEnd()) {
        xml.readNextStartElement();
        if (xml.isStartElement() && xml.name() == QLatin1String("name")) {
            context = xml.readElementText().toStdString();
        } else if (xml.isStartElement() && xml.name() == QLatin1String("source") &&
                   context == "Inspector") {
            texts.insert(xml.readElementText().toStdString());
        }
    }
    return texts;
}

TEST(InspectorTexts, areAllToldToTheTranslators) {
    const auto known = textsForTranslators();
    EXPECT_THAT(known, testing::Not(testing::IsEmpty()));
    for (const InspectorControl& control : inspectorControls()) {
        EXPECT_TRUE(known.contains(std::string(control.label))) << control.label;
        for (const InspectorControl::Choice& choice : control.choices) {
            EXPECT_TRUE(known.contains(std::string(choice.label))) << choice.label;
        }
    }
}

class Backwards : public QTranslator {
public:
    bool isEmpty() const override { return false; }
    QString translate(const char*, const char* text, const char*, int) const override {
        QString reversed = QString::fromUtf8(text);
        if (!reversed.contains(u'%')) { // what is filled in has to be found
            std::reverse(reversed.begin(), reversed.end());
        }
        return reversed;
    }
};

TEST_F(Inspector, isWrittenInTheUsersLanguage) {
    Backwards translator;
    QCoreApplication::installTranslator(&translator);
    EXPECT_EQ(at(row("eziS dnuorgkcaB", "slider"), Role::TextRole), "3%");
    const QVariantList choices = at(row("elytS", "choice"), Role::ChoicesRole).toList();
    EXPECT_EQ(choices[1].toMap()["text"], "metsyS");
    EXPECT_EQ(zoom->easings()[0], "raeniL");
    EXPECT_EQ(film->frameRates()[2], "motsuC");
    QCoreApplication::removeTranslator(&translator);
}

TEST(ExportText, remainingTimeIsWholeSeconds) {
    EXPECT_EQ(EditorScreenViewModel::remainingText(5.9), "5s left");
    EXPECT_EQ(EditorScreenViewModel::remainingText(65), "1m 5s left");
    EXPECT_EQ(EditorScreenViewModel::remainingText(3700), "61m 40s left");
}

TEST_F(Inspector, reopenedTakeShowsWhetherItsSizeIsAPreset) {
    editor->changeProject([](EditProject& p) { p.outputSettings = {{1000, 1000}, 25, false}; });
    const ExportSettingsViewModel reopened(*editor);
    EXPECT_TRUE(reopened.isCustomResolution());
    EXPECT_TRUE(reopened.isCustomFPS());
}

} // namespace
} // namespace tavi
