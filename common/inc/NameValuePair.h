#pragma once

#include <string>

#include "VorOamSpiEventRouter.h"

namespace Vor {

/// A filter entry that owns its texts.
class NameValuePair : public KelNameValuePair {
  public:
    /// The value is copied.
    NameValuePair(const std::string& pairName, const std::string& pairValue)
        : KelNameValuePair{nullptr, nullptr}, _name(pairName), _value(pairValue), _ownsValue(true) {
        pointAtOwnTexts();
    }

    /// The value pointer is kept as it is, and must stay valid as long as the pair or a copy of it is in use.
    static NameValuePair withRawValue(const std::string& pairName, const char* rawValue) {
        NameValuePair pair(pairName, std::string());
        pair.value = rawValue;
        pair._ownsValue = false;
        return pair;
    }

    NameValuePair(const NameValuePair& other)
        : KelNameValuePair(other), _name(other._name), _value(other._value), _ownsValue(other._ownsValue) {
        pointAtOwnTexts();
    }
    NameValuePair& operator=(const NameValuePair& other) {
        KelNameValuePair::operator=(other);
        _name = other._name;
        _value = other._value;
        _ownsValue = other._ownsValue;
        pointAtOwnTexts();
        return *this;
    }

  private:
    void pointAtOwnTexts() {
        name = _name.c_str();
        if (_ownsValue) {
            value = _value.c_str();
        }
    }

    std::string _name;
    std::string _value;
    bool _ownsValue;
};

}  // namespace Vor
