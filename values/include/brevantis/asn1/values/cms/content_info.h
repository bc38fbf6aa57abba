#ifndef BREVANTIS_ASN1_VALUES_CMS_CONTENT_INFO_H
#define BREVANTIS_ASN1_VALUES_CMS_CONTENT_INFO_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/util/whole_assignment.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/text.h>

/// @file
/// The outermost structure of a cryptographic message (RFC 5652, 3).

namespace Brevantis::ASN1 {

/// ContentInfo of RFC 5652, 3: the identifier of a content type and a content of that type.
class BREVANTIS_ASN1_API CContentInfo {
public:
    /// Empty type and empty content.
    CContentInfo() = default;
    /// @param oid dotted text, looked at when the value is encoded; null stands for the empty text
    /// @param content the encoded content, without the tag [0] around it
    CContentInfo(const char* oid, const CBlob& content);

    CContentInfo(const CContentInfo&) = default;
    CContentInfo(CContentInfo&&) noexcept = default;
    CContentInfo& operator=(const CContentInfo& other) { return assignWhole(*this, other); }
    CContentInfo& operator=(CContentInfo&&) noexcept = default;
    ~CContentInfo() = default;

    /// Dotted text, valid until the type changes or the object goes.
    const char* get_contentType() const { return contentType_.c_str(); }
    /// The encoded content, without the tag [0] around it; valid likewise.
    const CBlob& get_content() const { return content_; }
    /// @param oid dotted text, looked at when the value is encoded; null stands for the empty text
    void put_contentType(const char* oid);
    /// @param content its encoding, of which `encode` writes the first element
    void put_content(const CBlob& content) { content_ = content; }

    /// A content of a type that the library knows has to decode, and is written anew as DER; of any
    /// other the first element goes out as it is. What stands behind the first element is dropped
    /// in both cases; isOneElement tells whether anything does. An empty content of a type that is
    /// not known leaves nothing within the tag [0].
    /// @return the complete ContentInfo
    /// @throws ATL::CAtlException with E_INVALIDARG for a type that is no object identifier, with
    ///         CRYPT_E_ASN1_INTERNAL for a known type's content that does not decode and for
    ///         another's whose first element is cut off, with CRYPT_E_ASN1_MEMORY when memory is
    ///         out
    CBlob encode() const;
    /// Reads a ContentInfo, and leaves the object as it was on failure.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob does not decode, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out
    void decode(const CBlob& blob);

private:
    CStringProxy contentType_;
    CBlob content_;
};

} // namespace Brevantis::ASN1

#endif
