#pragma once

#include "VorOamSpiPm.h"

namespace VorPm {

/// Receives the announcements of GPs that are ready. Any thread.
class IPmEventManager {
  public:
    virtual ~IPmEventManager() = default;

    /// 0 when the GP was taken or refused, -2 when there is no PM service. The event is read during the call
    /// only.
    virtual KelReturnT pushGp(const VorOamSpiPmEventValue_1& event) = 0;
};

}  // namespace VorPm
