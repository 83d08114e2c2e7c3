#include "ModelRepositoryWrapper.h"

namespace Vor {

namespace {

const VorOamSpiModelRepository& repository() {
    const VorOamSpiModelRepository* found = ModRepWrap::spi();
    if (found == nullptr) {
        throw VorException(VorReturnAbsent, "No model repository");
    }
    return *found;
}

}  // namespace

void ModRepWrap::verifyModelRepositoryRetCode(VorReturnT result) {
    if (result != VorReturnOk) {
        throw VorException(result, "Model repository failed, reason (%d)", result);
    }
}

ModRepWrap::Moc ModRepWrap::Entry::getMocFromDn(const char* dn) const {
    VorOamSpiClassHandleT handle = allOnes;
    verifyModelRepositoryRetCode(repository().classQuery->getClassFromDn(dn, &handle));
    return Moc(handle);
}

ModRepWrap::AttributeIterator ModRepWrap::Moc::attributesBegin() const {
    const VorOamSpiModelRepository& model = repository();
    VorOamSpiAttributeHandleT first = allOnes;
    const VorReturnT result = model.classQuery->getFirstAttribute(_handle, &first);
    if (result == VorReturnAbsent) {
        return attributesEnd();
    }
    verifyModelRepositoryRetCode(result);
    return {first, model.attributeQuery->getNextAttribute};
}

ModRepWrap::AttributeIterator ModRepWrap::Moc::attributesEnd() const {
    return {};
}

ModRepWrap::AttrDescriptor::AttrDescriptor(VorOamSpiAttributeHandleT handle) {
    const char* name = nullptr;
    verifyModelRepositoryRetCode(repository().attributeQuery->getName(handle, &name));
    _name = name != nullptr ? name : "";
}

}  // namespace Vor
