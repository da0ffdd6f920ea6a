#pragma once

#include "base/Geometry.h"
#include "base/PixelBuffer.h"
#include "cursor/CursorSmoothing.h"
#include "cursor/EventIndex.h"
#include "project/CursorSettings.h"

#include <optional>
#include <span>
#include <vector>

namespace tavi {

/// Where the pointer stands and which picture it has at a moment, from the log
/// of a take. A plain value, built by make() and not changed afterwards.
///
/// Times are those of the events (source or output time); positions are in the
/// log's units with the origin at the bottom left, unless said otherwise.
struct CursorRenderer {
    /// A click's ripple that is alive at some moment.
    struct ClickEffectState {
        Point position;      ///< The raw point of the log, top-left origin.
        double progress = 0; ///< 0 up to, but not including, 1.
    };

    static constexpr double kClickEffectDuration = 0.35;    ///< Seconds.
    static constexpr double kClickEffectRadiusFactor = 1.5; ///< Of the cursor's size.

    std::vector<CursorEvent> events; ///< In log order.
    double videoHeight = 0;          ///< The height used to flip y.
    CursorSettings settings;
    std::vector<PixelBufferPtr> cursorImages;
    std::vector<CursorImageInfo> cursorImageInfos;
    std::vector<SmoothedCursorSample> smoothedSamples; ///< One per event.
    EventIndex clicks;                                 ///< The events that make ripples.
    EventIndex keyPresses;                             ///< The events that may make chips.

    /// Smooths the log; the work grows with the recorded time.
    static CursorRenderer make(std::vector<CursorEvent> events, double videoHeight,
                               const CursorSettings& settings,
                               std::vector<PixelBufferPtr> cursorImages = {},
                               std::vector<CursorImageInfo> cursorImageInfos = {});

    /// Where the pointer stands: on the smoothed path, or on the raw one with
    /// the preset `none`; absent only for an empty log. Still before the first
    /// and after the last event. Logarithmic in the number of events.
    std::optional<Point> position(double time) const;

    /// The image in force; 0 for an empty log. May lie outside the image table.
    std::int64_t cursorImageId(double time) const;

    /// Every ripple alive, in log order; empty unless they are switched on.
    /// Kept on purpose: `leftMouseDown` makes none, only the clicks do.
    std::vector<ClickEffectState> clickEffects(double time) const;

    /// A part of the log, in its order, that holds every key press with a chip on
    /// screen at `time`: what visibleKeystrokes() and layoutKeystrokes() need of
    /// the log for that moment with the display duration of `settings`.
    std::span<const CursorEvent> recentKeyPresses(double time) const;
};

} // namespace tavi
