#ifndef BREVANTIS_ASN1_VALUES_TYPES_ATTRIBUTE_REGISTER_H
#define BREVANTIS_ASN1_VALUES_TYPES_ATTRIBUTE_REGISTER_H

#include <list>
#include <string>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/character_string.h>
#include <brevantis/support/blob.h>

/// @file
/// The register of the attributes that names are made of: their identifiers (X.520; RFC 4519; RFC
/// 2985), short names and string types. It gives names their text form.

namespace Brevantis::ASN1 {

class CAttributeTypeAndValue;

/// A row of the register, and as its static members the register itself.
///
/// An attribute that has a row goes by its short name, and its value is text in a character string.
/// One that has none goes by its identifier, and its value is a "#" and the hexadecimal digits of
/// its encoding. Identifiers and short names are compared as whole texts, case included. Null texts
/// stand for the empty text.
class BREVANTIS_ASN1_API CATAVRegister {
public:
    /// A new row, which is also put at the end of the register. Where two rows have the same
    /// identifier or name, the first counts. Rows are for static objects: nobody may use the
    /// register at the same time.
    /// @param identifier dotted text
    CATAVRegister(const char* identifier, const wchar_t* shortName, StringType stringType,
                  unsigned long longestValue);

    std::string oid;         ///< dotted text
    std::wstring name;       ///< the short name
    StringType type;         ///< how values are written unless the caller tells
    unsigned long maxLength; ///< the most characters that a value may have

    /// The rows, filled during static initialisation and only read afterwards.
    static std::list<CATAVRegister> registered_;

    /// @return the first row with this identifier, or the end of `registered_`
    static std::list<CATAVRegister>::const_iterator find(const char* oid);
    /// @return the first row with this short name, or the end of `registered_`
    static std::list<CATAVRegister>::const_iterator find(const wchar_t* name);

    /// The short name of an identifier, or the text of the identifier when it has no row.
    static std::wstring typeToStr(const char* oid);
    /// The identifier of a short name.
    /// @warning A text that is no short name comes back as it is, whether it is an identifier or
    ///          not.
    /// @throws ATL::CAtlException with the code of AtlThrowLastWin32 when it is none and not ASCII
    static std::string typeFromStr(const wchar_t* name);

    /// The text of a value.
    /// @param oid of its attribute
    /// @param value its encoding
    /// @throws what decodeCharString throws, when @p oid has a row
    static std::wstring valueToStr(const char* oid, const CBlob& value);
    /// The encoding of a value.
    /// @warning Without a row for @p oid the first character of @p text is dropped, whatever it is.
    ///          With a row a "#" has no special meaning.
    /// @param oid of its attribute
    /// @param type StringTypeDefault for the one that the row tells; without meaning when @p oid
    ///        has no row
    /// @throws ATL::CAtlException with E_INVALIDARG for more characters than the row allows or,
    /// when
    ///         there is no row, for text that is not hexadecimal; what encodeCharString throws.
    ///         std::out_of_range for an empty text when there is no row
    static CBlob valueFromStr(const char* oid, const wchar_t* text, StringType type);

    /// A pair from the texts of its two parts.
    /// @throws what typeFromStr and valueFromStr throw
    static CAttributeTypeAndValue makeATAV(const wchar_t* typeText, const wchar_t* valueText,
                                           StringType type);
    /// A pair from a text such as "CN=text". What stands before the first "=" is the type, all
    /// behind it the value; nothing is trimmed, quoted or escaped.
    /// @throws also ATL::CAtlException with E_INVALIDARG when there is no "="
    static CAttributeTypeAndValue makeATAV(const wchar_t* pair, StringType type);
};

/// The rows of the library itself.
extern BREVANTIS_ASN1_API const CATAVRegister commonNameAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister countryNameAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister localityNameAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister stateOrProvinceNameAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister emailAddressAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister organizationNameAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister organizationUnitNameAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister titleAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister givenNameAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister initialsAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister surnameAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister pseudonymAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister ogrnAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister ogrnipAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister snilsAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister innAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister streetAddressAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister domainComponentAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister unstructuredNameAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister PostalCodeAttribute;
extern BREVANTIS_ASN1_API const CATAVRegister serialNumberAttribute;

} // namespace Brevantis::ASN1

#endif
