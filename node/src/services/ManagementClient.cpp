#include "services/ManagementClient.h"

#include <future>

#include "ExtCmInterceptorRepository.h"
#include "MoAccessor.h"
#include "MoInterceptorBase.h"
#include "model/Dn.h"
#include "services/AttributeContainer.h"
#include "services/ManagedObjectService.h"
#include "services/Operation.h"
#include "services/TransactionService.h"

namespace VorNode {

AttributeReading ManagementClient::read(const std::string& dn, const std::string& attribute) const {
    AttributeReading reading{attribute, VorReturnFailed, {}};
    reading.result = carryOut([&] { reading.values = request(dn, attribute); });
    return reading;
}

std::vector<ObjectReading> ManagementClient::readObjectsOf(const std::string& classPath) const {
    std::vector<ObjectReading> objects;
    for (const std::string& dn : _model.objectsOf(classPath)) {
        std::vector<std::future<AttributeReading>> requests;
        for (const AttributeDefinition& attribute : _model.findClass(classPath)->attributes) {
            requests.push_back(std::async(std::launch::async,
                                          [this, &dn, &name = attribute.name] { return read(dn, name); }));
        }
        ObjectReading& object = objects.emplace_back();
        object.dn = dn;
        for (std::future<AttributeReading>& request : requests) {
            object.attributes.push_back(request.get());
        }
    }
    return objects;
}

AttributeValues ManagementClient::request(const std::string& dn, const std::string& attribute) const {
    const AttributeDefinition* definition = _model.findAttribute(dn, attribute);
    if (definition == nullptr) {
        throw Refusal{VorReturnAbsent};
    }
    constexpr VorLockPolicyT lockPolicy = 1;
    constexpr int timeout = 60;
    const Vor::Transaction transaction(_transactions.table(), lockPolicy, timeout);
    const unsigned long handle = transaction.getTransaction();
    const auto interceptor =
        VorExtCmRouterService::ExtCmInterceptorRepository::instance().find(classPathOf(dn));
    Vor::MoAccessor::MoAttributeValueResult result;
    const KelReturnT code =
        interceptor != nullptr
            ? interceptor->getMoAttribute(handle, dn.c_str(), attribute.c_str(), &result)
            : _managedObjects.table().getMoAttribute(handle, dn.c_str(), attribute.c_str(), &result);
    if (code != VorReturnOk) {
        throw Refusal{code};
    }
    return result.container != nullptr ? copyValues(*definition, *result.container) : AttributeValues{};
}

}  // namespace VorNode
