#include <Poco/TemporaryFile.h>
#include <gmock/gmock.h>

#include "InputError.h"
#include "TemporaryRoot.h"
#include "model/ModelFile.h"

namespace VorNode {

using testing::HasSubstr;
using testing::StartsWith;
using testing::ThrowsMessage;

namespace {

constexpr char modelClasses[] =
    "<Model><Class path='ManagedElement'><Attribute name='networkManagedElementId' type='string'/>"
    "<Attribute name='managedElementId' type='string'/><Attribute name='userLabel' type='string'/>"
    "<Attribute name='dnPrefix' type='string'/><Attribute name='productIdentity' type='struct'/></Class>"
    "<Class path='ManagedElement,SystemFunctions,SwInventory,SwVersion'>"
    "<Attribute name='administrativeData' type='struct'/></Class>"
    "<Class path='ManagedElement,SystemFunctions,Pm,PmJob'><Attribute name='jobGroup' "
    "type='string'/></Class>";

const std::string job = "ManagedElement=1,SystemFunctions=1,Pm=1,PmJob=";
const std::string version = "ManagedElement=1,SystemFunctions=1,SwInventory=1,SwVersion=1";

std::string object(const std::string& dn, const std::string& attribute, const std::string& text) {
    return "<Object dn='" + dn + "'>\n<Attribute name='" + attribute + "'>" + text + "</Attribute></Object>";
}

/// The file of a model with these objects, as long as it is needed.
struct WrittenModel {
    explicit WrittenModel(const std::string& objects) {
        VorTest::writeFile(file.path(), modelClasses + objects + "</Model>");
    }
    std::unique_ptr<Model> load(const std::string& host = "host7") const {
        return loadModel(file.path(), host);
    }

    Poco::TemporaryFile file;
};

}  // namespace

TEST(ModelFile, ReplacesMarksByTheHostsNameInTextsMembersAndDns) {
    const WrittenModel written(
        object("ManagedElement=%H", "userLabel", "100%% of %H") +
        object(version, "administrativeData", "<Member name='productName'>%H</Member>"));

    const auto model = written.load();

    EXPECT_EQ(model->readSingle<std::string>("ManagedElement=host7", "userLabel"), "100% of host7");
    EXPECT_EQ(model->readSingle<StructValue>(version, "administrativeData"),
              (StructValue{{"productName", "host7"}}));
}

TEST(ModelFile, RefusesMarksThatStandForNothing) {
    for (const char* text : {"%h", "%", "50 %"}) {
        const WrittenModel written(object("ManagedElement=1", "userLabel", text));
        EXPECT_THAT([&] { written.load(); },
                    ThrowsMessage<InputError>(StartsWith(written.file.path() + ":2: \"%")))
            << text;
    }
}

TEST(ModelFile, RefusesTextsThatReportsCannotCarry) {
    const std::string longId(110, 'i');
    const struct {
        std::string objects;
        std::string host;
        const char* fault;
    } rows[]{
        {object("ManagedElement=1", "networkManagedElementId", "a/b"), "h", ":2: networkManagedElementId"},
        {object("ManagedElement=1", "networkManagedElementId", "%H"), "a&b", ":2: networkManagedElementId"},
        {object("ManagedElement=1", "networkManagedElementId", "%H"), "", ":2: this host has no name"},
        {object("ManagedElement=1", "managedElementId", "a&lt;b"), "h", ":2: managedElementId"},
        {object("ManagedElement=1", "userLabel", "a&quot;b"), "h", ":2: userLabel"},
        {object("ManagedElement=1", "dnPrefix", "a&#9;b"), "h", ":2: dnPrefix"},
        {object("ManagedElement=1", "productIdentity", "<Member name='productNumber'>a&amp;b</Member>"), "h",
         ":2: productIdentity"},
        {object(version, "administrativeData", "<Member name='productName'>a&amp;b</Member>"), "h",
         ":2: administrativeData"},
        {object(job + "J", "jobGroup", "a/b"), "h", ":2: jobGroup"},
        {object(job + "a&amp;b", "jobGroup", "g"), "h", ":1: "},
        {object(job + "a&lt;b", "jobGroup", "g"), "h", ":1: "},
        {object("ManagedElement=1", "managedElementId", longId) + object(job + "J", "jobGroup", longId), "h",
         ":3: the element's id and the job's group are 220 bytes"},
        {object("ManagedElement=1", "networkManagedElementId", longId + longId), "h",
         ":2: the element's id is 220 bytes"}};
    for (const auto& row : rows) {
        const WrittenModel written(row.objects);
        EXPECT_THAT([&] { written.load(row.host); },
                    ThrowsMessage<InputError>(StartsWith(written.file.path() + row.fault)))
            << row.objects;
    }
}

TEST(ModelFile, TakesNamesOfReportsOfAFullLength) {
    const WrittenModel written(object("ManagedElement=1", "managedElementId", std::string(110, 'i')) +
                               object(job + "J", "jobGroup", std::string(107, 'g')));

    EXPECT_NO_THROW(written.load());
}

TEST(ModelFile, TellsAllFaultsAtOnce) {
    const WrittenModel written("\n<Object dn='None=1'/>\n<Object dn='Nothing=1'/>");

    EXPECT_THAT([&] { written.load(); },
                ThrowsMessage<InputError>(testing::AllOf(HasSubstr(":2: object None=1"), HasSubstr("\n"),
                                                         HasSubstr(":3: object Nothing=1"))));
}

}  // namespace VorNode
