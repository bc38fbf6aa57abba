#ifndef BREVANTIS_ASN1_VALUES_TYPES_DISTRIBUTION_POINT_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_DISTRIBUTION_POINT_TRAITS_H

#include <brevantis/asn1/asn1data/extensions.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/distribution_point.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>

/// @file
/// Traits of CDistributionPointName, CDistributionPoint and CCRLDistPointsSyntax. Where nothing
/// else is said a failure is ATL::CAtlException with CRYPT_E_ASN1_MEMORY, when memory is out.

namespace Brevantis::ASN1 {

/// DistributionPointName (RFC 5280, 4.2.1.13).
struct BREVANTIS_ASN1_API ASN1T_DistributionPointName_traits
    : CatalogueTraits<asn1data::ASN1T_DistributionPointName, asn1data::ASN1C_DistributionPointName,
                      &asn1data::asn1Copy_DistributionPointName> {
    /// A value without a name leaves the choice empty.
    /// @throws as ASN1T_GeneralName_traits::set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_DistributionPointName& record,
                    const CDistributionPointName& value);
    /// Anything but a `fullName` leaves @p value as it is.
    /// @throws ATL::CAtlException with E_INVALIDARG for a name of a kind that CGeneralName does not
    ///         carry; @p value stays as it was
    static void get(const asn1data::ASN1T_DistributionPointName& record,
                    CDistributionPointName& value);
};

/// DistributionPoint (RFC 5280, 4.2.1.13).
struct BREVANTIS_ASN1_API ASN1T_DistributionPoint_traits
    : CatalogueTraits<asn1data::ASN1T_DistributionPoint, asn1data::ASN1C_DistributionPoint,
                      &asn1data::asn1Copy_DistributionPoint> {
    /// @throws as ASN1T_GeneralName_traits::set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_DistributionPoint& record,
                    const CDistributionPoint& value);
    /// @throws ATL::CAtlException with E_INVALIDARG for a name of a kind that CGeneralName does not
    ///         carry; @p value stays as it was
    static void get(const asn1data::ASN1T_DistributionPoint& record, CDistributionPoint& value);
};

/// The points of CRLDistPointsSyntax.
using DistributionPointListTraits =
    ASN1TSeqOfList_traits<asn1data::ASN1T_DistributionPoint, ASN1T_DistributionPoint_traits,
                          CDistributionPoint, CCRLDistPointsSyntax>;
BREVANTIS_ASN1_INSTANCE struct BREVANTIS_ASN1_API
    ASN1TSeqOfList_traits<asn1data::ASN1T_DistributionPoint, ASN1T_DistributionPoint_traits,
                          CDistributionPoint, CCRLDistPointsSyntax>;

/// CRLDistPointsSyntax (RFC 5280, 4.2.1.13).
struct BREVANTIS_ASN1_API ASN1T_CRLDistPointsSyntax_traits
    : CatalogueTraits<asn1data::ASN1T_CRLDistPointsSyntax, asn1data::ASN1C_CRLDistPointsSyntax,
                      &asn1data::asn1Copy_CRLDistPointsSyntax> {
    /// @throws as ASN1T_GeneralName_traits::set
    static void set(ASN1CTXT* ctxt, asn1data::ASN1T_CRLDistPointsSyntax& record,
                    const CCRLDistPointsSyntax& value);
    /// @throws as ASN1T_DistributionPoint_traits::get, with the points before the refused one in
    ///         @p value
    static void get(const asn1data::ASN1T_CRLDistPointsSyntax& record, CCRLDistPointsSyntax& value);
};

BREVANTIS_ASN1_ENCODED(ASN1T_DistributionPointName_traits, CDistributionPointName)
BREVANTIS_ASN1_CODED(ASN1T_DistributionPoint_traits, CDistributionPoint)

} // namespace Brevantis::ASN1

#endif
