#include "Transaction.h"

#include "VorException.h"

namespace Vor {

Transaction::Transaction(const KelOamSpiTransactionMaster_1& master, VorLockPolicyT lockPolicy, int timeout)
    : _master(master) {
    const KelReturnT result = _master.createTransaction(lockPolicy, timeout, &_handle);
    if (result != VorReturnOk) {
        throw VorException(result, "Transaction could not be created, reason (%d)", result);
    }
    _open = true;
}

Transaction::~Transaction() {
    if (_open) {
        try {
            _master.abortTransaction(_handle);
        } catch (...) {
            // A service that throws must not end the process; the transaction runs into its timeout.
        }
    }
}

void Transaction::commitTransaction() {
    _open = false;
    const KelReturnT result = _master.commitTransaction(_handle);
    if (result != VorReturnOk) {
        throw VorException(result, "Transaction could not be committed, reason (%d)", result);
    }
}

}  // namespace Vor
