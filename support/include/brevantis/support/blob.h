#ifndef BREVANTIS_SUPPORT_BLOB_H
#define BREVANTIS_SUPPORT_BLOB_H

#include <list>
#include <vector>

#include <brevantis/asn1/export.h>
#include <brevantis/support/text.h>

/// @file
/// Owned octets.

namespace Brevantis {

/// A sequence of octets that owns its memory. All sizes are in octets. Every operation that fails
/// leaves the blob as it was; apart from what is told at each, it fails with std::bad_alloc when
/// memory is out and with std::length_error for a size that no memory can have.
class BREVANTIS_ASN1_API CBlob {
public:
    /// No octets.
    CBlob() noexcept = default;

    /// @param size octets, all 0
    explicit CBlob(unsigned long size);

    /// Copies octets.
    /// @param data the octets; may be null when @p size is 0
    /// @throw ATL::CAtlException E_INVALIDARG for null @p data and a @p size above 0
    CBlob(const unsigned char* data, unsigned long size);

    /// Size in octets.
    unsigned long cbData() const noexcept { return octets_.size(); }

    /// The octets, valid until the blob changes its size or goes; may be null when there are none.
    const unsigned char* pbData() const noexcept { return octets_.data(); }
    unsigned char* pbData() noexcept { return octets_.data(); }

    /// Cuts octets off the end, or appends octets of value 0.
    void resize_to(unsigned long size);

    /// Takes a copy of octets in place of its own, of which they may be a part. Otherwise as the
    /// constructor.
    void assign(const unsigned char* data, unsigned long size);

    /// Leaves no octets.
    void clear() noexcept { octets_.clear(); }

    void swap(CBlob& other) noexcept { octets_.swap(other.octets_); }

    /// Takes octets from hexadecimal digits, two for each, in either case.
    /// @param text terminated. Blanks (space, tab, line and page breaks) are ignored everywhere,
    ///        between the digits of a pair too; no digits at all give no octets
    /// @throw ATL::CAtlException E_INVALIDARG for an odd count of digits, any other character, or
    ///        null
    void readFromHexString(const char* text);

    /// Two lower-case hexadecimal digits for each octet, with nothing between them.
    /// @param flags has no meaning yet: pass 0
    CStringProxy writeToHexString(unsigned long flags) const;

    friend void swap(CBlob& a, CBlob& b) noexcept { a.swap(b); }

    // Blobs are ordered as dictionaries are: octet by octet, and a beginning of another comes
    // first.
    friend bool operator==(const CBlob& a, const CBlob& b) noexcept {
        return a.octets_ == b.octets_;
    }
    friend bool operator!=(const CBlob& a, const CBlob& b) noexcept { return !(a == b); }
    friend bool operator<(const CBlob& a, const CBlob& b) noexcept { return a.octets_ < b.octets_; }

private:
    std::vector<unsigned char> octets_;
};

/// A list of blobs.
class BREVANTIS_ASN1_API CBlobList : public std::list<CBlob> {
public:
    using std::list<CBlob>::list;
};

} // namespace Brevantis

#endif
