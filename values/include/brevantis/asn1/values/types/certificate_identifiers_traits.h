#ifndef BREVANTIS_ASN1_VALUES_TYPES_CERTIFICATE_IDENTIFIERS_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_CERTIFICATE_IDENTIFIERS_TRAITS_H

#include <brevantis/asn1/asn1data/ess.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/certificate_identifiers.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CESSCertID, CESSCertIDv2, COtherCertID and the lists of these. Where nothing else is
/// said a failure is ATL::CAtlException with CRYPT_E_ASN1_MEMORY, when memory is out.

namespace Brevantis::ASN1 {

/// ESSCertID (RFC 2634, 5.4.1).
struct BREVANTIS_ASN1_API ASN1T_ESSCertID_traits
    : CatalogueTraits<asn1data::ASN1T_ESSCertID, asn1data::ASN1C_ESSCertID,
                      &asn1data::asn1Copy_ESSCertID> {
    /// @throws as ASN1T_GeneralName_traits::set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_ESSCertID& record, const CESSCertID& value);
    /// @throws ATL::CAtlException with E_INVALIDARG for a name of a kind that CGeneralName does not
    ///         carry; @p value stays as it was
    static void get(const asn1data::ASN1T_ESSCertID& record, CESSCertID& value);
};

/// ESSCertIDv2 (RFC 5035, 4). An algorithm with the identifier of SHA-256 is the DEFAULT, which
/// `set` leaves out, its parameters included.
struct BREVANTIS_ASN1_API ASN1T_ESSCertIDv2_traits
    : CatalogueTraits<asn1data::ASN1T_ESSCertIDv2, asn1data::ASN1C_ESSCertIDv2,
                      &asn1data::asn1Copy_ESSCertIDv2> {
    /// @throws as ASN1T_GeneralName_traits::set and ASN1T_AlgorithmIdentifier_set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_ESSCertIDv2& record, const CESSCertIDv2& value);
    /// @throws ATL::CAtlException with E_INVALIDARG for a name of a kind that CGeneralName does not
    ///         carry; @p value stays as it was
    static void get(const asn1data::ASN1T_ESSCertIDv2& record, CESSCertIDv2& value);
};

/// OtherCertID (RFC 5126, 5.7.3.3).
struct BREVANTIS_ASN1_API ASN1T_OtherCertID_traits
    : CatalogueTraits<asn1data::ASN1T_OtherCertID, asn1data::ASN1C_OtherCertID,
                      &asn1data::asn1Copy_OtherCertID> {
    /// @throws as ASN1T_GeneralName_traits::set and ASN1T_AlgorithmIdentifier_set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_OtherCertID& record, const COtherCertID& value);
    /// @throws ATL::CAtlException with E_INVALIDARG for a name of a kind that CGeneralName does not
    ///         carry; @p value stays as it was
    static void get(const asn1data::ASN1T_OtherCertID& record, COtherCertID& value);
};

/// SEQUENCE OF ESSCertID.
using ESSCertIDListTraits = ASN1TSeqOfList_traits<asn1data::ASN1T_ESSCertID, ASN1T_ESSCertID_traits,
                                                  CESSCertID, CESSCertIDList>;
BREVANTIS_ASN1_INSTANCE struct BREVANTIS_ASN1_API ASN1TSeqOfList_traits<
    asn1data::ASN1T_ESSCertID, ASN1T_ESSCertID_traits, CESSCertID, CESSCertIDList>;

/// SEQUENCE OF ESSCertIDv2.
using ESSCertIDv2ListTraits =
    ASN1TSeqOfList_traits<asn1data::ASN1T_ESSCertIDv2, ASN1T_ESSCertIDv2_traits, CESSCertIDv2,
                          CESSCertIDv2List>;
BREVANTIS_ASN1_INSTANCE struct BREVANTIS_ASN1_API ASN1TSeqOfList_traits<
    asn1data::ASN1T_ESSCertIDv2, ASN1T_ESSCertIDv2_traits, CESSCertIDv2, CESSCertIDv2List>;

/// SEQUENCE OF OtherCertID.
using OtherCertIDListTraits =
    ASN1TSeqOfList_traits<asn1data::ASN1T_OtherCertID, ASN1T_OtherCertID_traits, COtherCertID,
                          COtherCertIDList>;
BREVANTIS_ASN1_INSTANCE struct BREVANTIS_ASN1_API ASN1TSeqOfList_traits<
    asn1data::ASN1T_OtherCertID, ASN1T_OtherCertID_traits, COtherCertID, COtherCertIDList>;

BREVANTIS_ASN1_CODED(ASN1T_ESSCertID_traits, CESSCertID)
BREVANTIS_ASN1_CODED(ASN1T_ESSCertIDv2_traits, CESSCertIDv2)
BREVANTIS_ASN1_CODED(ASN1T_OtherCertID_traits, COtherCertID)

} // namespace Brevantis::ASN1

#endif
