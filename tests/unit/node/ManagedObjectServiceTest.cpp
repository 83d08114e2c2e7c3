#include <thread>

#include <gtest/gtest.h>

#include "MoAccessor.h"
#include "Portal.h"
#include "framework/InterfaceRegistry.h"
#include "services/ManagedObjectService.h"

namespace VorNode {

namespace {

using Vor::MoAccessor;
using MoEnum = MoAccessor::Enum;

constexpr const char* first = "A=1,B=9";
constexpr const char* second = "A=2,B=1";

/// The code with which the platform refuses; 0 when it does not.
template <class UseT>
int codeOf(UseT use) {
    try {
        use();
    } catch (const Vor::VorException& refusal) {
        return refusal.retCode();
    }
    return VorReturnOk;
}

/// The services over a small model, reached as a component reaches them.
class ManagedObjectServiceTest : public testing::Test {
  protected:
    ManagedObjectServiceTest() {
        ClassDefinition definition{"A,B", {}};
        for (std::size_t type = 0; type < std::variant_size_v<AttributeValue>; ++type)
            definition.attributes.push_back(
                {std::string(1, "sbuert"[type]), static_cast<AttributeType>(type)});
        definition.attributes.push_back({"es", AttributeType::Enum, Arity::Sequence});
        _model.addClass({"A", {}});
        _model.addClass(definition);
        for (const char* dn : {"A=1", first, "A=22,B=1", second})
            _model.addObject(dn);
        _model.commit({{first, "s", {"text"}},
                       {first, "e", {std::int16_t{-7}}},
                       {first, "t", {StructValue{{"name", "n"}, {"revision", "r"}}}}});
        _registry.offer(_objects.interface());
        _registry.offer(_transactions.interface());
        Vor::Portal::instance().connect(&InterfaceRegistry::lookUp);
    }
    ~ManagedObjectServiceTest() override { Vor::Portal::instance().connect(nullptr); }

    Model _model;
    TransactionService _transactions{_model};
    ManagedObjectService _objects{_model, _transactions};
    InterfaceRegistry _registry;
    const VorOamSpiManagedObject_1& _table =
        reinterpret_cast<VorOamSpiManagedObject_1&>(_objects.interface());
};

}  // namespace

TEST_F(ManagedObjectServiceTest, ReadsTypedValues) {
    MoAccessor accessor(0, 10);
    EXPECT_EQ(accessor.getAttr<std::string>(first, "s"), "text");
    EXPECT_EQ(accessor.getAttr<MoEnum>(first, "e"), -7);
    EXPECT_EQ(codeOf([&] { accessor.getAttr<std::string>(first, "e"); }), VorReturnFailed);
    EXPECT_EQ(codeOf([&] { accessor.getAttr<std::string>(first, "x"); }), VorReturnAbsent);
    EXPECT_EQ(codeOf([&] { accessor.getAttr<std::string>("A=3,B=1", "s"); }), VorReturnAbsent);
    const auto members = accessor.getAttr<MoAccessor::Struct>(first, "t");
    EXPECT_EQ(members.get<std::string>("name") + members.get<std::string>("revision"), "nr");
    EXPECT_THROW(members.get<std::string>("number"), Vor::VorException);
}

TEST_F(ManagedObjectServiceTest, ShowsWritesToOthersOnlyAfterCommit) {
    MoAccessor(0, 10).setAttr<std::string>(first, "s", "dropped");
    MoAccessor writer(0, 10);
    writer.setAttr<std::string>(first, "s", "1st");
    writer.setAttr<std::string>(first, "s", "2nd");
    writer.setAttr<bool>(first, "b", true);
    writer.setAttr<unsigned short>(first, "u", 65535);
    writer.setSeqAttr<MoEnum>(first, "es", {MoEnum(3), MoEnum(-1)});
    writer.setAttr<MoAccessor::MoRef>(first, "r", MoAccessor::MoRef(second));
    writer.setSeqAttr<MoEnum>(first, "e", {});
    EXPECT_THROW(writer.setAttr<bool>(first, "s", true), Vor::VorException);
    EXPECT_THROW(writer.setSeqAttr<MoEnum>(first, "e", {MoEnum(1), MoEnum(2)}), Vor::VorException);
    EXPECT_THROW(writer.setAttr<std::string>(first, "x", ""), Vor::VorException);
    EXPECT_EQ(writer.getAttr<std::string>(first, "s"), "2nd");
    EXPECT_FALSE(writer.getOptionalAttr<MoEnum>(first, "e").isSet);
    EXPECT_THROW(_model.commit({{first, "s", {"none"}}, {first, "b", {"x"}}}), std::invalid_argument);
    EXPECT_EQ(MoAccessor(0, 10).getAttr<std::string>(first, "s"), "text");
    writer.commitTransaction();

    EXPECT_EQ(MoAccessor(0, 10).getAttr<std::string>(first, "s"), "2nd");
    EXPECT_EQ(_model.read(first, "e"), AttributeValues{});
    EXPECT_EQ(_model.read(first, "es"), (AttributeValues{std::int16_t{3}, std::int16_t{-1}}));
    EXPECT_EQ(_model.readSingle<bool>(first, "b"), true);
    EXPECT_EQ(_model.readSingle<std::uint16_t>(first, "u"), 65535);
    EXPECT_EQ(_model.readSingle<Reference>(first, "r"), Reference{second});
    EXPECT_EQ(codeOf([&] { writer.commitTransaction(); }), VorReturnAbsent) << "it has ended";
}

TEST_F(ManagedObjectServiceTest, WritesStructsAndRefusesMalformedContainers) {
    const MoAccessor accessor(0, 10);
    const auto set = [&](const char* attribute, const VorMoAttributeValueContainer_3& container) {
        return _table.setMoAttribute(accessor.getTransaction(), first, attribute, &container);
    };
    VorMoAttributeValue_3 text{.text = "v"}, nothing{.text = nullptr}, tooLarge{.number = 65536};
    VorMoAttributeValueContainer_3 texts{VorMoTypeString, 1, &text}, unset{VorMoTypeString, 0, nullptr};
    KelMoNamedAttributeValueContainer_3 m{"m", &texts}, n{"n", &unset}, *members[]{&m, &n, nullptr};
    VorMoAttributeValue_3 structure{.members = members};
    EXPECT_EQ(set("t", {VorMoTypeStruct, 1, &structure}), VorReturnOk);
    const AttributeValues expected{(StructValue{{"m", "v"}})};
    EXPECT_EQ(_transactions.written(accessor.getTransaction(), first, "t"), expected);
    const std::pair<const char*, VorMoAttributeValueContainer_3> malformed[] = {
        {"s", {VorMoTypeString, 1, nullptr}},  {"s", {VorMoTypeString, 1, &nothing}},
        {"t", {VorMoTypeStruct, 1, &nothing}}, {"u", {VorMoTypeUint16, 1, &tooLarge}},
        {"e", {VorMoTypeEnum, 1, &tooLarge}},  {"b", {VorMoTypeBool, 1, &tooLarge}}};
    for (const auto& [attribute, container] : malformed)
        EXPECT_EQ(set(attribute, container), VorReturnFailed) << attribute;
    EXPECT_EQ(_table.setMoAttribute(0, first, "s", &texts), VorReturnAbsent);
    EXPECT_EQ(_table.setMoAttribute(accessor.getTransaction(), nullptr, "s", &texts), VorReturnFailed);
}

TEST_F(ManagedObjectServiceTest, TakesSeveralAttributesAtOnce) {
    const MoAccessor accessor(0, 10);
    const unsigned long handle = accessor.getTransaction();
    VorMoAttributeValue_3 text{.text = "new"}, number{.number = 5};
    VorMoAttributeValueContainer_3 texts{VorMoTypeString, 1, &text}, numbers{VorMoTypeEnum, 1, &number};
    KelMoNamedAttributeValueContainer_3 s{"s", &texts}, e{"e", &numbers}, wrong{"u", &texts};
    KelMoNamedAttributeValueContainer_3 *good[]{&s, &e, nullptr}, *bad[]{&s, &wrong, nullptr};
    EXPECT_EQ(_table.setMoAttributes(handle, first, bad), VorReturnFailed);
    EXPECT_EQ(_transactions.written(handle, first, "s"), std::nullopt) << "all or none";
    EXPECT_EQ(_table.setMoAttributes(handle, first, good), VorReturnOk);

    const char *names[]{"e", "b", "s", nullptr}, *unknown[]{"s", "x", nullptr};
    VorMoAttributeValuesResult_3 result{};
    EXPECT_EQ(_table.getMoAttributes(handle, first, unknown, &result), VorReturnAbsent);
    EXPECT_EQ(result.containers, nullptr);
    ASSERT_EQ(_table.getMoAttributes(handle, first, names, &result), VorReturnOk);
    EXPECT_EQ(result.containers[0]->values[0].number, 5);
    EXPECT_EQ(result.containers[1]->valueCount, 0);
    EXPECT_STREQ(result.containers[2]->values[0].text, "new");
    result.release(result.containers);
}

TEST_F(ManagedObjectServiceTest, KnowsItsObjects) {
    const MoAccessor accessor(0, 10);
    const unsigned long handle = accessor.getTransaction();
    bool exists = false;
    EXPECT_EQ(_table.existsMo(handle, second, &exists), VorReturnOk);
    EXPECT_TRUE(exists);
    EXPECT_EQ(_table.existsMo(handle, "A=2,B=9", &exists), VorReturnOk);
    EXPECT_FALSE(exists);
    unsigned long long count = 0;
    EXPECT_EQ(_table.countMoChildren(handle, "A=1", "A,B", &count), VorReturnOk);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(_table.countMoChildren(handle, first, "A,B", &count), VorReturnOk);
    EXPECT_EQ(count, 0) << "an object is not its own child";
}

TEST_F(ManagedObjectServiceTest, IteratesInCreationOrder) {
    MoAccessor accessor(0, 10);
    std::string dn;
    accessor.getFirstMoInstance("A,B", dn);
    EXPECT_EQ(dn, first);
    EXPECT_EQ(codeOf([&] { accessor.getFirstMoInstance("C", dn); }), VorReturnAbsent);

    unsigned long long below = 0;
    ASSERT_EQ(_table.newMoIterator(accessor.getTransaction(), "A=2", "A,B", &below), VorReturnOk);
    _model.addObject("A=2,B=2");
    char* found = nullptr;
    ASSERT_EQ(_table.nextMo(below, &found), VorReturnOk);
    EXPECT_STREQ(found, second);
    EXPECT_EQ(_table.nextMo(below, &found), VorReturnAbsent);
    EXPECT_EQ(_table.finalizeMoIterator(below), VorReturnOk);
    EXPECT_EQ(_table.nextMo(below, &found), VorReturnFailed);
    EXPECT_EQ(_table.newMoIterator(0, nullptr, "A,B", &below), VorReturnAbsent);
}

TEST_F(ManagedObjectServiceTest, ServesSeveralThreads) {
    const auto count = [](const std::string& dn, std::int16_t last) {
        for (std::int16_t i = 0; i <= last; ++i) {
            MoAccessor writer(0, 10);
            writer.setAttr<MoEnum>(dn, "e", MoEnum(i));
            writer.commitTransaction();
            EXPECT_EQ(MoAccessor(0, 10).getAttr<MoEnum>(dn, "e"), i);
        }
    };
    std::thread other(count, first, 100);
    count(second, 100);
    other.join();
}

}  // namespace VorNode
