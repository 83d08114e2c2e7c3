#include <gmock/gmock.h>

#include "MoAccessor.h"
#include "PmAttributeLookup.h"
#include "PmEngine.h"

namespace VorTest {

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

TEST(AttributeExists, TellsWhatItDoesNotFind) {
    PmEngine engine;
    EXPECT_FALSE(VorPm::attributeExists(capabilitiesDn.c_str(), "FileLocation"));
    EXPECT_FALSE(VorPm::attributeExists(pmRootDn.c_str(), "a")) << "a class without attributes";
    EXPECT_EQ(engine.messages(), Texts{});
    EXPECT_FALSE(VorPm::attributeExists("O=1", "a"));
    EXPECT_EQ(engine.messages(), Texts{"3 attributeExists moc of mo O=1  does not exist in the model"});
}

}  // namespace VorTest
