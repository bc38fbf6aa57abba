#ifndef BREVANTIS_ASN1_VALUES_TYPES_ATTRIBUTE_TYPE_AND_VALUE_H
#define BREVANTIS_ASN1_VALUES_TYPES_ATTRIBUTE_TYPE_AND_VALUE_H

#include <string>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/character_string.h>
#include <brevantis/asn1/values/util/whole_assignment.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/text.h>

/// @file
/// AttributeTypeAndValue (X.501, 9.3; RFC 5280, 4.1.2.4).

namespace Brevantis::ASN1 {

class CAttrValue;

/// One pair of a name: the identifier of an attribute and its value. How the pair looks as text is
/// told at CATAVRegister. Texts that are given are terminated, and null stands for the empty text.
class BREVANTIS_ASN1_API CAttributeTypeAndValue {
public:
    /// No type, no value.
    CAttributeTypeAndValue() = default;
    /// @param oid dotted text, first looked at when the pair is encoded
    /// @param value the complete encoding of the value, copied
    CAttributeTypeAndValue(const char* oid, const CBlob& value);
    /// The same from parts that are given away.
    explicit CAttributeTypeAndValue(CStringProxy oid, CBlob value) noexcept;
    /// From the texts of the two parts.
    /// @param type how the value is written; StringTypeDefault: as the register tells
    /// @throws what CATAVRegister::makeATAV throws
    CAttributeTypeAndValue(const wchar_t* typeText, const wchar_t* valueText, StringType type);
    /// From a text such as "CN=text".
    /// @throws what CATAVRegister::makeATAV throws
    CAttributeTypeAndValue(const wchar_t* pair, StringType type);
    /// The identifier and the encoding of an attribute value.
    CAttributeTypeAndValue(const CAttrValue& value);
    CAttributeTypeAndValue(const CAttributeTypeAndValue&) = default;
    CAttributeTypeAndValue(CAttributeTypeAndValue&&) noexcept = default;
    CAttributeTypeAndValue& operator=(const CAttributeTypeAndValue& other) {
        return assignWhole(*this, other);
    }
    CAttributeTypeAndValue& operator=(CAttributeTypeAndValue&&) noexcept = default;
    ~CAttributeTypeAndValue() = default;

    /// @return the identifier as dotted text, valid until it changes or goes
    const char* get_type() const;
    /// @return the complete encoding of the value
    CBlob get_value() const;
    /// @param oid dotted text, first looked at when the pair is encoded
    void put_type(const char* oid);
    /// @param value the complete encoding of the value
    void put_value(const CBlob& value);

    /// @return the short name of the type, or its identifier when it is not registered
    CWStringProxy get_type_str() const;
    /// @throws what CATAVRegister::typeFromStr throws; the pair stays as it was
    void put_type_str(const wchar_t* name);
    /// @return the value as text
    /// @throws what CATAVRegister::valueToStr throws
    CWStringProxy get_value_str() const;
    /// Replaces the value by a text, encoded as the present type wants it.
    /// @throws what CATAVRegister::valueFromStr throws; the pair stays as it was
    void put_value_str(const wchar_t* text, StringType type);

    /// The pair as text: the type, "=" and the value.
    /// @warning Nothing is quoted or escaped, so the text of a value that holds "=", "," or "+" may
    ///          not be read back as the same pair.
    /// @throws what CATAVRegister::valueToStr throws
    CWStringProxy toString() const;
    /// Replaces the pair by one from a text such as "CN=text".
    /// @warning @p type is ignored: the value is always written as the register tells. The
    ///          constructor with the same arguments does heed it.
    /// @throws what CATAVRegister::makeATAV throws; the pair stays as it was
    void fromString(const wchar_t* pair, StringType type);

    /// A value is written as CAttribute::encode writes one: its first element, without what stands
    /// behind it.
    /// @return the DER
    /// @throws ATL::CAtlException with E_INVALIDARG when the type is no identifier, with
    ///         CRYPT_E_ASN1_INTERNAL when the library knows the attribute and the value does not
    ///         decode as its type, or does not and the first element is cut off, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no
    ///         AttributeTypeAndValue; the pair stays as it was
    void decode(const CBlob& blob);

private:
    friend class CRelativeDistinguishedName;

    void appendTo(std::wstring& text) const;

    CStringProxy type_;
    CBlob value_;
};

/// Compares the identifiers as texts, and the encodings of the values: one text in two string types
/// makes two different values.
BREVANTIS_ASN1_API bool operator==(const CAttributeTypeAndValue& a,
                                   const CAttributeTypeAndValue& b);
BREVANTIS_ASN1_API bool operator!=(const CAttributeTypeAndValue& a,
                                   const CAttributeTypeAndValue& b);

} // namespace Brevantis::ASN1

#endif
