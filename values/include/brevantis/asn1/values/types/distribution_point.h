#ifndef BREVANTIS_ASN1_VALUES_TYPES_DISTRIBUTION_POINT_H
#define BREVANTIS_ASN1_VALUES_TYPES_DISTRIBUTION_POINT_H

#include <list>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/choice.h>
#include <brevantis/asn1/values/types/general_name.h>
#include <brevantis/asn1/values/types/reason_flags.h>
#include <brevantis/asn1/values/util/owned_copy.h>
#include <brevantis/support/blob.h>

/// @file
/// Where revocation lists are found (RFC 5280, 4.2.1.13).

namespace Brevantis::ASN1 {

BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<CGeneralNames, 1>;

/// Alternatives of CDistributionPointName.
class BREVANTIS_ASN1_API CDistributionPointNameImpl final
    : public ChoiceOf<ChoiceValueTraitsT<CGeneralNames, 1>> {};

/// DistributionPointName: alternative 1, `fullName`.
/// @warning `nameRelativeToCRLIssuer` is not carried: it is read as no name, which cannot be
///          encoded.
class BREVANTIS_ASN1_API CDistributionPointName {
public:
    /// No name: alternative 0.
    CDistributionPointName() = default;
    /// Alternative 1.
    explicit CDistributionPointName(const CGeneralNames& fullName);

    /// @return the number of the alternative, 0 for none
    unsigned int get_type() const { return choice_.type(); }
    /// @return null for another alternative; valid until the name changes or goes
    const CGeneralNames* get_fullName() const { return choice_.get<FullName>(); }
    /// Alternative 1.
    /// @param fullName copied
    void put_fullName(const CGeneralNames& fullName) { choice_.put<FullName>(fullName); }
    /// Takes the name away.
    void clear() { choice_.clear(); }

    /// @return the DER
    /// @throws as CGeneralNames::encode; ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for no name
    CBlob encode() const;
    /// @warning A `nameRelativeToCRLIssuer` leaves the object as it was.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no
    ///         DistributionPointName, with E_INVALIDARG for a name of a kind that CGeneralName does
    ///         not carry, with CRYPT_E_ASN1_MEMORY when memory is out; the object stays as it was
    void decode(const CBlob& blob);

private:
    using FullName = ChoiceValueTraitsT<CGeneralNames, 1>;

    ChoicePointer<CDistributionPointNameImpl> choice_;
};

/// Compares the alternatives, then the names in list order.
/// @warning Texts are compared by their first characters alone.
BREVANTIS_ASN1_API bool operator==(const CDistributionPointName& a,
                                   const CDistributionPointName& b);
BREVANTIS_ASN1_API bool operator!=(const CDistributionPointName& a,
                                   const CDistributionPointName& b);

/// DistributionPoint: the place of the lists, the reasons they cover, and their issuer, each of
/// them optional.
class BREVANTIS_ASN1_API CDistributionPoint {
public:
    /// @return null when absent; otherwise valid until it changes or the object goes
    const CDistributionPointName* get_distributionPoint() const;
    const CReasonFlags* get_reasons() const;
    const CGeneralNames* get_cRLIssuer() const;

    /// The setters copy their argument, null takes the field away.
    void put_distributionPoint(const CDistributionPointName* name);
    void put_reasons(const CReasonFlags* reasons);
    /// @warning An empty list is not encoded, and so comes back as an absent one.
    void put_cRLIssuer(const CGeneralNames* issuer);
    /// Takes all fields away.
    void clear();

    /// @return the DER
    /// @throws as CGeneralNames::encode; ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for a
    ///         `distributionPoint` without a name
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no DistributionPoint,
    ///         with E_INVALIDARG for a name of a kind that CGeneralName does not carry, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out; the object stays as it was
    void decode(const CBlob& blob);

    friend BREVANTIS_ASN1_API bool operator==(const CDistributionPoint& a,
                                              const CDistributionPoint& b);

private:
    struct Content {
        OwnedCopy<CDistributionPointName> distributionPoint;
        OwnedCopy<CReasonFlags> reasons;
        OwnedCopy<CGeneralNames> cRLIssuer;
    };

    OwnedCopy<Content> content_;
};

/// Compares the fields; an absent one equals an absent one only.
/// @warning Of names the texts are compared by their first characters alone.
BREVANTIS_ASN1_API bool operator==(const CDistributionPoint& a, const CDistributionPoint& b);
BREVANTIS_ASN1_API bool operator!=(const CDistributionPoint& a, const CDistributionPoint& b);

/// CRLDistributionPoints, the value of the extension of that name.
class BREVANTIS_ASN1_API CCRLDistPointsSyntax : public std::list<CDistributionPoint> {
public:
    using std::list<CDistributionPoint>::list;

    /// @return the DER
    /// @throws as CDistributionPoint::encode; ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for an
    ///         empty list
    CBlob encode() const;
    /// @throws as CDistributionPoint::decode. The list stays as it was when @p blob is none; when
    ///         it has a name of a kind that is not carried, the list holds the points before it
    void decode(const CBlob& blob);
};

} // namespace Brevantis::ASN1

#endif
