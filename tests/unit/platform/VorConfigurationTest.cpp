#include <gtest/gtest.h>

#include "TemporaryRoot.h"
#include "VorConfiguration.h"

namespace VorTest {

TEST(VorConfiguration, TakesAnyNumberOfElementsThatAreNotNested) {
    const TemporaryRoot root;
    std::string document = "<C>";
    for (int i = 0; i < 300; ++i)
        document += "<a><b/></a>";
    writeFile(root.path() / "c.xml", document + "</C>");
    Vor::VorConfiguration configuration;
    configuration.load(root.path() / "c.xml");
    const Poco::AutoPtr<Poco::XML::NodeList> elements = configuration.getElementsByTagName("b");
    EXPECT_EQ(elements->length(), 300U);
}

}  // namespace VorTest
