#pragma once

namespace tavi {

/// A mass on a spring with a damper.
struct SpringConstants {
    double mass = 1;
    double damping = 0;
    double stiffness = 0;
};

/// Where the mass is along one axis, and how fast it moves.
struct SpringState {
    double position = 0;
    double velocity = 0;
};

/// Longest integration step, seconds.
inline constexpr double kSpringSubstep = 0.001;

/// Number of equal steps that a stretch of `gap` > 0 seconds is cut into.
int springSteps(double gap);

/// Pulls `state` towards `target` for `gap` seconds by semi-implicit Euler steps
/// (the new velocity moves the position), one after the other. The reference for
/// SpringPropagator.
void integrateSpring(SpringState& state, double target, double gap, const SpringConstants& spring);

/// The same stretch for any state and target at once. A step is linear in
/// (position - target, velocity), so n equal steps are the n-th power of its
/// 2x2 matrix, which takes log2(n) multiplications.
class SpringPropagator {
public:
    SpringPropagator(double gap, const SpringConstants& spring);

    void apply(SpringState& state, double target) const;

private:
    struct Matrix {
        double pp, pv, vp, vv;
    };
    static Matrix product(const Matrix& a, const Matrix& b);

    Matrix m_power;
};

} // namespace tavi
