#ifndef BREVANTIS_ASN1_VALUES_TYPES_ALGORITHM_IDENTIFIER_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_ALGORITHM_IDENTIFIER_TRAITS_H

#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/algorithm_identifier.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CAlgorithmIdentifier. Where nothing else is said a failure is ATL::CAtlException with
/// CRYPT_E_ASN1_MEMORY, when memory is out.

namespace Brevantis::ASN1 {

/// A record for an algorithm, on the heap of @p ctxt, with the typed form of its parameters where
/// the algorithm is known.
/// @param algorithm dotted text
/// @param parameters their DER; null or empty for none
/// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for a text that is no identifier, and for
///         parameters that a known algorithm does not have
BREVANTIS_ASN1_API asn1data::ASN1T_AlgorithmIdentifier*
ASN1T_AlgorithmIdentifier_set(ASN1CTXT* ctxt, const char* algorithm, const CBlob* parameters);

/// Reads a record: the identifier goes to CAlgorithmIdentifier::put_algorithm, then the parameters,
/// in the form they were decoded from, to put_parameters.
BREVANTIS_ASN1_API void
ASN1T_AlgorithmIdentifier_get(CAlgorithmIdentifier& value,
                              const asn1data::ASN1T_AlgorithmIdentifier& record);

/// AlgorithmIdentifier (RFC 5280, 4.1.1.2).
struct BREVANTIS_ASN1_API ASN1T_AlgorithmIdentifier_traits
    : CatalogueTraits<asn1data::ASN1T_AlgorithmIdentifier, asn1data::ASN1C_AlgorithmIdentifier,
                      &asn1data::asn1Copy_AlgorithmIdentifier> {
    /// @throws as ASN1T_AlgorithmIdentifier_set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_AlgorithmIdentifier& record,
                    const CAlgorithmIdentifier& value);
    /// As ASN1T_AlgorithmIdentifier_get.
    static void get(const asn1data::ASN1T_AlgorithmIdentifier& record, CAlgorithmIdentifier& value);
};

BREVANTIS_ASN1_CODED(ASN1T_AlgorithmIdentifier_traits, CAlgorithmIdentifier)

} // namespace Brevantis::ASN1

#endif
