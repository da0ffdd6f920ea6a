#pragma once

#include "editor/EditorViewModel.h"

#include <QObject>
#include <QString>

namespace tavi {

/// The third tab of the inspector: size and rate of the film, from pills or typed.
/// Whether a custom entry shows is this view's own matter, derived from the project when it is
/// made.
/// Thread: main. The editor outlives it.
class ExportSettingsViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QStringList resolutions READ resolutions CONSTANT)
    Q_PROPERTY(int resolution READ resolution NOTIFY changed)
    Q_PROPERTY(bool isCustomResolution READ isCustomResolution NOTIFY changed)
    Q_PROPERTY(QString customWidth READ customWidth NOTIFY changed)
    Q_PROPERTY(QString customHeight READ customHeight NOTIFY changed)
    Q_PROPERTY(QStringList frameRates READ frameRates CONSTANT)
    Q_PROPERTY(int frameRate READ frameRate NOTIFY changed)
    Q_PROPERTY(bool isCustomFPS READ isCustomFPS NOTIFY changed)
    Q_PROPERTY(QString customFPSText READ customFPSText NOTIFY changed)

public:
    explicit ExportSettingsViewModel(EditorViewModel& editor, QObject* parent = nullptr);

    QStringList resolutions() const; ///< The pills' labels; the last one is "Custom".
    int resolution() const;          ///< The pill that is highlighted.
    bool isCustomResolution() const { return m_isCustomResolution; }
    QString customWidth() const;
    QString customHeight() const;
    QStringList frameRates() const; ///< The last one is "Custom".
    int frameRate() const;
    bool isCustomFPS() const { return m_isCustomFPS; }
    QString customFPSText() const;

    Q_INVOKABLE void chooseResolution(int index);
    Q_INVOKABLE void chooseFrameRate(int index);

    // What was typed, when its field loses the focus. What isn't a number changes nothing.
    Q_INVOKABLE void commitWidth(const QString& text);
    Q_INVOKABLE void commitHeight(const QString& text);
    Q_INVOKABLE void commitFPS(const QString& text);

signals:
    void changed();

private:
    const OutputSettings& settings() const { return m_editor.project().outputSettings; }
    void setResolution(std::optional<Size> size);
    void setFPS(std::int64_t fps);

    EditorViewModel& m_editor;
    bool m_isCustomResolution = false;
    bool m_isCustomFPS = false;
};

} // namespace tavi
