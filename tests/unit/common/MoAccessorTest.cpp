#include <gtest/gtest.h>

#include "MoAccessor.h"
#include "PmAttributeLookup.h"
#include "PmEngine.h"

namespace VorTest {

namespace {

using Vor::MoAccessor;

/// What the refusal says; empty when there is none.
template <class UseT>
std::string refusalOf(UseT use) {
    try {
        use();
    } catch (const Vor::VorException& refusal) {
        return refusal.what();
    }
    return "";
}

}  // namespace

TEST(MoAccessor, LooksAtNumberAndTypeInTheirOrder) {
    PmEngine engine;
    const std::string periods = "supportedRopPeriods", location = "fileLocation", of = capabilitiesDn + "::";
    engine.model->commit({{capabilitiesDn, periods, {std::int16_t{1}, std::int16_t{2}}}});
    MoAccessor accessor(1, 60);
    const auto get = [&](const std::string& name) {
        return refusalOf([&] { accessor.getAttr<std::string>(capabilitiesDn, name); });
    };
    const auto getOptional = [&](auto type, const std::string& name) {
        return refusalOf([&] { accessor.getOptionalAttr<decltype(type)>(capabilitiesDn, name); });
    };
    const std::string sequence = "Attribute is a sequence: " + of + periods;
    EXPECT_EQ(get(location), "Attribute has no value set: " + of + location);
    EXPECT_EQ(getOptional(std::string(), location), "");
    EXPECT_EQ(engine.messages(), Texts{});
    EXPECT_EQ(get(periods), sequence) << "the number before the type";
    EXPECT_EQ(engine.messages(), Texts{"3 getAttr " + sequence});
    EXPECT_EQ(getOptional(std::string(), periods), "Attribute has type 4, expected 1") << "and after it";
    EXPECT_EQ(getOptional(MoAccessor::Enum(), periods), sequence);
    EXPECT_EQ(engine.messages(), Texts{"3 getOptionalAttr " + sequence});
    EXPECT_EQ(refusalOf([&] { accessor.setSeqAttr<std::string>("d", "a", {"x"}); }),
              "Failed to set attribute :'a' in MO :d, reason (-2 )!");
    EXPECT_EQ(engine.messages(), Texts{"3 setSeqAttr Failed to write 'a' from MO ( error:-2 )!"});
}

TEST(AttributeExists, LooksTheAttributeUpInTheObjectsClass) {
    {
        PmEngine engine;
        EXPECT_TRUE(VorPm::attributeExists(capabilitiesDn.c_str(), "fileLocation"));
        EXPECT_FALSE(VorPm::attributeExists(capabilitiesDn.c_str(), "FileLocation"));
        EXPECT_FALSE(VorPm::attributeExists(pmRootDn.c_str(), "a")) << "a class without attributes";
        EXPECT_EQ(engine.messages(), Texts{});
        EXPECT_FALSE(VorPm::attributeExists("O=1", "a"));
        EXPECT_EQ(engine.messages(), Texts{"3 attributeExists moc of mo O=1  does not exist in the model"});
    }
    PmEngine engine({"VorOamSpiModelRepository 2"});
    EXPECT_THROW(VorPm::attributeExists(capabilitiesDn.c_str(), "fileLocation"), Vor::VorException);
    EXPECT_EQ(engine.messages(), Texts{"4 spi Interface VorOamSpiModelRepository not found"});
}

}  // namespace VorTest
