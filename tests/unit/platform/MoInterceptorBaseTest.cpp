#include <sstream>

#include <gtest/gtest.h>

#include "MoInterceptorBase.h"
#include "PmEngine.h"

namespace VorTest {
namespace {

using Base = VorExtCmRouterService::MoInterceptorBase;
using Objects = VorOamSpiManagedObject_1;

struct Interceptor : Base {
    using Base::initialize;
};

std::string textOf(const auto&... arguments) {
    std::ostringstream text;
    ((text << arguments << ' '), ...);
    return text.str();
}

/// The operation that the raw interface was asked for, and its arguments; texts are told by what they say.
std::string asked;

template <auto OperationT>
void record(Objects& table, const char* name) {
    static const char* operation;
    operation = name;
    table.*OperationT = [](auto... arguments) {
        asked = operation + (' ' + textOf(arguments...));
        return KelReturnT{42};
    };
}

}  // namespace

TEST(MoInterceptorBase, ForwardsEachOperationWithItsArguments) {
    PmEngine engine;
    record<&Objects::getMoAttribute>(engine.objectTable, "getMoAttribute");
    record<&Objects::getMoAttributes>(engine.objectTable, "getMoAttributes");
    record<&Objects::setMoAttribute>(engine.objectTable, "setMoAttribute");
    record<&Objects::setMoAttributes>(engine.objectTable, "setMoAttributes");
    record<&Objects::newMoIterator>(engine.objectTable, "newMoIterator");
    record<&Objects::nextMo>(engine.objectTable, "nextMo");
    record<&Objects::createMo>(engine.objectTable, "createMo");
    record<&Objects::deleteMo>(engine.objectTable, "deleteMo");
    record<&Objects::action>(engine.objectTable, "action");
    record<&Objects::finalizeMoIterator>(engine.objectTable, "finalizeMoIterator");
    record<&Objects::existsMo>(engine.objectTable, "existsMo");
    record<&Objects::countMoChildren>(engine.objectTable, "countMoChildren");
    Interceptor unready, interceptor;
    const auto expectForwarded = [&](const char* name, auto operation, auto... arguments) {
        EXPECT_EQ((unready.*operation)(arguments...), VorReturnFailed) << name;
        EXPECT_EQ((interceptor.*operation)(arguments...), 42) << name;
        EXPECT_EQ(asked, name + (' ' + textOf(arguments...)));
    };
    interceptor.initialize();

    const unsigned long transaction = 7;
    const unsigned long long iterator = 8;
    unsigned long long number = 0;
    bool exists = false;
    char* found = nullptr;
    const char* names[] = {nullptr};
    const VorMoAttributeValueContainer_3 container{};
    VorMoNamedAttributeValueContainer_3* members[] = {nullptr};
    VorMoAttributeValueResult_3 one{};
    VorMoAttributeValuesResult_3 several{};
    expectForwarded("getMoAttribute", &Base::getMoAttribute, transaction, "d", "a", &one);
    expectForwarded("getMoAttributes", &Base::getMoAttributes, transaction, "d", names, &several);
    expectForwarded("setMoAttribute", &Base::setMoAttribute, transaction, "d", "a", &container);
    expectForwarded("setMoAttributes", &Base::setMoAttributes, transaction, "d", members);
    expectForwarded("newMoIterator", &Base::newMoIterator, transaction, "d", "c", &number);
    expectForwarded("nextMo", &Base::nextMo, iterator, &found);
    expectForwarded("createMo", &Base::createMo, transaction, "d", "c", "k", "v", members);
    expectForwarded("deleteMo", &Base::deleteMo, transaction, "d");
    expectForwarded("action", &Base::action, transaction, "d", "a", members, &one);
    expectForwarded("finalizeMoIterator", &Base::finalizeMoIterator, iterator);
    expectForwarded("existsMo", &Base::existsMo, transaction, "d", &exists);
    expectForwarded("countMoChildren", &Base::countMoChildren, transaction, "d", "c", &number);
}

}  // namespace VorTest
