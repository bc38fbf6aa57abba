#ifndef BREVANTIS_ASN1_VALUES_EXTENSION_EXTENSION_H
#define BREVANTIS_ASN1_VALUES_EXTENSION_EXTENSION_H

#include <list>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/util/whole_assignment.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/text.h>

/// @file
/// Extensions of certificates, CRLs and their entries (RFC 5280, 4.2 and 5.2).

namespace Brevantis::ASN1 {

/// The identifier of an extension and its value. Neither is looked at before it is encoded.
class BREVANTIS_ASN1_API CExtValue {
public:
    /// No identifier, no value.
    CExtValue() = default;
    /// @param oid dotted text, copied; null stands for the empty text
    explicit CExtValue(const char* oid);
    /// @param value the DER of the extension's value, without the OCTET STRING around it
    CExtValue(const char* oid, const CBlob& value);
    /// The same from parts that are given away.
    explicit CExtValue(CStringProxy oid, CBlob value) noexcept;
    CExtValue(const CExtValue&) = default;
    CExtValue(CExtValue&&) noexcept = default;
    CExtValue& operator=(const CExtValue& other) { return assignWhole(*this, other); }
    CExtValue& operator=(CExtValue&&) noexcept = default;
    ~CExtValue() = default;

    /// @return the identifier as dotted text, valid until it changes or goes
    const char* get_oid() const;
    /// @return the DER of the value
    const CBlob& get_value() const;
    /// The value, to be changed.
    CBlob& value();

private:
    CStringProxy oid_;
    CBlob value_;
};

/// An extension with its critical flag.
class BREVANTIS_ASN1_API CExtension : public CExtValue {
public:
    /// No identifier, no value, not critical.
    CExtension() = default;
    /// @param critical whether a reader that does not know the extension has to refuse the whole
    CExtension(const CExtValue& value, bool critical);
    CExtension(CExtValue&& value, bool critical) noexcept;
    /// @param oid dotted text, copied; null stands for the empty text
    /// @param value the DER of the extension's value, without the OCTET STRING around it
    explicit CExtension(const char* oid, const CBlob& value, bool critical = false);

    /// @return as CExtValue::get_oid
    const char* get_extnID() const;
    /// @return as CExtValue::get_value
    const CBlob& get_extnValue() const;
    /// Whether a reader that does not know the extension has to refuse the whole.
    bool get_critical() const;
    /// @param oid dotted text, copied; null stands for the empty text
    void put_extnID(const char* oid);
    /// @param value its DER, without the OCTET STRING around it
    void put_extnValue(const CBlob& value);
    /// @param critical whether a reader that does not know the extension has to refuse the whole; a
    ///        false one, the DEFAULT, is not encoded
    void put_critical(bool critical);

    /// The value of an extension that the library knows is decoded and written anew as DER, without
    /// what stands behind its first element. Any other value goes out as it is, whole, and so does
    /// an empty one, as an empty OCTET STRING, also where the library knows the extension.
    /// @return the DER
    /// @throws ATL::CAtlException with E_INVALIDARG when the identifier is none, with
    ///         CRYPT_E_ASN1_INTERNAL when the library knows the extension and its value, other than
    ///         an empty one, does not decode, with CRYPT_E_ASN1_MEMORY when memory is out
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no Extension; the
    ///         object stays as it was
    void decode(const CBlob& blob);

private:
    bool critical_ = false;
};

/// Compares the critical flags, the identifiers as texts, and the values.
BREVANTIS_ASN1_API bool operator==(const CExtension& a, const CExtension& b);
BREVANTIS_ASN1_API bool operator!=(const CExtension& a, const CExtension& b);

/// A list of extensions. `insert` keeps one for each identifier; the operations of the list itself,
/// which are there too, and `decode` do not see to that.
class BREVANTIS_ASN1_API CExtensions : public std::list<CExtension> {
public:
    using std::list<CExtension>::list;
    using std::list<CExtension>::insert;
    using std::list<CExtension>::erase;

    /// The first extension with an identifier.
    /// @param oid dotted text, compared as text; null stands for the empty text
    /// @return its position, or the end
    iterator find(const char* oid);
    const_iterator find(const char* oid) const;
    /// Puts an extension in the place of the one with the same identifier, or at the end.
    void insert(const CExtension& extension);
    /// Removes the first extension with an identifier, if there is one.
    void erase(const char* oid);

    /// @return the DER
    /// @throws as CExtension::encode, and with CRYPT_E_ASN1_INTERNAL for an empty list, which
    ///         Extensions must not be
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no Extensions; the
    ///         list stays as it was
    void decode(const CBlob& blob);
};

/// Compares the extensions pairwise in the order of the lists: the same ones in another order are
/// not equal.
BREVANTIS_ASN1_API bool operator==(const CExtensions& a, const CExtensions& b);
BREVANTIS_ASN1_API bool operator!=(const CExtensions& a, const CExtensions& b);

} // namespace Brevantis::ASN1

#endif
