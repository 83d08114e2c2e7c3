// Managed-object transactions: ("KelOamSpiTransactionService", "KelOamSpiTransactionMaster", "1").
#pragma once

#include "VorSpiTypes.h"

/// How objects touched by a transaction are locked; the platform's to interpret.
typedef int32_t VorLockPolicyT;

/// Any thread; one transaction is used by one thread at a time. 0 on success.
struct KelOamSpiTransactionMaster_1 {
    KelMgmtSpiInterface_1 identity;
    /// Opens a transaction and stores its handle. The timeout is in seconds.
    KelReturnT (*createTransaction)(VorLockPolicyT lockPolicy, int timeout, unsigned long* txHandle);
    /// Makes what was written visible and ends the transaction.
    KelReturnT (*commitTransaction)(unsigned long txHandle);
    /// Drops what was written and ends the transaction.
    KelReturnT (*abortTransaction)(unsigned long txHandle);
};

static_assert(sizeof(KelOamSpiTransactionMaster_1) == 6 * sizeof(void*));
