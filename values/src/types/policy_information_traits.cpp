#include <brevantis/asn1/values/types/policy_information_traits.h>

#include <brevantis/asn1/values/types/primitive_traits.h>

namespace Brevantis::ASN1 {

void ASN1T_PolicyInformation_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_PolicyInformation& record,
                                         const CPolicyInformation& value) {
    record.m = {};
    ASN1TObjId_traits::set(ctxt, record.policyIdentifier, value.get_policyIdentifier());
}

void ASN1T_PolicyInformation_traits::get(const asn1data::ASN1T_PolicyInformation& record,
                                         CPolicyInformation& value) {
    // Kept: qualifiers are not carried. Programs depend on what is then written.
    CStringProxy identifier;
    ASN1TObjId_traits::get(record.policyIdentifier, identifier);
    value.put_policyIdentifier(identifier.c_str());
}

} // namespace Brevantis::ASN1
