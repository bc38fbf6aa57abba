#ifndef BREVANTIS_ASN1_VALUES_TYPES_ACCESS_DESCRIPTION_H
#define BREVANTIS_ASN1_VALUES_TYPES_ACCESS_DESCRIPTION_H

#include <list>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/general_name.h>
#include <brevantis/asn1/values/util/whole_assignment.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/text.h>

/// @file
/// Where an issuer's services are found (RFC 5280, 4.2.2.1).

namespace Brevantis::ASN1 {

/// AccessDescription: a kind of service and its place.
class BREVANTIS_ASN1_API CAccessDescription {
public:
    /// No method and no place.
    CAccessDescription() = default;
    /// @param accessMethod dotted text; null stands for the empty text
    CAccessDescription(const char* accessMethod, const CGeneralName& accessLocation);
    CAccessDescription(const CAccessDescription&) = default;
    CAccessDescription(CAccessDescription&&) noexcept = default;
    CAccessDescription& operator=(const CAccessDescription& other) {
        return assignWhole(*this, other);
    }
    CAccessDescription& operator=(CAccessDescription&&) noexcept = default;
    ~CAccessDescription() = default;

    /// @return dotted text, valid until it changes
    const char* get_accessMethod() const { return accessMethod_.c_str(); }
    /// Where the service is; valid until it is set or the object goes.
    const CGeneralName& get_accessLocation() const { return accessLocation_; }
    /// @param accessMethod dotted text, looked at when it is encoded; null stands for the empty
    /// text
    void put_accessMethod(const char* accessMethod) { accessMethod_ = accessMethod; }
    /// @param location copied
    void put_accessLocation(const CGeneralName& location) { accessLocation_ = location; }

    /// @return the DER
    /// @throws as CGeneralName::encode; ATL::CAtlException with E_INVALIDARG for a method that is
    ///         no identifier
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no AccessDescription,
    ///         with E_INVALIDARG for a location of a kind that CGeneralName does not carry, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out; the object stays as it was
    void decode(const CBlob& blob);

private:
    CStringProxy accessMethod_;
    CGeneralName accessLocation_;
};

/// Compares the methods, then the locations.
/// @warning Locations are equal when CGeneralName says so, which compares texts by their first
///          characters alone: two URIs of one scheme are equal.
BREVANTIS_ASN1_API bool operator==(const CAccessDescription& a, const CAccessDescription& b);
BREVANTIS_ASN1_API bool operator!=(const CAccessDescription& a, const CAccessDescription& b);

/// AuthorityInfoAccessSyntax, the value of the extension of that name.
class BREVANTIS_ASN1_API CAuthorityInfoAccessSyntax : public std::list<CAccessDescription> {
public:
    using std::list<CAccessDescription>::list;

    /// @return the DER
    /// @throws as CAccessDescription::encode; ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for an
    ///         empty list
    CBlob encode() const;
    /// @throws as CAccessDescription::decode. The list stays as it was when @p blob is none; when
    ///         it has a location of a kind that is not carried, the list holds what stands before
    void decode(const CBlob& blob);
};

} // namespace Brevantis::ASN1

#endif
