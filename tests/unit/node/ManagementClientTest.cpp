#include <gtest/gtest.h>

#include "model/ModelFile.h"
#include "services/ManagedObjectService.h"
#include "services/ManagementClient.h"

namespace VorNode {

TEST(ManagementClient, TellsTheCodeOfARefusedRead) {
    const auto model = loadModel(VOR_GOLDEN_FOLDER "/model-values.xml");
    TransactionService transactions(*model);
    ManagedObjectService objects(*model, transactions);
    const ManagementClient client(*model, transactions, objects);
    EXPECT_EQ(client.read("A=1", "s").result, VorReturnOk);
    objects.table().getMoAttribute = [](auto...) { return KelReturnT{9}; };
    EXPECT_EQ(client.read("A=1", "s").result, 9);
    EXPECT_EQ(client.read("A=1", "none").result, VorReturnAbsent);
}

}  // namespace VorNode
