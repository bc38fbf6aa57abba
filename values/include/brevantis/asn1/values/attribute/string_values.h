#ifndef BREVANTIS_ASN1_VALUES_ATTRIBUTE_STRING_VALUES_H
#define BREVANTIS_ASN1_VALUES_ATTRIBUTE_STRING_VALUES_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/attr_value.h>

/// @file
/// Attribute values that are texts (X.520, clause 6; RFC 2985, 5.5).

namespace Brevantis::ASN1 {

/// A text, encoded as CATAVRegister::valueFromStr does: in the string type that the register has
/// for the attribute. Narrow texts are UTF-8.
class BREVANTIS_ASN1_API CAttrStringValue : public CAttrValue {
public:
    /// @param oid dotted text of an attribute that the register has; for any other one @p text is
    ///        the value itself in hexadecimal digits behind a "#"
    /// @param text terminated, not null
    /// @throws ATL::CAtlException with E_INVALIDARG for more characters than the register allows
    ///         and for digits that are none, with the code of AtlThrowLastWin32 for a character
    ///         that the string type does not have, with CRYPT_E_ASN1_MEMORY when memory is out;
    ///         std::out_of_range for an empty text and an attribute outside the register
    CAttrStringValue(const char* oid, const wchar_t* text);
    CAttrStringValue(const char* oid, const char* text);
};

/// commonName, 2.5.4.3, as a UTF8String.
class BREVANTIS_ASN1_API CAttrCommonName : public CAttrStringValue {
public:
    /// @param text terminated, UTF-8, not null
    /// @throws as CAttrStringValue; the same holds for the classes below
    explicit CAttrCommonName(const char* text);
};

/// surname, 2.5.4.4, as a UTF8String.
class BREVANTIS_ASN1_API CAttrSurname : public CAttrStringValue {
public:
    /// @copydoc CAttrCommonName::CAttrCommonName
    explicit CAttrSurname(const char* text);
};

/// serialNumber, 2.5.4.5, as a PrintableString.
class BREVANTIS_ASN1_API CAttrSerialNumber : public CAttrStringValue {
public:
    /// @copydoc CAttrCommonName::CAttrCommonName
    explicit CAttrSerialNumber(const char* text);
};

/// countryName, 2.5.4.6, as a PrintableString.
class BREVANTIS_ASN1_API CAttrCountry : public CAttrStringValue {
public:
    /// @copydoc CAttrCommonName::CAttrCommonName
    explicit CAttrCountry(const char* text);
};

/// localityName, 2.5.4.7, as a UTF8String.
class BREVANTIS_ASN1_API CAttrLocality : public CAttrStringValue {
public:
    /// @copydoc CAttrCommonName::CAttrCommonName
    explicit CAttrLocality(const char* text);
};

/// stateOrProvinceName, 2.5.4.8, as a UTF8String.
class BREVANTIS_ASN1_API CAttrStateOrProvinceName : public CAttrStringValue {
public:
    /// @copydoc CAttrCommonName::CAttrCommonName
    explicit CAttrStateOrProvinceName(const char* text);
};

/// organizationName, 2.5.4.10, as a UTF8String.
class BREVANTIS_ASN1_API CAttrOrganizationName : public CAttrStringValue {
public:
    /// @copydoc CAttrCommonName::CAttrCommonName
    explicit CAttrOrganizationName(const char* text);
};

/// organizationalUnitName, 2.5.4.11, as a UTF8String.
class BREVANTIS_ASN1_API CAttrOrganizationalUnitName : public CAttrStringValue {
public:
    /// @copydoc CAttrCommonName::CAttrCommonName
    explicit CAttrOrganizationalUnitName(const char* text);
};

/// title, 2.5.4.12, as a UTF8String.
class BREVANTIS_ASN1_API CAttrTitle : public CAttrStringValue {
public:
    /// @copydoc CAttrCommonName::CAttrCommonName
    explicit CAttrTitle(const char* text);
};

/// givenName, 2.5.4.42, as a UTF8String.
class BREVANTIS_ASN1_API CAttrGivenName : public CAttrStringValue {
public:
    /// @copydoc CAttrCommonName::CAttrCommonName
    explicit CAttrGivenName(const char* text);
};

/// initials, 2.5.4.43, as a UTF8String.
class BREVANTIS_ASN1_API CAttrInitials : public CAttrStringValue {
public:
    /// @copydoc CAttrCommonName::CAttrCommonName
    explicit CAttrInitials(const char* text);
};

/// pseudonym, 2.5.4.65, as a UTF8String.
class BREVANTIS_ASN1_API CAttrPseudonym : public CAttrStringValue {
public:
    /// @copydoc CAttrCommonName::CAttrCommonName
    explicit CAttrPseudonym(const char* text);
};

/// emailAddress, 1.2.840.113549.1.9.1, as an IA5String.
class BREVANTIS_ASN1_API CAttrEmailAddress : public CAttrStringValue {
public:
    /// @copydoc CAttrCommonName::CAttrCommonName
    explicit CAttrEmailAddress(const char* text);
};

} // namespace Brevantis::ASN1

#endif
