#pragma once

#include "MoAccessor.h"

namespace VorPm {

/// The accessor for one operation, as the component always opens it. Throws `Vor::VorException`.
inline Vor::MoAccessor openAccessor() {
    constexpr VorLockPolicyT lockPolicy = 1;
    constexpr int timeout = 60;
    return {lockPolicy, timeout};
}

}  // namespace VorPm
