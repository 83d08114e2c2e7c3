#pragma once

#include <string>

#include <Poco/AutoPtr.h>
#include <Poco/DOM/NodeList.h>
#include <Poco/Mutex.h>

#include "VorConfiguration.h"

namespace VorPm {

/// The component's settings: the elements within the one "VorPmComp" element of the configuration file. Every
/// setting has a default. Any thread; the results are 0 success, -1 error, -2 not found.
class PmConfigHandler : public Vor::VorConfiguration {
  public:
    PmConfigHandler() = default;
    ~PmConfigHandler() override;

    /// Reads the file `config` in place of what was loaded. 0, or -1 with nothing loaded or with no, or
    /// several, "VorPmComp" elements.
    int load(const std::string& config);
    /// Always 0.
    int unload();

    /// The text of the setting `name`. -2 when it is absent or no configuration is loaded, -1 when it is
    /// given more than once.
    int getElementValue(const std::string& name, std::string& value);

    /// "maxNoOfPmFiles", 1000 when absent. 0, or -1 with a message.
    int getMaxNoOfPmFiles(unsigned short& max);

    /// A boolean setting, false when absent or empty. 0, or -1 with a message and `value` unchanged.
    int getBooleanValueFromCfg(const std::string& key, bool& value);

    /// "pmTimerExpirationTime" in s, 0 when absent; the number at the start of a text that is no number.
    int getPmTimerExpirationTime();

  private:
    static constexpr unsigned short defaultMaxNoOfPmFiles = 1000;

    /// Guards the two below and every use of the document: the XML library's reference counts are not atomic.
    Poco::Mutex _mutex;
    bool _loaded = false;
    Poco::AutoPtr<Poco::XML::NodeList> _components;
};

}  // namespace VorPm
