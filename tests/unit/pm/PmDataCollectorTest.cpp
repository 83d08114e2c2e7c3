#include <gtest/gtest.h>

#include "PmDataCollector.h"
#include "PmEngine.h"

namespace VorTest {

using VorPm::PmGpData;

TEST(PmGpData, IsHandedBackOnceByItsLastReference) {
    PmEngine engine;
    const std::string id = std::to_string(1ULL << 63);
    engine.releaseGp = [](auto) { return -2; };
    Poco::AutoPtr<PmGpData> first = new PmGpData({1ULL << 63, "J", 0, 0}, &engine.pm2), second = first;
    first = nullptr;
    EXPECT_EQ(engine.count("releaseGp2 " + id), 0);
    second = nullptr;
    EXPECT_EQ(engine.count("releaseGp2 " + id), 1);
    EXPECT_EQ(engine.messages(), Texts{"4 release Tried to release unrecognized gp (id " + id + ")"});
    engine.releaseGp = [](auto) -> KelReturnT { throw 1; };
    Poco::AutoPtr<PmGpData>(new PmGpData({9, "J", 0, 0}, &engine.pm2)) = nullptr;
    EXPECT_EQ(engine.messages(), Texts{"4 release Unknown error while trying to release gp (id 9)"});
}

TEST(PmGpData, BelongsToNoJobWhenTheEventNamesNone) {
    PmEngine engine;
    EXPECT_EQ(Poco::AutoPtr<PmGpData>(new PmGpData({1, nullptr, 0, 0}, &engine.pm2))->_jobId, "");
}

TEST(PmDataCollector, FetchesAndReleasesThroughTheNewestVersionOffered) {
    const Texts all{"VorOamSpiPm 1", "VorOamSpiPm 2"};
    for (const Texts& without : {Texts{}, Texts{all[0]}, Texts{all[1]}, all}) {
        PmEngine engine(without);
        const int version = without == all ? 0 : without == Texts{all[1]} ? 1 : 2;
        engine.renew();
        EXPECT_EQ(engine.collector.init(), version == 0 ? -2 : 0);
        EXPECT_EQ(engine.announce("Processor", 0, 0), version == 0 ? -2 : 0);
        EXPECT_EQ(engine.messages(), version == 0 ? Texts{"3 pushGp No PM interface found"} : Texts{});
        EXPECT_EQ(engine.tasks->queueSize(), version == 0 ? 0U : 1U);
        Poco::AutoPtr<PmGpData> gp(new PmGpData({1, "Processor", 0, 0}, &engine.pm2)), none;
        EXPECT_EQ(engine.collector.populatePmSpi(gp), version == 0 ? -1 : 0);
        EXPECT_EQ(gp->_pmData != nullptr, version == 1);
        EXPECT_EQ(gp->_pmData2 != nullptr, version == 2);
        EXPECT_EQ(engine.collector.releaseGp(9), 0) << "whatever the service says";
        for (int other = 1; other <= 2; ++other) {
            EXPECT_EQ(engine.count("getGp" + std::to_string(other) + " 1"), other == version);
            EXPECT_EQ(engine.count("releaseGp" + std::to_string(other) + " 9"), other == version);
        }
        EXPECT_EQ(engine.collector.populatePmSpi(none), -2);
        EXPECT_EQ(engine.messages(), Texts{"3 populatePmSpi Request to populate null auto pointer"});
        engine.taken.clear();
    }
}

TEST(PmDataCollector, GivesAJobWithoutGroupNone) {
    PmEngine engine;
    engine.collector.init();
    engine.collector.setJobGroupingSupport();
    Poco::AutoPtr<PmGpData> gp(new PmGpData({1, "Processor", 0, 0}, &engine.pm2));
    gp->_jobGroup = "of the job read before";
    EXPECT_EQ(engine.collector.populateMo(gp), 0);
    EXPECT_EQ(gp->_jobGroup, "");
}

TEST(PmDataCollector, ComposesTheSoftwareVersion) {
    using VorNode::StructValue;
    PmEngine engine;
    const std::string version = inventoryDn + ",SwVersion=1", failed = "Failed to fetch the ";
    const std::string empty = "hence the swVersion attribute of the ROP file will be empty";
    const std::string noInventory =
        "6 fetchSwVersionAttributes SwInventory was not found. The deprecated attribute "
        "ManagedElement::productIdentity will be used to fill in the swVersion in the ROP file";
    const auto expectProduct = [&engine](const Texts& expected) {
        engine.collector.fetchSwVersionAttributes();
        Texts texts = engine.messages();
        texts.insert(texts.begin(),
                     engine.collector.getProductDesignation() + "|" + engine.collector.getSwVersion());
        EXPECT_EQ(texts, expected);
    };
    engine.collector.init();
    expectProduct({"vor-node|1 1.0"});
    engine.model->commit(
        {{version, "administrativeData", {StructValue{{"productName", "P"}, {"productNumber", "N"}}}}});
    expectProduct({"P|", "4 get Struct member not set: 'productRevision'",
                   "4 fetchMeStructAttrMember " + failed + "struct member productRevision. Value is empty"});
    engine.model->commit({{version, "administrativeData", {}}});
    expectProduct(
        {"|", "4 fetchMeAdministrativeDataAttr " + failed + "administrativeData struct and " + empty});
    engine.model->commit({{inventoryDn, "active", {}}});
    expectProduct({"|", "3 fetchSwVersionAttributes " + failed + "active SwVersion on the node," + empty});
    engine.objectTable.newMoIterator = [](auto, auto, auto, auto) -> KelReturnT { throw 1; };
    expectProduct(
        {"|", noInventory, "4 fetchSwVersionAttributes " + failed + "productIdentity value and " + empty});
    engine.model->commit(
        {{elementDn,
          "productIdentity",
          {StructValue{{"productDesignation", "D"}, {"productNumber", "N"}, {"productRevision", "R"}}}}});
    expectProduct({"D|N R", noInventory});
}

TEST(PmDataCollector, RefusesAJobWhoseCompressionCannotBeRead) {
    static decltype(PmEngine::objectTable.getMoAttribute) genuine;
    PmEngine engine;
    genuine = engine.objectTable.getMoAttribute;
    engine.objectTable.getMoAttribute = [](auto transaction, auto dn, auto name, auto* result) {
        return name == std::string("compressionType") ? KelReturnT{9}
                                                      : genuine(transaction, dn, name, result);
    };
    engine.renew();
    EXPECT_EQ(engine.announce("Processor", 0, 0), 0);
    Poco::AutoPtr<PmGpData> gp(new PmGpData({2, "Processor", 0, 0}, &engine.pm2));
    EXPECT_EQ(engine.collector.populateMo(gp), 0) << "nobody asks";
    EXPECT_EQ(engine.collector.setSupportedCompressionTypes(), 0);
    EXPECT_EQ(engine.collector.populateMo(gp), -1);
    EXPECT_EQ(engine.messages().back(), "3 populateMo PM Couldn't fetch PmJob::compressionType over MO SPI.");
}

TEST(PmDataCollector, GroupsJobsOnceThisIsAnnounced) {
    PmEngine engine;
    engine.renew();
    EXPECT_EQ(engine.announce("Transport", 0, 0), 0);
    engine.model->commit({{pmRootDn + ",PmJob=Transport", "jobGroup", {"G"}}});
    Poco::AutoPtr<PmGpData> gp(new PmGpData({2, "Transport", 0, 0}, &engine.pm2));
    EXPECT_EQ(engine.collector.populateMo(gp), 0);
    EXPECT_EQ(gp->_jobGroup, "");
    engine.objectTable.setMoAttribute = [](auto...) { return KelReturnT{9}; };
    EXPECT_EQ(engine.collector.setJobGroupingSupport(), -1);
    EXPECT_EQ(engine.collector.populateMo(gp), 0);
    EXPECT_EQ(gp->_jobGroup, "") << "it was not announced";
    engine.objectTable.setMoAttribute = engine.objects.table().setMoAttribute;
    EXPECT_EQ(engine.collector.setJobGroupingSupport(), 0);
    EXPECT_EQ(engine.collector.populateMo(gp), 0);
    EXPECT_EQ(gp->_jobGroup, "G");
}

}  // namespace VorTest
