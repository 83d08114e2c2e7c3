// The input is a name found in the report folder. It is also what a report's name is made of: a begin in s
// since the Unix epoch (4 bytes), a length in min (2), a time zone (1), then the element's id and, in a line
// of its own, the job group.
#include <array>
#include <cstring>
#include <ctime>
#include <stdexcept>

#include "FuzzSupport.h"
#include "PmReportNames.h"
#include "PmReportWriter.h"
#include "VorException.h"

namespace {

using VorFuzz::expect;

constexpr std::array<const char*, 6> zones{
    "UTC0", "CET-1CEST,M3.5.0,M10.5.0/3", "NST3:30NDT,M3.2.0,M11.1.0", "IST-5:30", "<+14>-14", "<-12>12"};
constexpr std::size_t idPosition = 7;

/// Any file may lie in the folder.
void readName(const std::string& name) {
    VorPm::isValidROPFileName(name);
    try {
        VorPm::generateKey(name);
    } catch (const Vor::VorException&) {
    } catch (const std::out_of_range&) {
    }
}

std::tm broken(std::time_t time, bool utc) {
    std::tm fields{};
    utc ? ::gmtime_r(&time, &fields) : ::localtime_r(&time, &fields);
    return fields;
}

std::string print(std::time_t time, const char* format) {
    std::array<char, 20> text{};
    const std::tm fields = broken(time, true);
    return {text.data(), std::strftime(text.data(), text.size(), format, &fields)};
}

/// The end is taken to lie on the begin's day, in UTC or local time; both are told in UTC.
std::string keyOf(std::time_t begin, std::time_t end, bool utc, const std::string& owner) {
    std::tm last = broken(end, utc);
    const long offset = last.tm_gmtoff;
    const std::tm first = broken(begin, utc);
    last.tm_year = first.tm_year;
    last.tm_mon = first.tm_mon;
    last.tm_mday = first.tm_mday;
    return print(::timegm(&last) - offset, "%Y%m%d%H%M") + print(begin, "%H%M") + owner;
}

void makeName(const std::uint8_t* data, const std::string& owner) {
    std::uint32_t begin = 0;
    std::uint16_t minutes = 0;
    std::memcpy(&begin, data, sizeof begin);
    std::memcpy(&minutes, data + sizeof begin, sizeof minutes);
    ::setenv("TZ", zones[data[idPosition - 1] % zones.size()], 1);
    const std::size_t line = owner.find('\n');
    const std::string id = owner.substr(0, line);
    const std::string group = line == std::string::npos ? "" : owner.substr(line + 1);
    const std::time_t end = std::time_t{begin} + std::time_t{minutes} * 60;
    for (const bool utc : {false, true}) {
        VorPm::PmReportWriter report(group, VorPm::NO_COMPRESSION, begin * 1'000'000'000ULL,
                                     static_cast<std::uint64_t>(end) * 1'000'000'000ULL);
        report.setMeId(id);
        report.setUtcFormat(utc);
        const std::string name = report.createFileName();
        expect(VorPm::isValidROPFileName(name) && VorPm::isValidROPFileName(name + ".gz"), "names are valid");
        const std::string key = keyOf(begin, end, utc, group.empty() ? id : id + "_" + group);
        expect(VorPm::generateKey(name) == key && VorPm::generateKey(name + ".gz") == key,
               "keys tell period and owner");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = VorFuzz::textOf(data, size);
    readName(text);
    if (size >= idPosition) {
        makeName(data, text.substr(idPosition));
    }
    return 0;
}
