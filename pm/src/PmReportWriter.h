#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include <Poco/AtomicCounter.h>

#include "PmGpData.h"
#include "PmMeasTypes.h"
#include "PmReportFile.h"
#include "PmTimeTexts.h"
#include "VorOamSpiPm.h"

namespace VorPm {

/// Thrown and caught within the writer when it is interrupted.
class InterruptException : public std::runtime_error {
  public:
    InterruptException() : std::runtime_error("Interrupted") {}
};

/// The records of the PM service's versions.
struct PmSpiV1Traits {
    using PmGpDataRecord = VorOamSpiPmGpData_1;
    using PmMeasObjClass = VorOamSpiPmMeasObjClass_1;
};
struct PmSpiV2Traits {
    using PmGpDataRecord = VorOamSpiPmGpData_2;
    using PmMeasObjClass = VorOamSpiPmMeasObjClass_2;
};

/// Writes one report, a measCollecFile of 3GPP TS 32.435 (format version "32.435 V10.0"), GP by GP into the
/// temporary folder, and has it published. A GP that fails leaves only its own data out. Owned by the task
/// manager; all operations but `interrupt` run on the worker. Order: setters, `openFile`, `writeGpData` any
/// number of times, `finalizeReport`, and `publish` when that returned true.
class PmReportWriter {
  public:
    /// Times in ns since the Unix epoch; they are the report's, whatever the GPs written later say.
    PmReportWriter(const std::string& jobGroup, int compressionType, std::uint64_t beginTime,
                   std::uint64_t endTime);
    PmReportWriter(const PmReportWriter&) = delete;
    PmReportWriter& operator=(const PmReportWriter&) = delete;

    void setElementType(const std::string& elementType) { _elementType = elementType; }
    void setSwVersion(const std::string& swVersion) { _swVersion = swVersion; }
    void setMeDnPrefix(const std::string& meDnPrefix) { _meDnPrefix = meDnPrefix; }
    void setMeId(const std::string& meId) { _meId = meId; }
    void setMeUserLabel(const std::string& meUserLabel) { _meUserLabel = meUserLabel; }
    void setUtcFormat(const bool& utcFormat) { _utcFormat = utcFormat; }

    /// The report's file name, without folder, such as A20170305.1415+0100-1430+0100_ME1_G1.xml.
    std::string createFileName() const;

    /// Creates the report's file; its name is fixed from here on. False, with a message, when it cannot be
    /// created.
    bool openFile();

    /// Appends the GP's data. False, with a message, when it was not written completely.
    bool writeGpData(PmGpData& gp);

    /// Cuts off an incomplete GP, writes the footer and closes the file. True when a complete report is in
    /// the file.
    bool finalizeReport();

    /// Moves the finished report into the report folder.
    void publish();

    /// Makes the GP being written, and all later ones, fail at their next value. Any thread.
    void interrupt() { _interrupted = 1; }

  private:
    /// Lets the tests look at the texts of times.
    friend struct PmReportWriterTimes;

    /// The instant, in ns since the Unix epoch, printed with a `Poco::DateTimeFormatter` format.
    static std::string formatTime(std::uint64_t nanoseconds, const std::string& format, bool utc);
    /// YYYY-MM-DDThh:mm:ss, in local form followed by the offset from UTC, such as +01:00.
    static std::string formatTimeStamp(std::uint64_t nanoseconds, bool utc);
    /// The local offset from UTC valid at that instant, such as +0100.
    static std::string timeZoneSuffix(std::uint64_t nanoseconds);

    template <class TraitsT>
    bool write(PmGpData& gp);
    template <class TraitsT>
    bool writeMeasData(PmGpData& gp);
    template <class MeasObjClassT>
    void writeMeasInfo(const PmGpData& gp, const MeasObjClassT& measClass);
    template <class MeasObjClassT>
    void prepareMeasTypes(const MeasObjClassT& measClass);
    template <class MeasObjClassT>
    void appendMeasValues(const MeasObjClassT& measClass);

    /// False, with `errno`, when the file cannot be opened or its name holds a '/'.
    bool createFile();
    bool returnToLastGoodPosition();
    /// False, with `errno`, when the file cannot be cut off behind the last complete GP.
    bool rewindFile();
    void checkInterrupt();
    void buildFilePath();
    /// The time of day in the report's name, in local form with the offset from UTC.
    std::string clockText(std::uint64_t nanoseconds) const;
    static std::string covertSpecialCharactersToEscapeForm(std::string_view text);

    void appendFileHeader();
    void startMeasDataBlock();
    void appendManagedElementTag();
    void appendJobTag(const char* jobId);
    void appendGranPeriodTag(TimePeriod period);
    void appendRepPeriodTag(TimePeriod period);
    void appendMeasTypes();
    void endMeasInfoBlock();
    void endMeasDataBlock();
    void appendFileFooter();
    void cleanMeasTypesMap() { _measTypes.clear(); }

    /// An element with the value; the tag is its start.
    void writeValue(const ShortText& tag, const VorOamSpiPmAggregatedValue_1& value);
    void writeValue(const ShortText& tag, const VorOamSpiPmAggregatedValue_2& value);
    template <class NumberT>
    void writeArray(const ShortText& tag, const NumberT* numbers, std::uint32_t count);

    /// The pieces one after the other, texts as they are and numbers in base 10. Throws
    /// `std::ios_base::failure`, with a message, when the stream refuses what was collected.
    template <class... PiecesT>
    void writeToFile(const PiecesT&... pieces);
    /// Hands all that is collected to the stream; fails like the other, under the same name.
    void writeToFile();
    [[noreturn]] void failWrite();
    /// Logs the failed write, and how many GPs it lost that were already reported as written.
    void logFailedWrite();

    /// The types of the class that is being written; their names belong to the GP.
    PmMeasTypes _measTypes;
    const std::string _jobGroup;
    /// Times are told in UTC, not in the local zone.
    bool _utcFormat = false;
    /// The one field that other threads touch.
    Poco::AtomicCounter _interrupted{0};
    std::string _filePath;
    PmReportFile _file;
    const int _compressionType;
    std::string _meId;
    std::string _elementType;
    std::string _swVersion;
    std::string _meUserLabel;
    std::string _meDnPrefix;
    const std::uint64_t _beginTime;
    const std::uint64_t _endTime;
    /// The text of `_endTime`, needed once per class.
    std::string _endTimeStamp;
};

}  // namespace VorPm
