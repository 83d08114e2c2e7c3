#include "services/TransactionService.h"

#include <algorithm>
#include <utility>

#include "services/Operation.h"

namespace VorNode {

TransactionService::TransactionService(Model& model)
    : _model(model),
      _table{{"KelOamSpiTransactionService", "KelOamSpiTransactionMaster", "1"},
             operation<&TransactionService::createTransaction>,
             operation<&TransactionService::commitTransaction>,
             operation<&TransactionService::abortTransaction>} {}

void TransactionService::requireOpen(unsigned long transaction) {
    const std::scoped_lock lock(_mutex);
    find(transaction);
}

void TransactionService::write(unsigned long transaction, AttributeWrite write) {
    const std::scoped_lock lock(_mutex);
    find(transaction).writes.push_back(std::move(write));
}

std::optional<AttributeValues> TransactionService::written(unsigned long transaction, const std::string& dn,
                                                           const std::string& attribute) {
    const std::scoped_lock lock(_mutex);
    const std::vector<AttributeWrite>& writes = find(transaction).writes;
    const auto last = std::find_if(writes.rbegin(), writes.rend(), [&](const AttributeWrite& candidate) {
        return candidate.dn == dn && candidate.attribute == attribute;
    });
    return last != writes.rend() ? std::optional(last->values) : std::nullopt;
}

void TransactionService::createTransaction(VorLockPolicyT lockPolicy, int timeout, unsigned long* txHandle) {
    requirePointers(txHandle);
    const std::scoped_lock lock(_mutex);
    const unsigned long handle = ++_lastHandle;
    _transactions.emplace(handle, Transaction{lockPolicy, timeout, {}});
    *txHandle = handle;
}

void TransactionService::commitTransaction(unsigned long txHandle) {
    _model.commit(close(txHandle).writes);
}

void TransactionService::abortTransaction(unsigned long txHandle) {
    close(txHandle);
}

TransactionService::Transaction& TransactionService::find(unsigned long transaction) {
    const auto found = _transactions.find(transaction);
    if (found == _transactions.end()) {
        throw Refusal{VorReturnAbsent};
    }
    return found->second;
}

TransactionService::Transaction TransactionService::close(unsigned long transaction) {
    const std::scoped_lock lock(_mutex);
    Transaction closed = std::move(find(transaction));
    _transactions.erase(transaction);
    return closed;
}

}  // namespace VorNode
