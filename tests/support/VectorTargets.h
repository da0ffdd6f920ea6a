#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <hwy/targets.h>

namespace tavi::test {

/// Calls `check` once for every instruction set that this processor has and the
/// kernels were compiled for, with the kernels bound to it.
template<class Check>
void forEachVectorTarget(Check check) {
    std::int64_t targets = hwy::SupportedTargets();
    while (targets != 0) {
        const std::int64_t target = targets & -targets;
        targets &= ~target;
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        SCOPED_TRACE(hwy::TargetName(target));
        check();
    }
    hwy::SetSupportedTargetsForTest(0); // all of them again
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

} // namespace tavi::test
