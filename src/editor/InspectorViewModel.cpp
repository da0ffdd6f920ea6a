#include "editor/InspectorViewModel.h"

#include "editor/ChoicePictures.h"

#include <QCoreApplication>
#include <QVariantMap>

#include <algorithm>
#include <array>
#include <cmath>

namespace tavi {

namespace {

using Kind = InspectorControl::Kind;

constexpr std::array<const char*, 9> kKinds{"title",     "slider",     "choice", "tiles", "color",
                                            "gradients", "wallpapers", "toggle", "note"};

QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Choices that are called as they stand in files: told to the translators here.
[[maybe_unused]] constexpr std::array kNames{
    QT_TRANSLATE_NOOP("Inspector", "16:9"),  QT_TRANSLATE_NOOP("Inspector", "Auto"),
    QT_TRANSLATE_NOOP("Inspector", "S"),     QT_TRANSLATE_NOOP("Inspector", "M"),
    QT_TRANSLATE_NOOP("Inspector", "L"),     QT_TRANSLATE_NOOP("Inspector", "midnight"),
    QT_TRANSLATE_NOOP("Inspector", "berry"), QT_TRANSLATE_NOOP("Inspector", "moss"),
    QT_TRANSLATE_NOOP("Inspector", "peach"), QT_TRANSLATE_NOOP("Inspector", "steel"),
    QT_TRANSLATE_NOOP("Inspector", "candy")};

QString translated(std::string_view text) {
    return QCoreApplication::translate("Inspector", std::string(text).c_str());
}

QString hex(double part) {
    const double limited = std::isfinite(part) ? std::clamp(part, 0.0, 1.0) : 0;
    return QString("%1").arg(std::lround(limited * 255), 2, 16, QChar('0'));
}

QString colorText(const CodableColor& color) {
    return "#" + hex(color.alpha) + hex(color.red) + hex(color.green) + hex(color.blue);
}

} // namespace

InspectorViewModel::InspectorViewModel(EditorViewModel& editor, QObject* parent)
    : QAbstractListModel(parent),
      m_editor(editor),
      m_shown(shownControls()),
      m_shownLook(editor.project().appearanceSettings) {
    connect(&editor, &EditorViewModel::projectChanged, this, &InspectorViewModel::projectChanged);
}

std::vector<std::size_t> InspectorViewModel::shownControls() const {
    const auto controls = inspectorControls();
    std::vector<std::size_t> shown;
    for (std::size_t i = 0; i < controls.size(); ++i) {
        const bool hasCamera = m_editor.playback().hasCamera();
        if (!controls[i].isShown || controls[i].isShown(m_editor.project(), hasCamera)) {
            shown.push_back(i);
        }
    }
    return shown;
}

const InspectorControl& InspectorViewModel::control(int row) const {
    return inspectorControls()[m_shown[static_cast<std::size_t>(row)]];
}

int InspectorViewModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

QVariant InspectorViewModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const InspectorControl& shown = control(index.row());
    switch (role) {
    case KindRole:
        return QString(kKinds[static_cast<std::size_t>(shown.kind)]);
    case LabelRole:
        return translated(shown.label);
    case SymbolRole:
        return toQString(shown.symbol);
    case FromRole:
        return shown.from;
    case ToRole:
        return shown.to;
    case StepRole:
        return shown.step;
    case ValueRole:
        return shown.value ? shown.value(m_editor.project()) : QVariant(0.0);
    case TextRole:
        return text(shown);
    case ChoicesRole:
        return choices(shown);
    case HasSwitchRole:
        return shown.kind == Kind::title && shown.setValue != nullptr;
    default:
        return {};
    }
}

QHash<int, QByteArray> InspectorViewModel::roleNames() const {
    return {{KindRole, "kind"},          {LabelRole, "label"}, {SymbolRole, "symbol"},
            {FromRole, "from"},          {ToRole, "to"},       {StepRole, "step"},
            {ValueRole, "value"},        {TextRole, "text"},   {ChoicesRole, "choices"},
            {HasSwitchRole, "hasSwitch"}};
}

QString InspectorViewModel::text(const InspectorControl& shown) const {
    if (shown.kind == Kind::color) {
        return colorText(m_editor.project().appearanceSettings.solidColor);
    }
    return shown.format ? QString::fromStdString(shown.format(shown.value(m_editor.project())))
                        : QString();
}

QVariantList InspectorViewModel::choices(const InspectorControl& shown) const {
    QVariantList list;
    for (std::size_t i = 0; i < shown.choices.size(); ++i) {
        QVariantMap choice{{"text", translated(shown.choices[i].label)},
                           {"symbol", toQString(shown.choices[i].symbol)}};
        if (auto picture = choicePicture(shown, i, m_editor.project().appearanceSettings)) {
            choice["picture"] = QVariant::fromValue(picture);
        }
        list.append(choice);
    }
    return list;
}

void InspectorViewModel::setValue(int row, double value) {
    if (row < 0 || row >= rowCount() || !control(row).setValue || !std::isfinite(value)) {
        return;
    }
    const InspectorControl& shown = control(row);
    const double taken = shown.kind == Kind::slider ? snapped(shown, value) : value;
    if (taken != shown.value(m_editor.project())) {
        m_editor.changeProject(
            [&shown, taken](EditProject& project) { shown.setValue(project, taken); });
    }
}

void InspectorViewModel::setSolidColor(double red, double green, double blue, double alpha) {
    m_editor.changeProject([&](EditProject& project) {
        project.appearanceSettings.solidColor = {red, green, blue, alpha};
    });
}

void InspectorViewModel::projectChanged() {
    reconcile(shownControls());
    if (rowCount() > 0) {
        emit dataChanged(index(0), index(rowCount() - 1), {ValueRole, TextRole});
    }
    tellPictures();
}

/// The tiles show the presets and the colour that are chosen elsewhere.
void InspectorViewModel::tellPictures() {
    const AppearanceSettings& look = m_editor.project().appearanceSettings;
    const auto isSame = m_shownLook.gradientPresetIndex == look.gradientPresetIndex &&
                        m_shownLook.wallpaperPreset == look.wallpaperPreset &&
                        m_shownLook.solidColor == look.solidColor;
    m_shownLook = look;
    for (int row = 0; row < rowCount() && !isSame; ++row) {
        if (control(row).kind == Kind::tiles) {
            emit dataChanged(index(row), index(row), {ChoicesRole});
        }
    }
}

/// Takes rows out and puts rows in one by one, so that what stays keeps its delegate.
void InspectorViewModel::reconcile(const std::vector<std::size_t>& shown) {
    for (int row = rowCount() - 1; row >= 0; --row) {
        if (!std::ranges::binary_search(shown, m_shown[static_cast<std::size_t>(row)])) {
            beginRemoveRows({}, row, row);
            m_shown.erase(m_shown.begin() + row);
            endRemoveRows();
        }
    }
    for (std::size_t i = 0; i < shown.size(); ++i) {
        if (i >= m_shown.size() || m_shown[i] != shown[i]) {
            beginInsertRows({}, static_cast<int>(i), static_cast<int>(i));
            m_shown.insert(m_shown.begin() + static_cast<std::ptrdiff_t>(i), shown[i]);
            endInsertRows();
        }
    }
}

} // namespace tavi
