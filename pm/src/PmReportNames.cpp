#include "PmReportNames.h"

#include <algorithm>
#include <string_view>

#include <Poco/Exception.h>

#include "PmLog.h"
#include "VorException.h"

namespace VorPm {

namespace {

constexpr std::size_t shortestName = 23;
constexpr std::size_t utcTimesLength = 9;  // hhmm-hhmm

bool hasLetter(std::string_view text) {
    return std::any_of(text.begin(), text.end(),
                       [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); });
}

/// The period's part of the name, between the first "." and the first "_"; up to the end when no "_" follows.
std::string_view periodText(std::string_view fileName) {
    const std::size_t start = fileName.find('.') + 1;
    return fileName.substr(start, fileName.find('_') - start);
}

/// The part that tells the element and the job group.
std::string ownerText(const std::string& fileName) {
    const std::size_t start = fileName.find('_') + 1;
    return fileName.substr(start, fileName.rfind(".xml") - start);
}

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the name is the caller's to give away.
bool isValidROPFileName(std::string fileName) {
    return fileName.size() >= shortestName && (fileName.ends_with(".xml") || fileName.ends_with(".gz")) &&
           !hasLetter(std::string_view(fileName).substr(1, 8)) && !hasLetter(periodText(fileName));
}

void constructTimeStamp(const std::string& fileName, std::string& beginTime, std::string& endTime) {
    const auto part = [&fileName](std::size_t position, std::size_t length) {
        return fileName.substr(position, length);
    };
    const std::string date = part(1, 4) + "-" + part(5, 2) + "-" + part(7, 2) + "T";
    beginTime = date + part(10, 2) + ":" + part(12, 2) + ":00" + part(14, 3) + ":" + part(17, 2);
    endTime = date + part(20, 2) + ":" + part(22, 2) + ":00" + part(24, 3) + ":" + part(27, 2);
}

std::string generateKey(const std::string& fileName) {
    if (periodText(fileName).size() == utcTimesLength) {
        return fileName.substr(1, 8) + fileName.substr(fileName.find('-') + 1, 4) +
               fileName.substr(fileName.find('.') + 1, 4) + ownerText(fileName);
    }
    std::string beginTime;
    std::string endTime;
    constructTimeStamp(fileName, beginTime, endTime);
    try {
        return convertToUtc(endTime, "%Y%m%d%H%M") + convertToUtc(beginTime, "%H%M") + ownerText(fileName);
    } catch (const Poco::SyntaxException& fault) {
        LOG_ERROR("Unable to convert data/time to UTC. Exception: %s", fault.what());
        throw Vor::VorException("Unable to convert data/time to UTC");
    } catch (const Poco::Exception& fault) {
        LOG_ERROR("FATAL Poco Exception: %s", fault.displayText().c_str());
        throw Vor::VorException("Caught FATAL Poco Exception");
    }
}

}  // namespace VorPm
