#ifndef BREVANTIS_ASN1_VALUES_TYPES_POLICY_INFORMATION_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_POLICY_INFORMATION_TRAITS_H

#include <brevantis/asn1/asn1data/extensions.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/policy_information.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CPolicyInformation and CPolicyInformationList. Where nothing else is said a failure is
/// ATL::CAtlException with CRYPT_E_ASN1_MEMORY, when memory is out.

namespace Brevantis::ASN1 {

/// PolicyInformation (RFC 5280, 4.2.1.4), without its qualifiers.
struct BREVANTIS_ASN1_API ASN1T_PolicyInformation_traits
    : CatalogueTraits<asn1data::ASN1T_PolicyInformation, asn1data::ASN1C_PolicyInformation,
                      &asn1data::asn1Copy_PolicyInformation> {
    /// @throws as ASN1TObjId_traits::set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_PolicyInformation& record,
                    const CPolicyInformation& value);
    static void get(const asn1data::ASN1T_PolicyInformation& record, CPolicyInformation& value);
};

/// SEQUENCE OF PolicyInformation.
using PolicyInformationListTraits =
    ASN1TSeqOfList_traits<asn1data::ASN1T_PolicyInformation, ASN1T_PolicyInformation_traits,
                          CPolicyInformation, CPolicyInformationList>;
BREVANTIS_ASN1_INSTANCE struct BREVANTIS_ASN1_API
    ASN1TSeqOfList_traits<asn1data::ASN1T_PolicyInformation, ASN1T_PolicyInformation_traits,
                          CPolicyInformation, CPolicyInformationList>;

BREVANTIS_ASN1_CODED(ASN1T_PolicyInformation_traits, CPolicyInformation)

} // namespace Brevantis::ASN1

#endif
