#include <gtest/gtest.h>

#include "model/ModelFile.h"
#include "services/Operation.h"
#include "services/TransactionService.h"

namespace VorNode {

TEST(TransactionService, ForgetsATransactionThatHasEnded) {
    const auto model = loadModel(VOR_GOLDEN_FOLDER "/model-values.xml");
    TransactionService service(*model);
    const KelOamSpiTransactionMaster_1& table = service.table();
    for (const auto& end : {table.abortTransaction, table.commitTransaction}) {
        unsigned long handle = 0;
        ASSERT_EQ(table.createTransaction(0, 10, &handle), VorReturnOk);
        EXPECT_NO_THROW(service.requireOpen(handle));
        EXPECT_EQ(end(handle), VorReturnOk);
        EXPECT_THROW(service.requireOpen(handle), Refusal);
        EXPECT_EQ(end(handle), VorReturnAbsent);
    }
}

}  // namespace VorNode
