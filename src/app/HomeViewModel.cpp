#include "app/HomeViewModel.h"

#include "app/PathText.h"
#include "app/RecordingName.h"
#include "app/RecordingTexts.h"
#include "base/MessageText.h"

#include <algorithm>
#include <utility>

namespace tavi {

namespace {

QString idOf(const RecordingItem& item) {
    return QString::fromStdString(item.id.text());
}

QUrl urlOf(const std::filesystem::path& folder) {
    return QUrl::fromLocalFile(textOf(folder));
}

QVariantMap rowOf(const RecordingItem& item, const QLocale& locale) {
    return {{QStringLiteral("id"), idOf(item)},
            {QStringLiteral("url"), urlOf(item.url)},
            {QStringLiteral("path"), textOf(item.url)},
            {QStringLiteral("name"), textOf(nameOf(item.url))},
            {QStringLiteral("dateText"), dateText(item.date, locale)},
            {QStringLiteral("durationText"), durationText(item.duration)}};
}

} // namespace

HomeViewModel::HomeViewModel(AppViewModel& app, QLocale locale, QObject* parent)
    : QObject(parent),
      m_app(app),
      m_locale(std::move(locale)) {
    connect(&app, &AppViewModel::recordingsChanged, this, &HomeViewModel::reload);
    reload();
}

void HomeViewModel::reload() {
    m_rows.clear();
    m_rows.reserve(static_cast<qsizetype>(m_app.recordings().size()));
    for (const RecordingItem& item : m_app.recordings()) {
        m_rows.append(rowOf(item, m_locale));
    }
    emit recordingsChanged();
    m_selectedItems.clear();
    emit selectionChanged(); // also for what depends on the number of takes
}

bool HomeViewModel::allSelected() const {
    return !m_rows.isEmpty() && m_selectedItems.size() == m_rows.size();
}

void HomeViewModel::setSelection(QStringList ids) {
    if (m_selectedItems != ids) {
        m_selectedItems = std::move(ids);
        emit selectionChanged();
    }
}

void HomeViewModel::toggleSelection(const QString& id) {
    QStringList ids = m_selectedItems;
    if (ids.removeAll(id) == 0 && find(id) != nullptr) {
        ids.append(id);
    }
    setSelection(std::move(ids));
}

void HomeViewModel::selectAll() {
    QStringList ids;
    for (const RecordingItem& item : m_app.recordings()) {
        ids.append(idOf(item));
    }
    setSelection(std::move(ids));
}

void HomeViewModel::clearSelection() {
    setSelection({});
}

const RecordingItem* HomeViewModel::find(const QString& id) const {
    const auto& items = m_app.recordings();
    const auto found = std::find_if(items.begin(), items.end(),
                                    [&id](const RecordingItem& item) { return idOf(item) == id; });
    return found == items.end() ? nullptr : &*found;
}

QString HomeViewModel::rename(const QString& id, const QString& text) {
    const RecordingItem* found = find(id);
    if (found == nullptr) {
        return tr("This recording is not there any more.");
    }
    const RecordingItem item = *found;
    const QString name = trimmedName(text);
    if (const QString problem = problemWithName(name, item.url); !problem.isEmpty()) {
        return problem;
    }
    if (const auto renamed = m_app.renameRecording(item, pathOf(name).string()); !renamed) {
        return tr("Could not rename: %1").arg(translated(renamed.error().message()));
    }
    tellWhatIsGone({item.url});
    return {};
}

QString HomeViewModel::deleteItem(const QString& id) {
    const RecordingItem* found = find(id);
    if (found == nullptr) {
        return {};
    }
    const RecordingItem item = *found;
    const auto deleted = m_app.deleteRecording(item);
    tellWhatIsGone({item.url});
    return deleted ? QString()
                   : tr("Could not delete: %1").arg(translated(deleted.error().message()));
}

QString HomeViewModel::deleteSelected() {
    std::vector<RecordingItem> items;
    std::vector<std::filesystem::path> folders;
    for (const RecordingItem& item : m_app.recordings()) {
        if (m_selectedItems.contains(idOf(item))) {
            items.push_back(item);
            folders.push_back(item.url);
        }
    }
    const auto deleted = m_app.deleteRecordings(items);
    clearSelection();
    tellWhatIsGone(folders);
    return deleted ? QString()
                   : tr("Could not delete: %1").arg(translated(deleted.error().message()));
}

void HomeViewModel::tellWhatIsGone(const std::vector<std::filesystem::path>& folders) {
    for (const auto& folder : folders) {
        std::error_code error;
        if (!std::filesystem::exists(folder, error)) {
            emit recordingGone(urlOf(folder));
        }
    }
}

} // namespace tavi
