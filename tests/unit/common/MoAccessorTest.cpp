#include <set>

#include <gmock/gmock.h>

#include "MoAccessor.h"
#include "PmAttributeLookup.h"
#include "PmEngine.h"
#include "Portal.h"

namespace VorTest {

using Vor::MoAccessor;

TEST(MoAccessor, LooksAtNumberAndTypeInTheirOrder) {
    PmEngine engine;
    const std::string periods = "supportedRopPeriods", location = "fileLocation", of = capabilitiesDn + "::";
    engine.model->commit({{capabilitiesDn, periods, {std::int16_t{1}, std::int16_t{2}}}});
    Vor::MoAccessor accessor(1, 60);
    const auto refuses = [](const std::string& text) {
        return testing::ThrowsMessage<Vor::VorException>(text);
    };
    const std::string sequence = "Attribute is a sequence: " + of + periods;
    EXPECT_THAT([&] { accessor.getAttr<std::string>(capabilitiesDn, location); },
                refuses("Attribute has no value set: " + of + location));
    EXPECT_FALSE(accessor.getOptionalAttr<std::string>(capabilitiesDn, location).isSet);
    EXPECT_THAT([&] { accessor.getAttr<std::string>(capabilitiesDn, periods); }, refuses(sequence));
    EXPECT_THAT([&] { accessor.getOptionalAttr<std::string>(capabilitiesDn, periods); },
                refuses("Attribute has type 4, expected 1"));
    EXPECT_THAT([&] { accessor.getOptionalAttr<Vor::MoAccessor::Enum>(capabilitiesDn, periods); },
                refuses(sequence));
    EXPECT_THAT([&] { accessor.setSeqAttr<std::string>("d", "a", {"x"}); },
                refuses("Failed to set attribute :'a' in MO :d, reason (-2 )!"));
    EXPECT_EQ(engine.messages(), (Texts{"3 getAttr " + sequence, "3 getOptionalAttr " + sequence,
                                        "3 setSeqAttr Failed to write 'a' from MO ( error:-2 )!"}));
}

TEST(MoAccessor, RefusesTheValueOfAnotherType) {
    PmEngine engine;
    engine.model->commit({{capabilitiesDn, "supportedRopPeriods", {std::int16_t{1}}}});
    EXPECT_THAT([] { MoAccessor(1, 60).getAttr<std::string>(capabilitiesDn, "supportedRopPeriods"); },
                testing::ThrowsMessage<Vor::VorException>("Attribute has type 4, expected 1"));
}

TEST(MoAccessor, GivesEveryContainerBackAlsoWhenItRefusesIt) {
    static VorMoAttributeValue_3 values[2]{{.number = 7}, {}};
    static VorMoAttributeValueContainer_3 answer;
    static int given = 0;
    PmEngine engine;
    engine.objectTable.getMoAttribute = [](auto, auto, auto, auto* result) {
        ++given;
        *result = {[](auto*) { --given; }, &answer};
        return KelReturnT{0};
    };
    MoAccessor accessor(1, 60);
    const auto read = [&accessor] { return accessor.getAttr<MoAccessor::Enum>("d", "a"); };
    answer = {VorMoTypeEnum, 1, values};
    EXPECT_EQ(read(), 7);
    answer = {VorMoTypeEnum, 2, values};
    EXPECT_THROW(read(), Vor::VorException) << "a sequence";
    answer = {VorMoTypeEnum, 1, nullptr};
    EXPECT_THROW(read(), Vor::VorException) << "one value, and none there";
    EXPECT_EQ(given, 0);
}

TEST(MoAccessor, EndsEveryIterationAlsoWhenThereIsNoInstance) {
    static VorOamSpiManagedObject_1 genuine;
    static std::set<unsigned long long> iterators;
    PmEngine engine;
    genuine = engine.objectTable;
    engine.objectTable.newMoIterator = [](auto transaction, auto base, auto path, auto* iterator) {
        const KelReturnT code = genuine.newMoIterator(transaction, base, path, iterator);
        iterators.insert(*iterator);
        return code;
    };
    engine.objectTable.finalizeMoIterator = [](auto iterator) {
        iterators.erase(iterator);
        return genuine.finalizeMoIterator(iterator);
    };
    MoAccessor accessor(1, 60);
    std::string dn;
    accessor.getFirstMoInstance("ManagedElement", dn);
    EXPECT_EQ(dn, elementDn);
    EXPECT_THROW(accessor.getFirstMoInstance("ManagedElement,None", dn), Vor::VorException);
    engine.objectTable.nextMo = [](auto, auto** next) { return *next = nullptr, KelReturnT{0}; };
    EXPECT_THROW(accessor.getFirstMoInstance("ManagedElement", dn), Vor::VorException) << "no name";
    EXPECT_EQ(iterators.size(), 0U);
}

TEST(MoAccessor, TakesNoNumberOfAStructForAText) {
    VorMoAttributeValue_3 one{};
    one.number = 1;
    VorMoAttributeValueContainer_3 number{VorMoTypeUint16, 1, &one};
    KelMoNamedAttributeValueContainer_3 member{"productNumber", &number};
    KelMoNamedAttributeValueContainer_3* members[] = {&member, nullptr};
    VorMoAttributeValue_3 value{};
    value.members = members;
    const Vor::MoAccessor::Struct product(value);
    EXPECT_THAT([&] { product.get<std::string>("productNumber"); },
                testing::ThrowsMessage<Vor::VorException>("Attribute has type 3, expected 1"));
}

TEST(Portal, LooksTheModelRepositoryUpAgainWhenItGotNone) {
    PmEngine engine;
    Vor::Portal& portal = Vor::Portal::instance();
    static KelMgmtSpiInterface_1* offered;
    offered = nullptr;
    portal.connect([](auto, auto** found) { return *found = offered, KelReturnT{0}; });
    EXPECT_EQ(portal.modelRepository(), nullptr);
    offered = &engine.repository.table().identity;
    EXPECT_NE(portal.modelRepository(), nullptr);
}

TEST(AttributeExists, TellsWhatItDoesNotFind) {
    PmEngine engine;
    EXPECT_FALSE(VorPm::attributeExists(capabilitiesDn.c_str(), "FileLocation"));
    EXPECT_FALSE(VorPm::attributeExists(pmRootDn.c_str(), "a")) << "a class without attributes";
    EXPECT_EQ(engine.messages(), Texts{});
    EXPECT_FALSE(VorPm::attributeExists("O=1", "a"));
    EXPECT_EQ(engine.messages(), Texts{"3 attributeExists moc of mo O=1  does not exist in the model"});
}

}  // namespace VorTest
