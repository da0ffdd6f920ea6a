#pragma once

#include <QString>

class QQmlEngine;

namespace tavi {

/// Chooses how windows are drawn: by OpenGL where a graphics card does it, else
/// by Qt Quick's own software renderer, which costs a fifth of an emulated card.
///
/// An unusable OpenGL would end the program at its first window, so a context is
/// tried here first. QT_QUICK_BACKEND and QSG_RHI_BACKEND are left the last word.
/// Call after the application object and before the first window.
/// Returns: what was chosen, for the log ("software", "opengl" or "environment").
/// Thread: main.
QString chooseGraphics();

/// Makes the built-in typefaces known and the application's font; text is
/// drawn by the platform's rasteriser.
/// Call after the application object and before the first window.
/// Thread: main.
void setUpFonts();

/// Lets `engine` find the program's QML modules, and end the program by Qt.quit().
/// Thread: main.
void setUpEngine(QQmlEngine& engine);

} // namespace tavi
