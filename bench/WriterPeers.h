// Other ways to write the report that the writer writes, byte for byte. Each writes the GPs into the file.
#pragma once

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <libxml/xmlwriter.h>

#include "BenchReport.h"

namespace VorBench {

inline constexpr char xmlNamespace[] = "http://www.3gpp.org/ftp/specs/archive/32_series/32.435#measCollec";
inline constexpr char elementDn[] = "ManagedElement=ME1";
inline constexpr char beginTime[] = "2017-03-05T13:00:00";
inline constexpr char endTime[] = "2017-03-05T13:15:00";
inline constexpr char period[] = "PT900S";

/// The types of a class in the order of their names, numbered as they are met.
struct MappedTypes {
    struct Less {
        bool operator()(const char* left, const char* right) const { return std::strcmp(left, right) < 0; }
    };
    void beginObject() {}
    unsigned numberOf(const char* name) {
        return numbers.try_emplace(name, static_cast<unsigned>(numbers.size() + 1)).first->second;
    }
    std::map<const char*, unsigned, Less> numbers;
};

/// The same, with a guess first: that each object has the types of the one before.
struct GuessedTypes : MappedTypes {
    void beginObject() { at = 0; }
    unsigned numberOf(const char* name) {
        if (at == guesses.size()) {
            guesses.emplace_back("", 0);
        }
        auto& [guess, number] = guesses[at++];
        if (guess != name && std::strcmp(guess, name) != 0) {
            guess = name;
            number = MappedTypes::numberOf(name);
        }
        return number;
    }
    std::vector<std::pair<const char*, unsigned>> guesses;
    std::size_t at = 0;
};

/// What comes to mind first: `vfprintf` for each template, a string stream for each value, and a look-up in a
/// map for each value, when it is numbered and again when it is written.
class NaivePeer {
  public:
    using Types = MappedTypes;

    explicit NaivePeer(const std::string& path) : _file(std::fopen(path.c_str(), "w"), &std::fclose) {
        require(_file != nullptr);
        print("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
        print(
            "<?xml-stylesheet type=\"text/xsl\" href=\"MeasDataCollection.xsl\"?>\n<measCollecFile "
            "xmlns=\"%s\">\n",
            xmlNamespace);
        print("\t<fileHeader fileFormatVersion=\"%s\" vendorName=\"%s\">\n", "32.435 V10.0", "Varden AB");
        print("\t\t<fileSender localDn=\"%s\"/>\n", elementDn);
        print("\t\t<measCollec beginTime=\"%s\"/>\n\t</fileHeader>\n\t<measData>\n", beginTime);
        print("\t\t<managedElement localDn=\"%s\"/>\n", elementDn);
    }
    ~NaivePeer() {
        print("\t</measData>\n\t<fileFooter>\n\t\t<measCollec endTime=\"%s\"/>\n", endTime);
        print("\t</fileFooter>\n</measCollecFile>\n");
    }
    NaivePeer(const NaivePeer&) = delete;
    NaivePeer& operator=(const NaivePeer&) = delete;

    void beginClass(const char* name, const Types& types) {
        print("\t\t<measInfo measInfoId=\"%s\">\n", name);
        print("\t\t\t<job jobId=\"%s\"/>\n", "J1");
        print("\t\t\t<granPeriod duration=\"%s\" endTime=\"%s\"/>\n", period, endTime);
        print("\t\t\t<repPeriod duration=\"%s\"/>\n", period);
        for (const auto& [type, number] : types.numbers) {
            print("\t\t\t<measType p=\"%u\">%s</measType>\n", number, type);
        }
    }
    void beginObject(const char* ldn) { print("\t\t\t<measValue measObjLdn=\"%s\">\n", ldn); }
    template <class PrintT>
    void writeValue(unsigned number, const PrintT& printValue) {
        std::ostringstream text;
        text.precision(15);
        printValue([&](const auto& piece) { text << piece; });
        print("\t\t\t\t<r p=\"%u\">", number);
        std::fputs(text.str().c_str(), _file.get());
        print("</r>\n");
    }
    void writeSuspect() { print("\t\t\t\t<suspect>true</suspect>\n"); }
    void endObject() { print("\t\t\t</measValue>\n"); }
    void endClass() { print("\t\t</measInfo>\n"); }

  private:
    __attribute__((format(printf, 2, 3))) void print(const char* format, ...) {
        std::va_list arguments;
        va_start(arguments, format);
        std::vfprintf(_file.get(), format, arguments);
        va_end(arguments);
    }

    std::unique_ptr<std::FILE, int (*)(std::FILE*)> _file;
};

/// libxml2's `xmlTextWriter`, without the look-ups that a guess spares.
class LibxmlPeer {
  public:
    using Types = GuessedTypes;

    explicit LibxmlPeer(const std::string& path)
        : _writer(xmlNewTextWriterFilename(path.c_str(), 0), &xmlFreeTextWriter) {
        require(_writer != nullptr);
        xmlTextWriterSetIndent(_writer.get(), 1);
        xmlTextWriterSetIndentString(_writer.get(), xml("\t"));
        xmlTextWriterStartDocument(_writer.get(), "1.0", "UTF-8", nullptr);
        xmlTextWriterWritePI(_writer.get(), xml("xml-stylesheet"),
                             xml("type=\"text/xsl\" href=\"MeasDataCollection.xsl\""));
        begin("measCollecFile", "xmlns", xmlNamespace);
        begin("fileHeader", "fileFormatVersion", "32.435 V10.0");
        addAttribute("vendorName", "Varden AB");
        addEmpty("fileSender", "localDn", elementDn);
        addEmpty("measCollec", "beginTime", beginTime);
        end();
        xmlTextWriterStartElement(_writer.get(), xml("measData"));
        addEmpty("managedElement", "localDn", elementDn);
    }
    ~LibxmlPeer() {
        end();
        xmlTextWriterStartElement(_writer.get(), xml("fileFooter"));
        addEmpty("measCollec", "endTime", endTime);
        xmlTextWriterEndDocument(_writer.get());
    }
    LibxmlPeer(const LibxmlPeer&) = delete;
    LibxmlPeer& operator=(const LibxmlPeer&) = delete;

    void beginClass(const char* name, const Types& types) {
        begin("measInfo", "measInfoId", name);
        addEmpty("job", "jobId", "J1");
        begin("granPeriod", "duration", period);
        addAttribute("endTime", endTime);
        end();
        addEmpty("repPeriod", "duration", period);
        for (const auto& [type, number] : types.numbers) {
            begin("measType", "p", std::to_string(number).c_str());
            add(type);
            end();
        }
    }
    void beginObject(const char* ldn) { begin("measValue", "measObjLdn", ldn); }
    template <class PrintT>
    void writeValue(unsigned number, const PrintT& printValue) {
        begin("r", "p", std::to_string(number).c_str());
        printValue([this](const auto& piece) { this->add(piece); });
        end();
    }
    void writeSuspect() { xmlTextWriterWriteElement(_writer.get(), xml("suspect"), xml("true")); }
    void endObject() { end(); }
    void endClass() { end(); }

  private:
    static const xmlChar* xml(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

    void begin(const char* name, const char* attribute, const char* value) {
        xmlTextWriterStartElement(_writer.get(), xml(name));
        addAttribute(attribute, value);
    }
    void addAttribute(const char* name, const char* value) {
        xmlTextWriterWriteAttribute(_writer.get(), xml(name), xml(value));
    }
    void addEmpty(const char* name, const char* attribute, const char* value) {
        begin(name, attribute, value);
        end();
    }
    void add(const char* text) { xmlTextWriterWriteString(_writer.get(), xml(text)); }
    void add(std::int64_t number) { add(std::to_string(number).c_str()); }
    void add(double number) {
        char text[32];
        std::snprintf(text, sizeof text, "%.15g", number);
        add(text);
    }
    void end() { xmlTextWriterEndElement(_writer.get()); }

    std::unique_ptr<xmlTextWriter, void (*)(xmlTextWriter*)> _writer;
};

/// Calls `print` with each piece of the value's text.
template <class PrintT>
void printPieces(const VorOamSpiPmAggregatedValue_2& value, const PrintT& print) {
    const auto printArray = [&](const auto* numbers) {
        for (std::uint32_t i = 0; i < value.arraySize; ++i) {
            if (i > 0) {
                print(",");
            }
            print(numbers[i]);
        }
    };
    switch (value.valueType) {
        case VorOamSpiPmValueType_2::Integer:
            return print(value.value.intValue);
        case VorOamSpiPmValueType_2::Float:
            return print(value.value.floatValue);
        case VorOamSpiPmValueType_2::IntegerArray:
            return printArray(value.value.intValues);
        case VorOamSpiPmValueType_2::FloatArray:
            return printArray(value.value.floatValues);
        default:
            print("NIL");
    }
}

template <class PeerT>
void writeClass(PeerT& peer, const VorOamSpiPmMeasObjClass_2& measClass) {
    typename PeerT::Types types;
    for (std::uint32_t i = 0; i < measClass.nrOfMeasObjs; ++i) {
        const auto& object = measClass.measObjs[i];
        types.beginObject();
        for (std::uint32_t j = 0; j < object.nrOfValues; ++j) {
            types.numberOf(object.values[j].measType);
        }
    }
    peer.beginClass(measClass.name, types);
    for (std::uint32_t i = 0; i < measClass.nrOfMeasObjs; ++i) {
        const auto& object = measClass.measObjs[i];
        bool suspect = false;
        peer.beginObject(object.measObjLdn);
        types.beginObject();
        for (std::uint32_t j = 0; j < object.nrOfValues; ++j) {
            const auto& value = object.values[j];
            peer.writeValue(types.numberOf(value.measType),
                            [&](const auto& print) { printPieces(value, print); });
            suspect = suspect || value.isSuspect != 0;
        }
        if (suspect) {
            peer.writeSuspect();
        }
        peer.endObject();
    }
    peer.endClass();
}

template <class PeerT>
void writeWith(const std::string& path, const std::vector<VorOamSpiPmGpData_2>& gps) {
    PeerT peer(path);
    for (const auto& gp : gps) {
        std::for_each(gp.measObjClasses, gp.measObjClasses + gp.nrOfMeasObjClasses,
                      [&](const auto& measClass) { writeClass(peer, measClass); });
    }
}

/// The finished bytes, in pieces of 64 KiB: as fast as it can get.
inline void writeBytes(const std::string& path, const std::string& bytes) {
    constexpr std::size_t piece = 65'536;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "w"), &std::fclose);
    require(file != nullptr);
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
        std::fwrite(bytes.data() + at, 1, std::min(piece, bytes.size() - at), file.get());
    }
}

}  // namespace VorBench
