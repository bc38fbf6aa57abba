#include <brevantis/asn1/values/types/access_description_traits.h>

#include <brevantis/asn1/values/types/general_name_traits.h>
#include <brevantis/asn1/values/types/primitive_traits.h>

namespace Brevantis::ASN1 {

void ASN1T_AccessDescription_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_AccessDescription& record,
                                         const CAccessDescription& value) {
    ASN1TObjId_traits::set(ctxt, record.accessMethod, value.get_accessMethod());
    ASN1T_GeneralName_traits::set(ctxt, record.accessLocation, value.get_accessLocation());
}

void ASN1T_AccessDescription_traits::get(const asn1data::ASN1T_AccessDescription& record,
                                         CAccessDescription& value) {
    CStringProxy method;
    CGeneralName location;
    ASN1TObjId_traits::get(record.accessMethod, method);
    ASN1T_GeneralName_traits::get(record.accessLocation, location);
    value = CAccessDescription(method.c_str(), location);
}

void ASN1T_AuthorityInfoAccessSyntax_traits::set(ASN1CTXT* ctxt,
                                                 asn1data::ASN1T_AuthorityInfoAccessSyntax& record,
                                                 const CAuthorityInfoAccessSyntax& value) {
    AccessDescriptionListTraits::set(ctxt, record, value);
}

void ASN1T_AuthorityInfoAccessSyntax_traits::get(
    const asn1data::ASN1T_AuthorityInfoAccessSyntax& record, CAuthorityInfoAccessSyntax& value) {
    AccessDescriptionListTraits::get(record, value);
}

} // namespace Brevantis::ASN1
