#include <gtest/gtest.h>

#include "MoAccessor.h"
#include "Portal.h"
#include "framework/InterfaceRegistry.h"
#include "model/ModelFile.h"
#include "services/ManagedObjectService.h"

namespace VorNode {
namespace {

using Vor::MoAccessor;
using MoEnum = MoAccessor::Enum;

constexpr const char *first = "A=1", *second = "A=2";

/// The services over the model of the golden file, reached as a component reaches them.
struct ManagedObjectServiceTest : testing::Test {
    ManagedObjectServiceTest() {
        registry.offer(objects.table().identity);
        registry.offer(transactions.table().identity);
        Vor::Portal::instance().connect(&InterfaceRegistry::lookUp);
        transactions.table().createTransaction(0, 10, &handle);
    }
    ~ManagedObjectServiceTest() override { Vor::Portal::instance().connect(nullptr); }

    const std::unique_ptr<Model> model = loadModel(VOR_GOLDEN_FOLDER "/model-values.xml");
    TransactionService transactions{*model};
    ManagedObjectService objects{*model, transactions};
    InterfaceRegistry registry;
    const VorOamSpiManagedObject_1& table = objects.table();
    unsigned long handle = 0;
};

TEST_F(ManagedObjectServiceTest, ShowsWritesToOthersOnlyAfterCommit) {
    MoAccessor(0, 10).setAttr<std::string>(first, "s", "dropped");
    MoAccessor writer(0, 10), reader(0, 10);
    writer.setAttr<std::string>(first, "s", "1st");
    writer.setAttr<std::string>(first, "s", "2nd");
    writer.setSeqAttr<MoEnum>(first, "e", {});
    EXPECT_EQ(writer.getAttr<std::string>(first, "s"), "2nd");
    EXPECT_EQ(reader.getAttr<std::string>(first, "s"), "a <b>");
    writer.commitTransaction();
    EXPECT_EQ(reader.getAttr<std::string>(first, "s"), "2nd");
    EXPECT_EQ(model->read(first, "e"), AttributeValues{});
    EXPECT_THROW(writer.commitTransaction(), Vor::VorException) << "it has ended";
    EXPECT_THROW(model->commit({{first, "s", {"none"}}, {first, "b", {"x"}}}), std::invalid_argument);
    EXPECT_EQ(model->read(first, "s"), AttributeValues{"2nd"}) << "all or none";
}

TEST_F(ManagedObjectServiceTest, TakesWhatFitsTheAttribute) {
    VorMoAttributeValue_3 text{.text = "v"}, null{.text = nullptr}, large{.number = 65536}, two[2]{};
    VorMoAttributeValueContainer_3 texts{VorMoTypeString, 1, &text}, unset{VorMoTypeString, 0, nullptr};
    KelMoNamedAttributeValueContainer_3 m{"m", &texts}, n{"n", &unset}, *members[]{&m, &n, nullptr};
    VorMoAttributeValue_3 structure{.members = members};
    const std::tuple<const char*, VorMoAttributeValueContainer_3, KelReturnT> rows[] = {
        {"t", {VorMoTypeStruct, 1, &structure}, 0}, {"t", {VorMoTypeStruct, 1, &null}, -1},
        {"s", {VorMoTypeString, 1, nullptr}, -1},   {"s", {VorMoTypeString, 1, &null}, -1},
        {"u", {VorMoTypeUint16, 1, &large}, -1},    {"e", {VorMoTypeEnum, 1, &large}, -1},
        {"b", {VorMoTypeBool, 1, &large}, -1},      {"s", {VorMoTypeBool, 1, &text}, -1},
        {"e", {VorMoTypeEnum, 2, two}, -1},         {"x", {VorMoTypeString, 1, &text}, -2}};
    for (const auto& [attribute, container, code] : rows)
        EXPECT_EQ(table.setMoAttribute(handle, first, attribute, &container), code) << attribute;
    const AttributeValues written{StructValue{{"m", "v"}}};
    EXPECT_EQ(transactions.written(handle, first, "t"), written);
    EXPECT_EQ(table.setMoAttribute(0, first, "s", &texts), VorReturnAbsent);
    EXPECT_EQ(table.setMoAttribute(handle, nullptr, "s", &texts), VorReturnFailed);

    KelMoNamedAttributeValueContainer_3 s{"s", &texts}, u{"u", &texts};
    KelMoNamedAttributeValueContainer_3 hollow{"s", nullptr}, *holed[]{&s, &hollow, nullptr};
    KelMoNamedAttributeValueContainer_3 *bad[]{&s, &u, nullptr}, *good[]{&s, nullptr};
    EXPECT_EQ(table.setMoAttributes(handle, first, bad), VorReturnFailed);
    EXPECT_EQ(table.setMoAttributes(handle, first, holed), VorReturnFailed);
    EXPECT_EQ(transactions.written(handle, first, "s"), std::nullopt) << "all or none";
    EXPECT_EQ(table.setMoAttributes(handle, first, good), VorReturnOk);
    EXPECT_EQ(transactions.written(handle, first, "s"), AttributeValues{"v"});
}

TEST_F(ManagedObjectServiceTest, KnowsItsObjectsInCreationOrder) {
    for (const auto& [dn, expected] : {std::pair("A=2,B=1", true), {"A=2,B=9", false}}) {
        bool exists = !expected;
        EXPECT_EQ(table.existsMo(handle, dn, &exists), VorReturnOk);
        EXPECT_EQ(exists, expected);
    }
    for (const auto& [dn, expected] : {std::pair("A=1", 1U), {"A=1,B=9", 0}}) {
        unsigned long long count = 9;
        EXPECT_EQ(table.countMoChildren(handle, dn, "A,B", &count), VorReturnOk);
        EXPECT_EQ(count, expected) << dn;
    }
    unsigned long long below = 0;
    ASSERT_EQ(table.newMoIterator(handle, "A=2", "A,B", &below), VorReturnOk);
    model->addObject("A=2,B=2");
    char* found = nullptr;
    ASSERT_EQ(table.nextMo(below, &found), VorReturnOk);
    EXPECT_STREQ(found, "A=2,B=1");
    EXPECT_EQ(table.nextMo(below, &found), VorReturnAbsent);
    EXPECT_EQ(table.finalizeMoIterator(below), VorReturnOk);
    EXPECT_EQ(table.nextMo(below, &found), VorReturnFailed);
    EXPECT_EQ(table.newMoIterator(0, nullptr, "A,B", &below), VorReturnAbsent);
}

TEST_F(ManagedObjectServiceTest, AnswersOpenTransactionsOnly) {
    transactions.table().abortTransaction(handle);
    bool exists = false;
    unsigned long long count = 0;
    VorMoAttributeValueResult_3 result{};
    EXPECT_EQ(table.existsMo(handle, first, &exists), VorReturnAbsent);
    EXPECT_EQ(table.countMoChildren(handle, first, "A,B", &count), VorReturnAbsent);
    EXPECT_EQ(table.getMoAttribute(handle, first, "s", &result), VorReturnAbsent);
    EXPECT_EQ(result.container, nullptr);
}

TEST_F(ManagedObjectServiceTest, RefusesWhatItCannotDo) {
    EXPECT_EQ(table.createMo(handle, first, "B", "id", "1", nullptr), VorReturnFailed);
    EXPECT_EQ(table.deleteMo(handle, second), VorReturnFailed);
    EXPECT_EQ(table.action(handle, first, "a", nullptr, nullptr), VorReturnFailed);
    EXPECT_EQ(table.finalizeMoIterator(0), VorReturnFailed);
}

TEST_F(ManagedObjectServiceTest, RefusesNumbersBelowTheirType) {
    VorMoAttributeValue_3 negative{.number = -1}, low{.number = -32769}, lowest{.number = -32768};
    const VorMoAttributeValueContainer_3 u{VorMoTypeUint16, 1, &negative}, e{VorMoTypeEnum, 1, &low},
        good{VorMoTypeEnum, 1, &lowest};
    EXPECT_EQ(table.setMoAttribute(handle, first, "u", &u), VorReturnFailed);
    EXPECT_EQ(table.setMoAttribute(handle, first, "e", &e), VorReturnFailed);
    EXPECT_EQ(table.setMoAttribute(handle, first, "e", &good), VorReturnOk);
}

}  // namespace
}  // namespace VorNode
