#include "PmConfigHandler.h"

#include <exception>

#include <Poco/DOM/Element.h>
#include <Poco/String.h>

#include "PmLog.h"
#include "ToInt.h"

namespace VorPm {

PmConfigHandler::~PmConfigHandler() {
    PmConfigHandler::unload();
}

int PmConfigHandler::load(const std::string& config) {
    Poco::Mutex::ScopedLock lock(_mutex);
    LOG_TRACE(" >> \n%s", config.c_str());
    LOG_TRACE("unloading before loading configuration");
    unload();
    int result = VorReturnFailed;
    try {
        VorConfiguration::load(config);
        _components = getElementsByTagName("VorPmComp");
        if (_components->length() == 0) {
            LOG_ERROR("No VorPmComp configuration found");
        } else if (_components->length() > 1) {
            LOG_ERROR("Multiple VorPmComp configurations found");
        } else {
            _loaded = true;
            result = VorReturnOk;
        }
        LOG_TRACE("VorPmComp tag found");
        LOG_TRACE(" << ");
    } catch (const std::exception& fault) {
        LOG_WARNING("Caught exception: %s", fault.what());
        unload();
    }
    return result;
}

int PmConfigHandler::unload() {
    Poco::Mutex::ScopedLock lock(_mutex);
    VorConfiguration::unload();
    if (!_components.isNull()) {
        LOG_TRACE("releasing component list");
        _components = nullptr;
    }
    _loaded = false;
    return VorReturnOk;
}

int PmConfigHandler::getElementValue(const std::string& name, std::string& value) {
    Poco::Mutex::ScopedLock lock(_mutex);
    if (!_loaded) {
        LOG_WARNING("No configuration loaded!");
        value.clear();
        return VorReturnAbsent;
    }
    auto* component = static_cast<Poco::XML::Element*>(_components->item(0));
    const Poco::AutoPtr<Poco::XML::NodeList> settings = component->getElementsByTagName(name);
    const unsigned long count = settings->length();
    if (count == 0) {
        return VorReturnAbsent;
    }
    if (count > 1) {
        LOG_ERROR("Configuration File does not have the correct format (%lu) , %s", count, name.c_str());
        return VorReturnFailed;
    }
    value = get_text(static_cast<Poco::XML::Element*>(settings->item(0)));
    return VorReturnOk;
}

int PmConfigHandler::getMaxNoOfPmFiles(unsigned short& max) {
    std::string text;
    const int result = getElementValue("maxNoOfPmFiles", text);
    if (result == VorReturnAbsent) {
        LOG_TRACE("maxNoOfPmFiles does not exist in cfg file, setting it to default (1000)");
        max = defaultMaxNoOfPmFiles;
        return VorReturnOk;
    }
    if (result != VorReturnOk) {
        return result;
    }
    try {
        Vor::toInt<unsigned short>(text, max);
        return VorReturnOk;
    } catch (const std::exception& fault) {
        LOG_ERROR("Problem reading 'maxNoOfPmFiles' attribute . Reason: '%s'", fault.what());
        return VorReturnFailed;
    }
}

int PmConfigHandler::getPmTimerExpirationTime() {
    int seconds = 0;
    std::string text;
    const int result = getElementValue("pmTimerExpirationTime", text);
    if (result == VorReturnAbsent) {
        LOG_TRACE("pmTimerExpirationTime does not exist in cfg file");
    }
    if (result != VorReturnOk) {
        return 0;
    }
    try {
        Vor::toInt<int>(text, seconds);
    } catch (const std::exception& fault) {
        LOG_ERROR("Problem reading 'pmTimerExpirationTime' attribute . Reason: '%s'", fault.what());
    }
    return seconds;
}

int PmConfigHandler::getBooleanValueFromCfg(const std::string& key, bool& value) {
    std::string text;
    const int result = getElementValue(key, text);
    if (result == VorReturnAbsent) {
        LOG_TRACE("'%s' does not exist in cfg file, setting it to default (false)", key.c_str());
        value = false;
        return VorReturnOk;
    }
    if (result != VorReturnOk) {
        return result;
    }
    if (text.empty()) {
        LOG_TRACE("'%s' value is empty, setting it to default (false).", key.c_str());
        value = false;
        return VorReturnOk;
    }
    const std::string word = Poco::toLower(Poco::trim(text));
    if (word == "true") {
        LOG_TRACE("%s enabled.", key.c_str());
        value = true;
    } else if (word == "false") {
        LOG_TRACE("%s disabled.", key.c_str());
        value = false;
    } else {
        LOG_ERROR("%s value is invalid.", key.c_str());
        return VorReturnFailed;
    }
    return VorReturnOk;
}

}  // namespace VorPm
