#ifndef BREVANTIS_ASN1_VALUES_ATTRIBUTE_ATTRIBUTE_H
#define BREVANTIS_ASN1_VALUES_ATTRIBUTE_ATTRIBUTE_H

#include <cstddef>
#include <list>
#include <string>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/attr_value.h>
#include <brevantis/asn1/values/util/owned_copy.h>
#include <brevantis/support/blob.h>

/// @file
/// Attributes (X.501, 8.2), and the sets of them that signatures cover (RFC 5652, 5.3).

namespace Brevantis::ASN1 {

/// An attribute: the identifier of its type and a set of values. One that was moved from is as new.
class BREVANTIS_ASN1_API CAttribute {
public:
    using iterator = CAttrValueList::iterator;             ///< of a value, for `erase`
    using const_iterator = CAttrValueList::const_iterator; ///< of a value, to read it

    /// An empty identifier and no values.
    CAttribute();
    /// No values.
    /// @param oid dotted text, copied; null stands for the empty text
    explicit CAttribute(const char* oid);
    /// An attribute of the type that a value tells, with a copy of that value.
    explicit CAttribute(const CAttrValue& value);

    /// @return the identifier as dotted text, valid until it changes or goes
    const char* get_oid() const;

    /// The values, in the order in which they were added or decoded. Positions stay valid until
    /// their value is erased or the attribute is decoded anew, assigned to or goes.
    iterator begin();
    iterator end();
    const_iterator begin() const;
    const_iterator end() const;
    /// The count of values, found by counting.
    std::size_t size() const;

    /// Appends a copy of a value.
    /// @warning The identifier in @p value is kept but not compared with the attribute's, and
    ///          `encode` does not write it. Of the octets it writes the first element, without what
    ///          stands behind it; isOneElement tells whether anything does.
    void add(const CAttrValue& value);
    /// Appends a value of the attribute's own type.
    /// @param value its DER, of which `encode` writes the first element, as told above
    void add(const CBlob& value);
    /// Removes a value.
    /// @param position of this attribute, not its end
    void erase(iterator position);

    /// The values of an attribute that the library knows are decoded and written anew as DER. Of
    /// any other value the first element goes out as it is, with nothing for a value of no octets.
    /// @return the DER
    /// @throws ATL::CAtlException with E_INVALIDARG when the identifier is none, with
    ///         CRYPT_E_ASN1_INTERNAL when there are no values, when the library knows the attribute
    ///         and a value does not decode, or when it does not and the first element of a value is
    ///         cut off, with CRYPT_E_ASN1_MEMORY when memory is out
    CBlob encode() const;
    /// Each value gets the identifier of the attribute.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no Attribute, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out; the object stays as it was
    void decode(const CBlob& blob);

private:
    struct Content {
        CAttrValueList values;
        std::string oid;
    };

    OwnedCopy<Content> content_;
};

/// Whether the identifiers differ as texts.
/// @warning Where they do not, these two never return.
[[deprecated("compare the encode() results instead")]] BREVANTIS_ASN1_API bool
operator==(const CAttribute& a, const CAttribute& b);
[[deprecated("compare the encode() results instead")]] BREVANTIS_ASN1_API bool
operator!=(const CAttribute& a, const CAttribute& b);

/// The attributes that a signature covers, encoded as SignedAttributes. The list keeps its order,
/// the encoding is in the order of DER.
class BREVANTIS_ASN1_API CAttributes : public std::list<CAttribute> {
public:
    using std::list<CAttribute>::list;
    using std::list<CAttribute>::erase;

    /// The first attribute with an identifier.
    /// @param oid dotted text, compared as text; null stands for the empty text
    /// @return its position, or the end
    iterator find(const char* oid);
    const_iterator find(const char* oid) const;
    /// Removes the first attribute with an identifier, if there is one.
    void erase(const char* oid);

    /// @return the DER
    /// @throws as CAttribute::encode, and with CRYPT_E_ASN1_INTERNAL for an empty list, which
    ///         SignedAttributes must not be
    CBlob encode() const;
    /// @param blob with the tag of a SET, not the [0] that it has inside a SignerInfo
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no SignedAttributes;
    ///         the list stays as it was. std::bad_alloc may leave the first of the new attributes
    void decode(const CBlob& blob);
};

/// Sets of attributes have no comparison. That of their list, which would take its place, does not
/// return as soon as two identifiers agree. Compare the encodings.
bool operator==(const CAttributes& a, const CAttributes& b) = delete;
bool operator!=(const CAttributes& a, const CAttributes& b) = delete;

} // namespace Brevantis::ASN1

#endif
