#include <brevantis/asn1/values/extension/extension_traits.h>

#include <brevantis/asn1/values/types/primitive_traits.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>

#include "util/checked_copy.h"
#include "util/read_value.h"

namespace Brevantis::ASN1 {

void ASN1T_Extension_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_Extension& record,
                                 const CExtension& value) {
    asn1data::ASN1T_Extension checked;
    ASN1TObjId_traits::set(ctxt, checked.extnID, value.get_extnID());
    checked.critical = value.get_critical() ? 1 : 0;
    ASN1TDynOctStr_traits::set(ctxt, checked.extnValue, value.get_extnValue());
    copyResolved<ASN1T_Extension_traits, &asn1data::asn1DTC_Extension>(ctxt, checked, record);
}

void ASN1T_Extension_traits::get(const asn1data::ASN1T_Extension& record, CExtension& value) {
    value = CExtension(
        CExtValue(toOID(record.extnID), readValue<ASN1TDynOctStr_traits, CBlob>(record.extnValue)),
        record.critical != 0);
}

void ASN1T_Extensions_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_Extensions& record,
                                  const CExtensions& value) {
    ExtensionListTraits::set(ctxt, record, value);
}

void ASN1T_Extensions_traits::get(const asn1data::ASN1T_Extensions& record, CExtensions& value) {
    ExtensionListTraits::get(record, value);
}

} // namespace Brevantis::ASN1
