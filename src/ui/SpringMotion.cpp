#include "ui/SpringMotion.h"

#include <cmath>
#include <numbers>

namespace tavi {

namespace {

double angularFrequency(SpringShape shape) {
    return 2 * std::numbers::pi / shape.response;
}

/// The two solutions that the three cases of damping share: the state is
/// displacement * `position` + velocity * `impulse`, and likewise its derivative.
struct Basis {
    double position, impulse, positionRate, impulseRate;
};

Basis underdamped(double w, double z, double t) {
    const double wd = w * std::sqrt(1 - z * z);
    const double decay = std::exp(-z * w * t);
    const double c = decay * std::cos(wd * t);
    const double s = decay * std::sin(wd * t) / wd;
    return {c + z * w * s, s, -w * w * s, c - z * w * s};
}

Basis critical(double w, double t) {
    const double decay = std::exp(-w * t);
    return {decay * (1 + w * t), decay * t, -w * w * t * decay, decay * (1 - w * t)};
}

Basis overdamped(double w, double z, double t) {
    const double root = w * std::sqrt(z * z - 1);
    const double slow = -z * w + root;
    const double fast = -z * w - root;
    const double es = std::exp(slow * t);
    const double ef = std::exp(fast * t);
    const double span = slow - fast;
    return {(slow * ef - fast * es) / span, (es - ef) / span, slow * fast * (ef - es) / span,
            (slow * es - fast * ef) / span};
}

} // namespace

SpringState advance(SpringShape shape, SpringState state, double seconds) {
    // Close to critical damping the other two forms divide by nearly nothing.
    constexpr double kNearlyCritical = 1e-6;
    const double w = angularFrequency(shape);
    const double z = shape.damping;
    const Basis b = std::abs(z - 1) < kNearlyCritical ? critical(w, seconds)
                    : z < 1                           ? underdamped(w, z, seconds)
                                                      : overdamped(w, z, seconds);
    return {state.displacement * b.position + state.velocity * b.impulse,
            state.displacement * b.positionRate + state.velocity * b.impulseRate};
}

bool isSettled(SpringShape shape, SpringState state, double tolerance) {
    // The energy bounds what is still to come: it only falls.
    return std::hypot(state.displacement, state.velocity / angularFrequency(shape)) < tolerance;
}

} // namespace tavi
