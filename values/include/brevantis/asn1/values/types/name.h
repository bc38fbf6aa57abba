#ifndef BREVANTIS_ASN1_VALUES_TYPES_NAME_H
#define BREVANTIS_ASN1_VALUES_TYPES_NAME_H

#include <list>
#include <string>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/attribute_type_and_value.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/text.h>

/// @file
/// Distinguished names (X.501, 9; RFC 5280, 4.1.2.4) and their text.
///
/// The text of a name is its relative names separated by ",", in the order of the encoding, from
/// the root of the directory down: "C=RU,O=Company,CN=Somebody". The text of a relative name is its
/// pairs separated by "+".
/// @warning The separators have no escape: a value that holds one prints as it stands and cannot be
///          read back. Blanks count, and one behind a separator belongs to the type that follows.
///          This is not the form of RFC 4514.

namespace Brevantis::ASN1 {

/// Pairs in the order in which they were given or decoded.
using CAttributeTypeAndValueSet = std::list<CAttributeTypeAndValue>;

/// A relative distinguished name: one pair, rarely more. Its order is kept; the encoder sorts the
/// pairs on the wire (X.690, 11.6).
class BREVANTIS_ASN1_API CRelativeDistinguishedName : public CAttributeTypeAndValueSet {
public:
    using CAttributeTypeAndValueSet::list;
    /// No pairs.
    CRelativeDistinguishedName() = default;
    /// @throws as `fromString`
    explicit CRelativeDistinguishedName(const wchar_t* text);

    /// @return the text, empty for no pairs
    /// @throws what CATAVRegister::valueToStr throws
    CWStringProxy toString() const;
    /// Appends the pairs of a text.
    /// @warning What the object holds already stays, also when a pair fails: those before it are
    ///          then appended.
    /// @param text terminated; null stands for the empty text
    /// @throws ATL::CAtlException with E_INVALIDARG for a piece without "=", which the empty text
    ///         is too; what CATAVRegister::makeATAV throws, std::out_of_range for a type that is
    ///         not in the register and no value ("2.3=") among it
    void fromString(const wchar_t* text);

    /// @return the DER
    /// @throws as CAttributeTypeAndValue::encode, and with CRYPT_E_ASN1_INTERNAL for no pairs
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no
    ///         RelativeDistinguishedName; the object stays as it was
    void decode(const CBlob& blob);

private:
    friend class CName;

    void appendTo(std::wstring& text) const;
};

/// Relative names in the order of the encoding.
using CRDNSequence = std::list<CRelativeDistinguishedName>;

/// A distinguished name: the Name of certificates, CRLs and messages.
class BREVANTIS_ASN1_API CName : public CRDNSequence {
public:
    using CRDNSequence::list;
    /// No relative names.
    CName() = default;
    /// @throws as `fromString`
    explicit CName(const wchar_t* text);

    /// @return the text, empty for no relative names
    /// @throws what CATAVRegister::valueToStr throws
    CWStringProxy toString() const;
    /// Appends the relative names of a text.
    /// @warning What the object holds already stays, also when a relative name fails: those before
    ///          it are then appended.
    /// @param text terminated; null stands for the empty text
    /// @throws as CRelativeDistinguishedName::fromString
    void fromString(const wchar_t* text);

    /// @return the DER
    /// @throws as CRelativeDistinguishedName::encode; no relative names are fine
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no Name; the object
    ///         stays as it was
    void decode(const CBlob& blob);
};

/// As the members of the same name.
/// @param text points to `wchar_t` units, whatever its type says
BREVANTIS_ASN1_API void fromString(CRelativeDistinguishedName& rdn, const unsigned short* text);
BREVANTIS_ASN1_API void fromString(CName& name, const unsigned short* text);

// clang-format off
/// @warning These comparisons never return: they block the calling thread for ever, and whatever
///          compares lists of relative names with "==" does so too. Compare the encodings.
[[deprecated("compare the encode() results instead")]]
BREVANTIS_ASN1_API bool operator==(const CRelativeDistinguishedName& a,
                                   const CRelativeDistinguishedName& b);
[[deprecated("compare the encode() results instead")]]
BREVANTIS_ASN1_API bool operator!=(const CRelativeDistinguishedName& a,
                                   const CRelativeDistinguishedName& b);
[[deprecated("compare the encode() results instead")]]
BREVANTIS_ASN1_API bool operator==(const CAttributeTypeAndValueSet& a,
                                   const CAttributeTypeAndValueSet& b);
[[deprecated("compare the encode() results instead")]]
BREVANTIS_ASN1_API bool operator!=(const CAttributeTypeAndValueSet& a,
                                   const CAttributeTypeAndValueSet& b);
// clang-format on

/// Names have no comparison. That of their list, which would take its place, never returns.
bool operator==(const CRDNSequence& a, const CRDNSequence& b) = delete;
bool operator!=(const CRDNSequence& a, const CRDNSequence& b) = delete;
bool operator==(const CName& a, const CName& b) = delete;
bool operator!=(const CName& a, const CName& b) = delete;

} // namespace Brevantis::ASN1

#endif
