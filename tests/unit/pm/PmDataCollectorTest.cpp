#include <gtest/gtest.h>

#include "PmDataCollector.h"
#include "PmEngine.h"

namespace VorTest {

using VorNode::StructValue;
using VorPm::PmGpData;

namespace {

Poco::AutoPtr<PmGpData> makeGp(PmEngine& engine, std::uint64_t id = 1, const char* job = "Processor") {
    return new PmGpData({id, job, 0, 0}, &engine.pm2);
}

/// The product's name and version, and the messages of reading them.
Texts product(PmEngine& engine) {
    engine.collector.fetchSwVersionAttributes();
    Texts texts = engine.messages();
    texts.insert(texts.begin(),
                 engine.collector.getProductDesignation() + "|" + engine.collector.getSwVersion());
    return texts;
}

}  // namespace

TEST(PmGpData, IsHandedBackOnceByItsLastReference) {
    PmEngine engine;
    const std::string id = std::to_string(1ULL << 63);
    const Texts unrecognized{"4 release Tried to release unrecognized gp (id " + id + ")"};
    const Texts unknown{"4 release Unknown error while trying to release gp (id " + id + ")"};
    int released = 0;
    for (const auto& [code, messages] :
         std::map<KelReturnT, Texts>{{0, {}}, {5, {}}, {-2, unrecognized}, {-1, unknown}, {99, unknown}}) {
        engine.releaseGp = [answer = code](auto) { return answer == 99 ? throw 1 : answer; };
        Poco::AutoPtr<PmGpData> first = makeGp(engine, 1ULL << 63), second = first;
        first = nullptr;
        EXPECT_EQ(engine.count("releaseGp2 " + id), released);
        second = nullptr;
        EXPECT_EQ(engine.count("releaseGp2 " + id), ++released);
        EXPECT_EQ(engine.messages(), messages) << code;
    }
    Poco::AutoPtr<PmGpData>(new PmGpData({1, nullptr, 0, 0}, static_cast<VorOamSpiPm_1*>(nullptr))) = nullptr;
    EXPECT_EQ(engine.messages(), Texts{"3 release No PM interface found"});
}

TEST(PmDataCollector, FetchesAndReleasesThroughTheNewestVersionOffered) {
    const Texts all{"VorOamSpiPm 1", "VorOamSpiPm 2"};
    for (const Texts& without : {Texts{}, Texts{all[0]}, Texts{all[1]}, all}) {
        PmEngine engine(without);
        const int version = without == all ? 0 : without == Texts{all[1]} ? 1 : 2;
        EXPECT_EQ(engine.collector.init(), version == 0 ? -2 : 0);
        engine.announce("Processor", 0, 0);
        Poco::AutoPtr<PmGpData> gp = makeGp(engine), none;
        EXPECT_EQ(engine.collector.populatePmSpi(gp), version == 0 ? -1 : 0);
        EXPECT_EQ(gp->_pmData != nullptr, version == 1);
        EXPECT_EQ(gp->_pmData2 != nullptr, version == 2);
        EXPECT_EQ(engine.collector.releaseGp(9), 0) << "whatever the service says";
        for (int other = 1; other <= 2; ++other) {
            EXPECT_EQ(engine.count("getGp" + std::to_string(other) + " 1"), other == version);
            EXPECT_EQ(engine.count("releaseGp" + std::to_string(other) + " 9"), other == version);
        }
        EXPECT_EQ(engine.messages(), Texts{});
        for (const KelReturnT code : {5, -2, 0}) {
            engine.getGp = [code](auto, auto&) { return code; };
            const KelReturnT expected = version == 0 || code == 0 ? -1 : code;
            EXPECT_EQ(engine.collector.populatePmSpi(gp), expected) << "0 without a record is a failure, too";
            const std::string text = "3 fetchGpData PM Couldn't fetch data over PM SPI (retval: ";
            EXPECT_EQ(engine.messages(),
                      version == 0 ? Texts{} : Texts{text + std::to_string(expected) + ")"});
        }
        EXPECT_EQ(engine.collector.populatePmSpi(none), -2);
        EXPECT_EQ(engine.messages(), Texts{"3 populatePmSpi Request to populate null auto pointer"});
    }
}

TEST(PmDataCollector, TellsWhatTheModelLacks) {
    const std::string noElement = "3 init Failed to get first instance of ManagedElement";
    const std::string check = "3 checkForRequiredTarnData Unable to get ",
                      path = "ManagedElement,SystemFunctions,Pm";
    for (const auto& [missing, message] : std::map<std::string, std::string>{
             {elementDn, noElement + " reason No instance of ManagedElement found"},
             {pmRootDn, check + "PM root DN No instance of " + path + " found"},
             {capabilitiesDn, check + "PmMeasurementCapabilities No instance of " + path +
                                  ",PmMeasurementCapabilities found"},
             {"VorOamSpiManagedObject 1",
              noElement + " reason Interface VorOamSpiManagedObject not found"}}) {
        PmEngine engine({missing});
        EXPECT_EQ(engine.collector.init(), -1) << missing;
        EXPECT_EQ(engine.messages().back(), message);
    }
    PmEngine engine;
    engine.objectTable.newMoIterator = [](auto, auto, auto, auto) -> KelReturnT { throw 1; };
    EXPECT_EQ(engine.collector.init(), -1);
    EXPECT_EQ(engine.messages(), Texts{noElement});
}

TEST(PmDataCollector, ReadsTheJobsDataOneAfterTheOther) {
    PmEngine engine;
    engine.collector.init();
    engine.releaseGp = [](auto) { return 0; };
    const std::string job = pmRootDn + ",PmJob=Processor", why = "' data over MO SPI (retval: -1)";
    const std::string noGranularity = "3 getPeriodDuration PM Couldn't fetch 'granularityPeriod" + why;
    Poco::AutoPtr<PmGpData> gp = makeGp(engine), unknown = makeGp(engine, 1, "J");
    engine.model->commit({{job, "granularityPeriod", {std::int16_t{-5}}}, {job, "reportingPeriod", {}}});
    EXPECT_EQ(engine.collector.populateMo(gp), -1);
    EXPECT_EQ(static_cast<int>(gp->_granularityPeriod), -5) << "what was read stays";
    EXPECT_EQ(engine.messages(), Texts{"3 getPeriodDuration PM Couldn't fetch 'reportingPeriod" + why});
    engine.model->commit({{job, "reportingPeriod", {std::int16_t{4}}}});
    EXPECT_EQ(engine.collector.populateMo(gp), 0);
    EXPECT_EQ(static_cast<int>(gp->_reportingPeriod), 4);
    EXPECT_EQ(engine.collector.populateMo(unknown), -1);
    EXPECT_EQ(engine.messages(), Texts{noGranularity});
    engine.objectTable.getMoAttribute = [](auto, auto, auto, auto) -> KelReturnT { throw 1; };
    EXPECT_EQ(engine.collector.populateMo(gp), -1);
    const std::string problem =
        "3 getAnyAttribute Problem reading granularityPeriod attribute from SPI, mo (";
    EXPECT_EQ(engine.messages(), (Texts{problem + job + ")", noGranularity}));
}

TEST(PmDataCollector, ComposesTheSoftwareVersion) {
    PmEngine engine;
    engine.collector.init();
    EXPECT_EQ(product(engine), Texts{"vor-node|1 1.0"});
    const std::string version = inventoryDn + ",SwVersion=1", failed = "Failed to fetch the ";
    const std::string empty = "hence the swVersion attribute of the ROP file will be empty";
    const StructValue partial{{"productName", "P"}, {"productNumber", "N"}};
    engine.model->commit({{version, "administrativeData", {partial}}});
    EXPECT_EQ(product(engine), (Texts{"P|", "4 get Struct member not set: 'productRevision'",
                                      "4 fetchMeStructAttrMember " + failed +
                                          "struct member productRevision. Value is empty"}));
    engine.model->commit({{version, "administrativeData", {}}});
    EXPECT_EQ(product(engine), (Texts{"|", "4 fetchMeAdministrativeDataAttr " + failed +
                                               "administrativeData struct and " + empty}));
    engine.model->commit({{inventoryDn, "active", {}}});
    EXPECT_EQ(product(engine),
              (Texts{"|", "3 fetchSwVersionAttributes " + failed + "active SwVersion on the node," + empty}));
    engine.objectTable.newMoIterator = [](auto, auto, auto, auto) -> KelReturnT { throw 1; };
    const std::string noInventory =
        "6 fetchSwVersionAttributes SwInventory was not found. The deprecated attribute "
        "ManagedElement::productIdentity will be used to fill in the swVersion in the ROP file";
    EXPECT_EQ(product(engine),
              (Texts{"|", noInventory,
                     "4 fetchSwVersionAttributes " + failed + "productIdentity value and " + empty}));
    const StructValue identity{{"productDesignation", "D"}, {"productNumber", "N"}, {"productRevision", "R"}};
    engine.model->commit({{elementDn, "productIdentity", {identity}}});
    EXPECT_EQ(product(engine), (Texts{"D|N R", noInventory}));
}

}  // namespace VorTest
