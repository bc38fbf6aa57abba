#include <brevantis/asn1/values/attribute/attribute_traits.h>

#include <utility>

#include <brevantis/asn1/values/util/object_identifier_text.h>

#include "util/checked_copy.h"

namespace Brevantis::ASN1 {

void ASN1T_Attribute_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_Attribute& record,
                                 const CAttribute& value) {
    asn1data::ASN1T_Attribute checked;
    ASN1TObjId_traits::set(ctxt, checked.type, value.get_oid());
    CBlobList values;
    for (const CAttrValue& each : value) {
        values.push_back(each.get_value());
    }
    OpenValueListTraits::set(ctxt, checked.values, values);
    copyResolved<ASN1T_Attribute_traits, &asn1data::asn1DTC_Attribute>(ctxt, checked, record);
}

void ASN1T_Attribute_traits::get(const asn1data::ASN1T_Attribute& record, CAttribute& value) {
    CAttribute attribute(toOID(record.type).c_str());
    CBlobList values;
    OpenValueListTraits::get(record.values, values);
    for (const CBlob& each : values) {
        attribute.add(each);
    }
    value = std::move(attribute);
}

void ASN1T_Attributes_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_SignedAttributes& record,
                                  const CAttributes& value) {
    AttributeListTraits::set(ctxt, record, value);
}

void ASN1T_Attributes_traits::get(const asn1data::ASN1T_SignedAttributes& record,
                                  CAttributes& value) {
    AttributeListTraits::get(record, value);
}

} // namespace Brevantis::ASN1
