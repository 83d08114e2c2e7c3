#include <gtest/gtest.h>

#include "Transaction.h"
#include "VorException.h"

namespace VorTest {
namespace {

/// What the service was asked for, and what it answers.
std::string asked;
KelReturnT code = VorReturnOk;

KelReturnT note(const std::string& request) {
    asked += request + ", ";
    return code;
}

const KelOamSpiTransactionMaster_1 master{
    {},
    [](VorLockPolicyT lockPolicy, int timeout, unsigned long* handle) {
        *handle = 5;
        return note("create " + std::to_string(lockPolicy) + " " + std::to_string(timeout));
    },
    [](unsigned long handle) { return note("commit " + std::to_string(handle)); },
    [](unsigned long handle) { return note("abort " + std::to_string(handle)); }};

struct TransactionTest : testing::Test {
    TransactionTest() {
        asked.clear();
        code = VorReturnOk;
    }
};

}  // namespace

TEST_F(TransactionTest, IsAbortedUnlessItWasCommitted) {
    { const Vor::Transaction left(master, 1, 60); }
    { Vor::Transaction(master, 2, 10).commitTransaction(); }
    EXPECT_EQ(asked, "create 1 60, abort 5, create 2 10, commit 5, ");
}

TEST_F(TransactionTest, IsNotAbortedWhenItWasRefused) {
    code = 9;
    EXPECT_THROW(Vor::Transaction(master, 1, 60), Vor::VorException);
    EXPECT_EQ(asked, "create 1 60, ");
}

TEST_F(TransactionTest, ThrowsTheCodeOfARefusedCommit) {
    Vor::Transaction transaction(master, 1, 60);
    code = 9;
    try {
        transaction.commitTransaction();
        FAIL() << "it was refused";
    } catch (const Vor::VorException& fault) {
        EXPECT_EQ(fault.retCode(), 9);
    }
}

}  // namespace VorTest
