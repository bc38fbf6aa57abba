#include <brevantis/asn1/values/types/attribute_type_and_value_traits.h>

#include <brevantis/asn1/values/types/primitive_traits.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>

#include "util/read_value.h"

namespace Brevantis::ASN1 {

void ASN1T_AttributeTypeAndValue_traits::set(ASN1CTXT* ctxt,
                                             asn1data::ASN1T_AttributeTypeAndValue& record,
                                             const CAttributeTypeAndValue& value) {
    DecodeBuffer buffer;
    asn1data::ASN1T_AttributeTypeAndValue checked;
    ASN1TObjId_traits::set(buffer.getCtxtPtr(), checked.type, value.get_type());
    Asn1TObject_traits::set(buffer.getCtxtPtr(), checked.value, value.get_value());
    // A known attribute whose value does not decode is not let out.
    requireSuccess(asn1data::asn1DTC_AttributeTypeAndValue(buffer.getCtxtPtr(), &checked));
    copy(ctxt, checked, record);
}

void ASN1T_AttributeTypeAndValue_traits::get(const asn1data::ASN1T_AttributeTypeAndValue& record,
                                             CAttributeTypeAndValue& value) {
    value = CAttributeTypeAndValue(toOID(record.type),
                                   readValue<Asn1TObject_traits, CBlob>(record.value));
}

} // namespace Brevantis::ASN1
