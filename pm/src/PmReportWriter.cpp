#include "PmReportWriter.h"

#include <cerrno>
#include <cstring>
#include <ios>
#include <string_view>

#include "PmLog.h"
#include "PmPublishing.h"
#include "PmStorage.h"
#include "VorException.h"

namespace VorPm {

namespace {

constexpr std::string_view fileFormatVersion = "32.435 V10.0";
constexpr std::string_view vendorName = "Varden AB";
constexpr std::string_view measCollecNamespace =
    "http://www.3gpp.org/ftp/specs/archive/32_series/32.435#measCollec";

constexpr char valueEnd[] = "</r>\n";

constexpr char writeFailure[] = "Error writing to file, errcode-1";

/// Failed writes are logged under this operation, whichever function notices them.
constexpr char writeOperation[] = "writeToFile";

const char* textOf(const char* text) {
    return text != nullptr ? text : "";
}

}  // namespace

PmReportWriter::PmReportWriter(const std::string& jobGroup, int compressionType, std::uint64_t beginTime,
                               std::uint64_t endTime)
    : _jobGroup(jobGroup), _compressionType(compressionType), _beginTime(beginTime), _endTime(endTime) {
    LOG_TRACE(" >> ");
    LOG_TRACE(" << ");
}

bool PmReportWriter::openFile() {
    LOG_TRACE(" >> ");
    buildFilePath();
    _endTimeStamp = formatTimeStamp(_endTime, _utcFormat);
    if (!createFile()) {
        LOG_ERROR("Error opening file %s for writing: %s", _filePath.c_str(), std::strerror(errno));
    }
    LOG_TRACE(" << ");
    return _file.isOpen();
}

void PmReportWriter::buildFilePath() {
    try {
        _filePath = getReportFileTempLocation() + "/" + createFileName();
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Failed fetching temporary report location: %s", fault.what());
    }
}

bool PmReportWriter::createFile() {
    if (createFileName().find('/') != std::string::npos) {
        errno = EINVAL;
        return false;
    }
    return _file.open(_filePath);
}

template <class... PiecesT>
void PmReportWriter::writeToFile(const PiecesT&... pieces) {
    if (!_file.write(pieces...)) {
        failWrite();
    }
}

void PmReportWriter::writeToFile() {
    if (!_file.flush()) {
        failWrite();
    }
}

void PmReportWriter::failWrite() {
    logFailedWrite();
    throw std::ios_base::failure(writeFailure);
}

void PmReportWriter::logFailedWrite() {
    LOG_ERROR_IN(writeOperation, "%s", writeFailure);
    const std::size_t lost = _file.takeLostGps();
    if (lost > 0) {
        LOG_WARNING_IN(writeOperation, "%zu complete GPs of %s are lost with the failed write", lost,
                       _filePath.c_str());
    }
}

bool PmReportWriter::writeGpData(PmGpData& gp) {
    return gp._pmData != nullptr ? write<PmSpiV1Traits>(gp) : write<PmSpiV2Traits>(gp);
}

template <class TraitsT>
bool PmReportWriter::write(PmGpData& gp) {
    LOG_TRACE(" >> ");
    if (!_file.isOpen()) {
        LOG_ERROR("Attempted to write to file before call to openFile()");
        return false;
    }
    const auto gpId = static_cast<unsigned long long>(gp._gpId);
    bool written = false;
    try {
        _file.begin();
        if (returnToLastGoodPosition()) {
            if (_file.lastGoodPosition() == 0) {
                appendFileHeader();
            }
            written = writeMeasData<TraitsT>(gp);
        }
    } catch (const std::ios_base::failure& failure) {
        LOG_ERROR("IO failure writing gp with id %llu, reason: %s", gpId, failure.what());
    } catch (const InterruptException&) {
        LOG_ERROR("Interrupted while trying to write to file with id %llu", gpId);
    } catch (...) {
        LOG_ERROR("Caught unknown exception while trying to write file with id %llu", gpId);
    }
    if (!written) {
        _file.abandon();
    }
    LOG_TRACE(" << ");
    return written;
}

/// What an earlier GP left behind when it failed must not stand between the GPs that are complete.
bool PmReportWriter::returnToLastGoodPosition() {
    const bool returned = _file.isAtGoodEnd() || rewindFile();
    if (!returned) {
        LOG_ERROR("Error truncating file %s: %s", _filePath.c_str(), std::strerror(errno));
    }
    return returned;
}

/// Going back writes what the stream still holds, and complete GPs may be lost with that write, too.
bool PmReportWriter::rewindFile() {
    const bool rewound = _file.rewind();
    const int reason = errno;
    if (_file.hasLostGps()) {
        logFailedWrite();
    }
    errno = reason;
    return rewound;
}

template <class TraitsT>
bool PmReportWriter::writeMeasData(PmGpData& gp) {
    const auto& data = gp.getPmData<typename TraitsT::PmGpDataRecord>();
    for (std::uint32_t i = 0; i < data.nrOfMeasObjClasses; ++i) {
        writeMeasInfo<typename TraitsT::PmMeasObjClass>(gp, data.measObjClasses[i]);
    }
    writeToFile();
    if (!_file.markGoodEnd()) {
        LOG_ERROR("Unable to get the current file position");
        return false;
    }
    return true;
}

template <class MeasObjClassT>
void PmReportWriter::writeMeasInfo(const PmGpData& gp, const MeasObjClassT& measClass) {
    if (measClass.name != nullptr) {
        writeToFile("\t\t<measInfo measInfoId=\"", measClass.name, "\">\n");
    } else {
        writeToFile("\t\t<measInfo>\n");
    }
    appendJobTag(gp._jobId.c_str());
    appendGranPeriodTag(gp._granularityPeriod);
    appendRepPeriodTag(gp._reportingPeriod);
    prepareMeasTypes(measClass);
    appendMeasTypes();
    appendMeasValues(measClass);
    endMeasInfoBlock();
    cleanMeasTypesMap();
}

template <class MeasObjClassT>
void PmReportWriter::prepareMeasTypes(const MeasObjClassT& measClass) {
    cleanMeasTypesMap();
    for (std::uint32_t i = 0; i < measClass.nrOfMeasObjs; ++i) {
        const auto& object = measClass.measObjs[i];
        _measTypes.beginObject();
        for (std::uint32_t j = 0; j < object.nrOfValues; ++j) {
            checkInterrupt();
            _measTypes.find(textOf(object.values[j].measType));
        }
    }
}

template <class MeasObjClassT>
void PmReportWriter::appendMeasValues(const MeasObjClassT& measClass) {
    for (std::uint32_t i = 0; i < measClass.nrOfMeasObjs; ++i) {
        const auto& object = measClass.measObjs[i];
        writeToFile("\t\t\t<measValue measObjLdn=\"",
                    covertSpecialCharactersToEscapeForm(textOf(object.measObjLdn)), "\">\n");
        bool suspect = false;
        _measTypes.beginObject();
        for (std::uint32_t j = 0; j < object.nrOfValues; ++j) {
            const auto& value = object.values[j];
            checkInterrupt();
            writeValue(_measTypes.findAgain(textOf(value.measType)).valueTag, value);
            suspect = suspect || value.isSuspect != 0;
        }
        if (suspect) {
            writeToFile("\t\t\t\t<suspect>true</suspect>\n");
        }
        writeToFile("\t\t\t</measValue>\n");
    }
}

void PmReportWriter::checkInterrupt() {
    if (_interrupted.value() != 0) {
        LOG_TRACE("Interrupted");
        throw InterruptException();
    }
}

std::string PmReportWriter::covertSpecialCharactersToEscapeForm(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '\'':
                escaped += "&apos;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

bool PmReportWriter::finalizeReport() {
    LOG_TRACE(" >> ");
    if (!_file.isOpen()) {
        return false;
    }
    bool complete = false;
    try {
        bool atGoodEnd = _file.isAtGoodEnd();
        if (!atGoodEnd) {
            LOG_WARNING("Found file in broken state, rewinding.");
            atGoodEnd = rewindFile();
            if (!atGoodEnd) {
                LOG_ERROR("Error truncating file %s: %s", _filePath.c_str(), std::strerror(errno));
            }
        }
        // Without a complete GP there is nothing to report.
        if (atGoodEnd && _file.lastGoodPosition() > 0) {
            _file.begin();
            appendFileFooter();
            if (!_file.finish()) {
                failWrite();
            }
            complete = true;
        }
    } catch (const std::ios_base::failure& failure) {
        LOG_ERROR("IO failure writing gp, reason: %s", failure.what());
    } catch (...) {
        LOG_ERROR("Caught unknown exception while trying to write file");
    }
    _file.close();
    LOG_TRACE(" << ");
    return complete;
}

void PmReportWriter::publish() {
    if (_compressionType == GZIP) {
        publishGzipReport(_filePath);
    } else {
        publishReport(_filePath);
    }
}

void PmReportWriter::appendFileHeader() {
    writeToFile("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n",
                "<?xml-stylesheet type=\"text/xsl\" href=\"MeasDataCollection.xsl\"?>\n",
                "<measCollecFile xmlns=\"", measCollecNamespace, "\">\n",  //
                "\t<fileHeader fileFormatVersion=\"", fileFormatVersion, "\" vendorName=\"", vendorName,
                "\"");
    if (!_meDnPrefix.empty()) {
        writeToFile(" dnPrefix=\"", _meDnPrefix, "\"");
    }
    writeToFile(">\n");
    if (!_meId.empty()) {
        writeToFile("\t\t<fileSender localDn=\"ManagedElement=", _meId, "\"");
        if (!_elementType.empty()) {
            writeToFile(" elementType=\"", _elementType, "\"");
        }
        writeToFile("/>\n");
    }
    writeToFile("\t\t<measCollec beginTime=\"", formatTimeStamp(_beginTime, _utcFormat), "\"/>\n",  //
                "\t</fileHeader>\n");
    startMeasDataBlock();
    appendManagedElementTag();
}

void PmReportWriter::startMeasDataBlock() {
    writeToFile("\t<measData>\n");
}

void PmReportWriter::appendManagedElementTag() {
    writeToFile("\t\t<managedElement");
    if (!_meId.empty()) {
        writeToFile(" localDn=\"ManagedElement=", _meId, "\"");
    }
    if (!_meUserLabel.empty()) {
        writeToFile(" userLabel=\"", _meUserLabel, "\"");
    }
    if (!_swVersion.empty()) {
        writeToFile(" swVersion=\"", _swVersion, "\"");
    }
    writeToFile("/>\n");
}

void PmReportWriter::appendJobTag(const char* jobId) {
    writeToFile("\t\t\t<job jobId=\"", jobId, "\"/>\n");
}

void PmReportWriter::appendGranPeriodTag(TimePeriod period) {
    writeToFile("\t\t\t<granPeriod duration=\"", timePeriod2Str(period), "\" endTime=\"", _endTimeStamp,
                "\"/>\n");
}

void PmReportWriter::appendRepPeriodTag(TimePeriod period) {
    writeToFile("\t\t\t<repPeriod duration=\"", timePeriod2Str(period), "\"/>\n");
}

void PmReportWriter::appendMeasTypes() {
    _measTypes.forEachByName([this](const PmMeasTypes::Type& type) {
        writeToFile("\t\t\t<measType p=\"", type.number, "\">", type.name, "</measType>\n");
    });
}

void PmReportWriter::endMeasInfoBlock() {
    writeToFile("\t\t</measInfo>\n");
}

void PmReportWriter::endMeasDataBlock() {
    writeToFile("\t</measData>\n");
}

void PmReportWriter::appendFileFooter() {
    endMeasDataBlock();
    writeToFile("\t<fileFooter>\n\t\t<measCollec endTime=\"", _endTimeStamp, "\"/>\n\t</fileFooter>\n",
                "</measCollecFile>\n");
}

void PmReportWriter::writeValue(const ShortText& tag, const VorOamSpiPmAggregatedValue_1& value) {
    if (value.isFloat != 0) {
        writeToFile(tag, value.value.floatValue, valueEnd);
    } else {
        writeToFile(tag, value.value.intValue, valueEnd);
    }
}

void PmReportWriter::writeValue(const ShortText& tag, const VorOamSpiPmAggregatedValue_2& value) {
    switch (value.valueType) {
        case VorOamSpiPmValueType_2::Integer:
            writeToFile(tag, value.value.intValue, valueEnd);
            break;
        case VorOamSpiPmValueType_2::Float:
            writeToFile(tag, value.value.floatValue, valueEnd);
            break;
        case VorOamSpiPmValueType_2::IntegerArray:
            writeArray(tag, value.value.intValues, value.arraySize);
            break;
        case VorOamSpiPmValueType_2::FloatArray:
            writeArray(tag, value.value.floatValues, value.arraySize);
            break;
        case VorOamSpiPmValueType_2::Nil:
            writeToFile(tag, "NIL", valueEnd);
            break;
        default:
            LOG_ERROR("Unknown value type %d", static_cast<int>(value.valueType));
            writeToFile(tag, valueEnd);
    }
}

template <class NumberT>
void PmReportWriter::writeArray(const ShortText& tag, const NumberT* numbers, std::uint32_t count) {
    writeToFile(tag);
    if (count > 0) {
        writeToFile(numbers[0]);
    }
    for (std::uint32_t i = 1; i < count; ++i) {
        writeToFile(",", numbers[i]);
    }
    writeToFile(valueEnd);
}

}  // namespace VorPm
