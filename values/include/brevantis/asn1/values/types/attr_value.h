#ifndef BREVANTIS_ASN1_VALUES_TYPES_ATTR_VALUE_H
#define BREVANTIS_ASN1_VALUES_TYPES_ATTR_VALUE_H

#include <list>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/util/whole_assignment.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/text.h>

/// @file
/// Values of attributes (X.501, 8.2).

namespace Brevantis::ASN1 {

/// One value of one attribute: the identifier of the attribute's type and the encoded value.
/// Neither is looked at before it is encoded.
///
/// Classes for single types derive from it. A copy as a CAttrValue, which is what CAttribute::add
/// takes, has their identifier and their encoded value.
class BREVANTIS_ASN1_API CAttrValue {
public:
    /// No identifier, no value.
    CAttrValue() = default;
    /// @param oid dotted text, copied; null stands for the empty text
    explicit CAttrValue(const char* oid) : oid_(oid) {}
    /// @param value the DER of the value; see CAttribute::add for what is written of it
    CAttrValue(const char* oid, const CBlob& value) : oid_(oid), value_(value) {}
    CAttrValue(const CAttrValue&) = default;
    CAttrValue(CAttrValue&&) noexcept = default;
    CAttrValue& operator=(const CAttrValue& other) { return assignWhole(*this, other); }
    CAttrValue& operator=(CAttrValue&&) noexcept = default;
    ~CAttrValue() = default;

    /// @return the identifier as dotted text, valid until it changes or goes
    const char* get_oid() const { return oid_.c_str(); }
    /// @return the DER of the value
    const CBlob& get_value() const { return value_; }
    /// The value, to be changed.
    CBlob& value() { return value_; }

private:
    CStringProxy oid_;
    CBlob value_;
};

/// Compares the identifiers as texts, and the encoded values.
BREVANTIS_ASN1_API bool operator==(const CAttrValue& a, const CAttrValue& b);
BREVANTIS_ASN1_API bool operator!=(const CAttrValue& a, const CAttrValue& b);

/// A list of values.
class BREVANTIS_ASN1_API CAttrValueList : public std::list<CAttrValue> {
public:
    using std::list<CAttrValue>::list;
};

/// @warning These two never return. Compare the encodings of the attributes that hold the lists.
[[deprecated("compare the encode() results instead")]] BREVANTIS_ASN1_API bool
operator==(const CAttrValueList& a, const CAttrValueList& b);
[[deprecated("compare the encode() results instead")]] BREVANTIS_ASN1_API bool
operator!=(const CAttrValueList& a, const CAttrValueList& b);

} // namespace Brevantis::ASN1

#endif
