#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "VorOamSpiTransactionMaster.h"
#include "model/Model.h"
#include "services/Service.h"

namespace VorNode {

/// The transaction master: keeps what each open transaction wrote, and applies it to the model at commit.
/// Owned by the application, after the model. Any thread; one transaction is used by one thread at a time.
/// The operations throw `Refusal` with -2 for a transaction that is not open.
class TransactionService : public Service<TransactionService> {
  public:
    explicit TransactionService(Model& model);

    KelOamSpiTransactionMaster_1& table() { return _table; }
    const KelOamSpiTransactionMaster_1& table() const { return _table; }

    void requireOpen(unsigned long transaction);

    /// Keeps a write, which the attribute must accept, until the transaction commits.
    void write(unsigned long transaction, AttributeWrite write);

    /// What the transaction itself wrote last to the attribute, if anything.
    std::optional<AttributeValues> written(unsigned long transaction, const std::string& dn,
                                           const std::string& attribute);

  private:
    struct Transaction {
        VorLockPolicyT lockPolicy;
        /// In seconds.
        int timeout;
        /// In the order in which they were made.
        std::vector<AttributeWrite> writes;
    };

    // The operations of the table.
    void createTransaction(VorLockPolicyT lockPolicy, int timeout, unsigned long* txHandle);
    void commitTransaction(unsigned long txHandle);
    void abortTransaction(unsigned long txHandle);

    /// Called with the lock held.
    Transaction& find(unsigned long transaction);
    /// The transaction, which is not open any more.
    Transaction close(unsigned long transaction);

    Model& _model;
    KelOamSpiTransactionMaster_1 _table;

    /// Guards the two below.
    std::mutex _mutex;
    unsigned long _lastHandle = 0;
    std::map<unsigned long, Transaction> _transactions;
};

}  // namespace VorNode
