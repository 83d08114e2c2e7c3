#include "PmAttributeLookup.h"

#include "ModelRepositoryWrapper.h"
#include "PmLog.h"

namespace VorPm {

bool attributeExists(const char* dn, const char* attrName) {
    const Vor::ModRepWrap::Moc moClass = Vor::ModRepWrap::Entry().getMocFromDn(dn);
    if (Vor::ModRepWrap::isHandleNull(moClass.handle())) {
        LOG_ERROR("moc of mo %s  does not exist in the model", dn);
    } else {
        const auto end = moClass.attributesEnd();
        for (auto attribute = moClass.attributesBegin(); !(attribute == end); ++attribute) {
            if (Vor::ModRepWrap::AttrDescriptor(*attribute).name() == attrName) {
                LOG_TRACE("%s Attribute exists", attrName);
                return true;
            }
        }
    }
    LOG_TRACE("%s Attribute does not exists", attrName);
    return false;
}

}  // namespace VorPm
