#include <sstream>
#include <thread>

#include "PmConfigHandler.h"
#include "ReportTest.h"

namespace VorTest {

class PmConfigHandlerTest : public StorageTest {
  protected:
    /// Loads the file and reads a setting, a boolean twice.
    std::string read(const std::string& getter) {
        std::ostringstream found;
        unsigned short maximum = 77;
        bool off = false;
        bool on = true;
        std::string value = "before";
        found << handler.load("c.xml") << ' ';
        if (getter == "maximum") {
            found << handler.getMaxNoOfPmFiles(maximum) << ' ' << maximum;
        } else if (getter == "timer") {
            found << handler.getPmTimerExpirationTime();
        } else if (getter == "element") {
            found << handler.getElementValue("key", value) << ' ' << value;
        } else {
            found << handler.getBooleanValueFromCfg(getter, off) << ' ' << off << ' ';
            found << handler.getBooleanValueFromCfg(getter, on) << ' ' << on;
        }
        return found.str();
    }

    PmConfigHandler handler;
};

TEST_F(PmConfigHandlerTest, readsTheSettings) {
    const auto readSetting = [this](const std::string& getter) { return read(getter); };
    expectRows(
        "settings.txt",
        {{"maximum", readSetting}, {"timer", readSetting}, {"utc", readSetting}, {"element", readSetting}});
}

TEST_F(PmConfigHandlerTest, answersSeveralThreadsAtOnce) {
    const std::string file = root.path() / "c.xml";
    writeFile(file, "<VorPmComp><pmTimerExpirationTime>5</pmTimerExpirationTime></VorPmComp>");
    ASSERT_EQ(handler.load(file), 0);
    std::vector<std::jthread> threads(4);
    for (std::jthread& thread : threads) {
        thread = std::jthread([this] {
            for (int round = 0; round < 2000; ++round) {
                ASSERT_EQ(handler.getPmTimerExpirationTime(), 5);
            }
        });
    }
}

}  // namespace VorTest
