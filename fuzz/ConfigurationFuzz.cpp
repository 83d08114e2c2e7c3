// The input is a configuration file. It loads or is refused; its settings can be looked up whatever they
// hold.
#include "FuzzSupport.h"
#include "LoggingWrapper.h"
#include "PmConfigHandler.h"
#include "VorException.h"

namespace {

using VorFuzz::expect;

/// Messages are formatted when somebody takes them.
void connectLog() {
    static const VorMwSpiLog_1 log{{}, [](const VorMwSpiLogRecord*) {}};
    static const KelMwSpiTrace trace{{}, [](const VorMwSpiLogRecord*) {}};
    Vor::LoggingWrapper::instance().connect(&log, &trace);
    Vor::LoggingWrapper::instance().setLevel(Vor::LoggingWrapper::traceLevel);
}

bool isWellFormed(const std::string& path) {
    try {
        Vor::VorConfiguration().load(path);
        return true;
    } catch (const Vor::VorException&) {
        return false;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    connectLog();
    const VorFuzz::InputFile file(VorFuzz::textOf(data, size));
    VorPm::PmConfigHandler settings;
    const bool loaded = settings.load(file.path()) == 0;
    expect(!loaded || isWellFormed(file.path()), "what is loaded is well-formed");

    unsigned short maximum = 7;
    const int maximumResult = settings.getMaxNoOfPmFiles(maximum);
    bool utc = true;
    const int utcResult = settings.getBooleanValueFromCfg("produceRopFilesInUtcFormat", utc);
    const int seconds = settings.getPmTimerExpirationTime();
    expect(loaded || (maximumResult == 0 && maximum == 1000 && utcResult == 0 && !utc && seconds == 0),
           "what is refused leaves the defaults");

    std::string text;
    const int textResult = settings.getElementValue("pmTimerExpirationTime", text);
    expect(textResult == 0 || seconds == 0, "a setting that is not there has its default");
    return 0;
}
