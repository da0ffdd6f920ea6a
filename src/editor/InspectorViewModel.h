#pragma once

#include "editor/EditorViewModel.h"
#include "editor/InspectorControls.h"

#include <QAbstractListModel>
#include <QVariantList>

#include <vector>

namespace tavi {

/// The first tab of the inspector as a list: one row for each control that is shown now, with
/// what it shows. Rows come and go with the options that they depend on.
/// Thread: main. The editor outlives it.
class InspectorViewModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        KindRole = Qt::UserRole, ///< "title", "slider", "choice", "tiles", "color", "gradients",
                                 ///< "wallpapers", "toggle" or "note".
        LabelRole,
        SymbolRole,
        FromRole,
        ToRole,
        StepRole,
        ValueRole,     ///< A number; of what is chosen its index, of a switch 0 or 1.
        TextRole,      ///< A slider's value in words; a colour as "#aarrggbb".
        ChoicesRole,   ///< Objects with `text`, `symbol` and, of a background, `picture`.
        HasSwitchRole, ///< Of a title.
    };
    Q_ENUM(Role)

    explicit InspectorViewModel(EditorViewModel& editor, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Sets the value of a row; a slider's is put on its nearest step.
    Q_INVOKABLE void setValue(int row, double value);

    /// Sets the background's own colour; parts from 0 to 1.
    Q_INVOKABLE void setSolidColor(double red, double green, double blue, double alpha);

private:
    const InspectorControl& control(int row) const;
    std::vector<std::size_t> shownControls() const;
    QVariantList choices(const InspectorControl& control) const;
    QString text(const InspectorControl& control) const;
    void projectChanged();
    void tellPictures();
    void reconcile(const std::vector<std::size_t>& shown);

    EditorViewModel& m_editor;
    std::vector<std::size_t> m_shown; ///< Indices into inspectorControls(), ascending.
    AppearanceSettings m_shownLook;   ///< That the tiles' pictures were told for.
};

} // namespace tavi
