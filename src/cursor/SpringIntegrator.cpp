#include "cursor/SpringIntegrator.h"

#include <algorithm>
#include <cmath>

namespace tavi {

int springSteps(double gap) {
    return static_cast<int>(std::max(std::ceil(gap / kSpringSubstep), 1.0));
}

void integrateSpring(SpringState& state, double target, double gap, const SpringConstants& spring) {
    const int steps = springSteps(gap);
    const double h = gap / steps;
    for (int i = 0; i < steps; ++i) {
        const double acceleration =
            (spring.stiffness * (target - state.position) - spring.damping * state.velocity) /
            spring.mass;
        state.velocity += h * acceleration;
        state.position += h * state.velocity;
    }
}

SpringPropagator::SpringPropagator(double gap, const SpringConstants& spring) {
    const int steps = springSteps(gap);
    const double h = gap / steps;
    const double vp = -h * spring.stiffness / spring.mass;
    const double vv = 1 - h * spring.damping / spring.mass;
    Matrix step{1 + h * vp, h * vv, vp, vv};
    m_power = {1, 0, 0, 1};
    for (int n = steps; n > 0; n >>= 1) {
        if (n & 1) {
            m_power = product(m_power, step);
        }
        if (n > 1) {
            step = product(step, step);
        }
    }
}

void SpringPropagator::apply(SpringState& state, double target) const {
    const double offset = state.position - target;
    const double velocity = state.velocity;
    state.position = target + (m_power.pp * offset + m_power.pv * velocity);
    state.velocity = m_power.vp * offset + m_power.vv * velocity;
}

SpringPropagator::Matrix SpringPropagator::product(const Matrix& a, const Matrix& b) {
    return {a.pp * b.pp + a.pv * b.vp, a.pp * b.pv + a.pv * b.vv, a.vp * b.pp + a.vv * b.vp,
            a.vp * b.pv + a.vv * b.vv};
}

} // namespace tavi
