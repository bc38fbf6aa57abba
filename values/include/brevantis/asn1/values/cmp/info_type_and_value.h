#ifndef BREVANTIS_ASN1_VALUES_CMP_INFO_TYPE_AND_VALUE_H
#define BREVANTIS_ASN1_VALUES_CMP_INFO_TYPE_AND_VALUE_H

#include <list>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/util/whole_assignment.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/text.h>

/// @file
/// Pieces of information in messages of certificate management (RFC 4210, 5.3.19).

namespace Brevantis::ASN1 {

/// InfoTypeAndValue of RFC 4210, 5.3.19.
class BREVANTIS_ASN1_API CInfoTypeAndValue {
public:
    /// Empty type, no value.
    CInfoTypeAndValue() = default;
    /// No value.
    /// @param oid dotted text, looked at when the value is encoded; null stands for the empty text
    CInfoTypeAndValue(const char* oid);
    /// @param value the encoded value; empty for none
    CInfoTypeAndValue(const char* oid, const CBlob& value);
    CInfoTypeAndValue(const CInfoTypeAndValue&) = default;
    CInfoTypeAndValue(CInfoTypeAndValue&&) noexcept = default;
    CInfoTypeAndValue& operator=(const CInfoTypeAndValue& other) {
        return assignWhole(*this, other);
    }
    CInfoTypeAndValue& operator=(CInfoTypeAndValue&&) noexcept = default;
    ~CInfoTypeAndValue() = default;

    /// Dotted text, valid until the object changes or goes.
    const char* get_infoType() const { return infoType_.c_str(); }
    /// The encoded value, empty for none; valid likewise.
    const CBlob& get_infoValue() const { return infoValue_; }

    // Equal in the text of the type and in the octets of the value.
    friend bool operator==(const CInfoTypeAndValue& a, const CInfoTypeAndValue& b) {
        return a.infoType_ == b.infoType_ && a.infoValue_ == b.infoValue_;
    }
    friend bool operator!=(const CInfoTypeAndValue& a, const CInfoTypeAndValue& b) {
        return !(a == b);
    }

private:
    CStringProxy infoType_;
    CBlob infoValue_;
};

/// A list of information items. `insert` keeps their types unique; the operations of std::list do
/// not.
class BREVANTIS_ASN1_API CInfoTypeAndValueList : public std::list<CInfoTypeAndValue> {
public:
    using std::list<CInfoTypeAndValue>::list;
    using std::list<CInfoTypeAndValue>::insert;

    /// The first item of a type, compared as text.
    /// @return `end()` when there is none
    iterator find(const char* oid);
    const_iterator find(const char* oid) const;
    /// Puts @p item in the place of the one of its type, or at the end when there is none.
    void insert(const CInfoTypeAndValue& item);
    /// Removes the item that `find` gives, if any.
    void remove(const char* oid);
};

} // namespace Brevantis::ASN1

#endif
