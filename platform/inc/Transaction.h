#pragma once

#include "VorOamSpiTransactionMaster.h"

namespace Vor {

/// One managed-object transaction, aborted at destruction unless it was committed. One thread at a time.
class Transaction {
  public:
    /// Throws `VorException` when no transaction can be opened. The timeout is in seconds.
    Transaction(const KelOamSpiTransactionMaster_1& master, VorLockPolicyT lockPolicy, int timeout);
    virtual ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    unsigned long getTransaction() const { return _handle; }

    /// Makes what was written visible. Throws `VorException` with the service's code when it refuses.
    void commitTransaction();

  private:
    const KelOamSpiTransactionMaster_1& _master;
    unsigned long _handle = 0;
    bool _open = false;
};

}  // namespace Vor
