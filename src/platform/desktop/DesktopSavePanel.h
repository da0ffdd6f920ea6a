#pragma once

#include "render/SavePanel.h"

#include <QObject>
#include <QPointer>
#include <QVariantMap>

class QFileDialog;

namespace tavi {

/// The desktop's own dialog for a new file by way of xdg-desktop-portal, else Qt's. One panel at a
/// time: a second question is answered with nothing. It begins in the folder of the last file, the
/// first time in the one for videos, and stands before the application's window. Thread: main, of a
/// QApplication.
class DesktopSavePanel final : public QObject, public SavePanel {
    Q_OBJECT

public:
    ~DesktopSavePanel() override;

    void chooseFile(const std::string& proposedName, Answer answer) override;

private slots:
    void portalAnswered(uint response, const QVariantMap& results);

private:
    void askPortal(const QString& proposedName);
    void askQt(const QString& proposedName);
    void finish(const std::optional<std::filesystem::path>& file);

    Answer m_answer; ///< Empty while nothing is asked.
    QString m_proposedName;
    QString m_folder;  ///< Where the last file went; empty before the first.
    QString m_request; ///< The portal's object that will answer.
    QPointer<QFileDialog> m_dialog;
};

} // namespace tavi
