#pragma once

#include "project/EditProject.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavi {

/// One control of the inspector's first tab: what it is called, what it may be set to, and
/// which field of the project it edits.
struct InspectorControl {
    enum class Kind {
        title,      ///< Heads a section; with a switch where setValue is there.
        slider,     ///< A number.
        choice,     ///< A row of pills; the value is the index of one.
        tiles,      ///< The background's style; the value is the index of a choice.
        color,      ///< The background's own colour; its value is not a number.
        gradients,  ///< Swatches; the value is the index of a choice.
        wallpapers, ///< Swatches; the value is the index of a choice.
        toggle,     ///< A switch; 0 or 1.
        note,       ///< A text with a symbol.
    };

    struct Choice {
        std::string_view label;
        std::string_view symbol; ///< May be empty.
    };

    Kind kind = Kind::note;
    std::string_view label;
    std::string_view symbol; ///< Of a note.

    // A slider's range; a step of 0 means any value.
    double from = 0;
    double to = 0;
    double step = 0;
    std::string (*format)(double) = nullptr; ///< A slider's value as shown.

    std::vector<Choice> choices;

    double (*value)(const EditProject&) = nullptr;
    void (*setValue)(EditProject&, double) = nullptr;

    /// Absent: always. `hasCamera` tells whether the take has a camera's video.
    bool (*isShown)(const EditProject&, bool hasCamera) = nullptr;
};

/// The controls from top to bottom. Thread: any.
std::span<const InspectorControl> inspectorControls();

/// The value that a slider takes for a place on its track: limited to its range and put on its
/// nearest step.
double snapped(const InspectorControl& slider, double value);

} // namespace tavi
