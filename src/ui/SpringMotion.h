#pragma once

namespace tavi {

/// A damped harmonic oscillator, told the way designers tell it.
struct SpringShape {
    double response = 0.5; ///< Seconds of one period without damping; above 0.
    double damping = 1.0;  ///< Fraction of critical damping, not negative; below 1 it overshoots.
};

/// Where a spring is, as seen from its place of rest.
struct SpringState {
    double displacement = 0; ///< Value less the place of rest.
    double velocity = 0;     ///< Per second.
};

/// The state `seconds` later, exactly (the closed solution of
/// x'' = -w^2 x - 2 z w x' with w = 2 pi / response and z = damping), so that
/// the result does not depend on how often a screen is drawn.
///
/// Units:  `seconds` is not negative.
/// Thread: any.
SpringState advance(SpringShape shape, SpringState state, double seconds);

/// True when the rest of the motion moves less than `tolerance`, in the value's
/// own unit, so that drawing may stop.
bool isSettled(SpringShape shape, SpringState state, double tolerance);

} // namespace tavi
