#pragma once

#include "app/AppViewModel.h"

#include <QLocale>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tavi {

/// The library as its screen shows it: rows, the selection, rename and delete.
///
/// A scan makes new ids, so it empties the selection.
/// Errors: the operations give the user's text of what went wrong, empty when nothing did.
/// Thread: main.
class HomeViewModel : public QObject {
    Q_OBJECT
    /// Of each: id, url, path, name, dateText, durationText.
    Q_PROPERTY(QVariantList recordings READ rows NOTIFY recordingsChanged)
    Q_PROPERTY(QStringList selectedItems READ selectedItems NOTIFY selectionChanged)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectionChanged)
    Q_PROPERTY(bool allSelected READ allSelected NOTIFY selectionChanged)

public:
    explicit HomeViewModel(AppViewModel& app, QLocale locale = QLocale(),
                           QObject* parent = nullptr);

    const QVariantList& rows() const { return m_rows; }
    const QStringList& selectedItems() const { return m_selectedItems; }
    int selectedCount() const { return static_cast<int>(m_selectedItems.size()); }
    /// True when there are takes and all are selected.
    bool allSelected() const;

    Q_INVOKABLE void toggleSelection(const QString& id);
    Q_INVOKABLE void selectAll();
    Q_INVOKABLE void clearSelection();

    /// Renames the take to what was typed.
    Q_INVOKABLE QString rename(const QString& id, const QString& text);

    Q_INVOKABLE QString deleteItem(const QString& id);

    /// Deletes the selected takes, in the order of the list, and clears the selection.
    Q_INVOKABLE QString deleteSelected();

signals:
    void recordingsChanged();
    void selectionChanged();

    /// Files of this folder are gone or elsewhere.
    void recordingGone(const QUrl& url);

private:
    void reload();
    void setSelection(QStringList ids);
    const RecordingItem* find(const QString& id) const;
    void tellWhatIsGone(const std::vector<std::filesystem::path>& folders);

    AppViewModel& m_app;
    QLocale m_locale;
    QVariantList m_rows;
    QStringList m_selectedItems;
};

} // namespace tavi
