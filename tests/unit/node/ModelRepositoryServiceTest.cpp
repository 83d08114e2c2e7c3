#include <gtest/gtest.h>

#include "model/ModelFile.h"
#include "services/ModelRepositoryService.h"

namespace VorNode {

TEST(ModelRepositoryService, RefusesHandlesThatItDidNotGive) {
    const auto model = loadModel(VOR_GOLDEN_FOLDER "/model-values.xml");
    ModelRepositoryService service(*model);
    const VorOamSpiModelRepository_2& table = service.table();
    const VorOamSpiClassQuery_2& classes = *table.classQuery;
    const VorOamSpiAttributeQuery_2& attributes = *table.attributeQuery;
    VorOamSpiClassHandleT moClass = 0;
    VorOamSpiAttributeHandleT attribute = 0;
    const char* name = nullptr;
    ASSERT_EQ(classes.getClassFromDn("A=1,C=1", &moClass), VorReturnOk);
    EXPECT_EQ(moClass, ~VorOamSpiClassHandleT{0}) << "the model has no such class";
    EXPECT_EQ(classes.getFirstAttribute(moClass, &attribute), VorReturnFailed);
    EXPECT_EQ(classes.getFirstAttribute(model->classes().size(), &attribute), VorReturnFailed);
    ASSERT_EQ(classes.getClassFromDn("A=1", &moClass), VorReturnOk);
    ASSERT_EQ(classes.getFirstAttribute(moClass, &attribute), VorReturnOk);
    for (std::size_t following = 6; following > 0; --following)
        ASSERT_EQ(attributes.getNextAttribute(attribute, &attribute), VorReturnOk) << following;
    EXPECT_EQ(attributes.getName(attribute, &name), VorReturnOk);
    EXPECT_STREQ(name, "ss");
    VorOamSpiAttributeHandleT none = 0;
    EXPECT_EQ(attributes.getNextAttribute(attribute, &none), VorReturnAbsent);
    EXPECT_EQ(attributes.getName(attribute + 1, &name), VorReturnFailed);
    EXPECT_EQ(attributes.getNextAttribute(attribute + 1, &none), VorReturnFailed);
}

}  // namespace VorNode
