#ifndef BREVANTIS_ASN1_RUNTIME_SRC_STRING_CONTENTS_H
#define BREVANTIS_ASN1_RUNTIME_SRC_STRING_CONTENTS_H

#include <climits>
#include <cstring>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/heap.h>
#include <brevantis/asn1/runtime/measure.h>
#include <brevantis/asn1/runtime/value_types.h>

#include "octet_reader.h"

/// @file
/// The road that the decoders of all string types share: what stands between the header and the
/// contents octets, and how a string of indefinite length ends.

namespace runtime_detail {

/// What is known of a string once its header has been read.
struct StringContents {
    bool constructed;
    bool closesItself; ///< constructed and of indefinite length
    int length;        ///< contents octets, the headers of segments included
    int dataLength;    ///< room that the value can take; for an indefinite length without headers
    const unsigned char* start; ///< first contents octet

    /// Where the value stands as a whole, null for segments.
    const unsigned char* inOnePiece() const noexcept { return constructed ? nullptr : start; }
};

/// Takes a block from the context's heap; null when memory is out or no block can be that large.
inline unsigned char* allocateOctets(ASN1CTXT* ctxt, long long count) noexcept {
    return count > INT_MAX ? nullptr
                           : static_cast<unsigned char*>(
                                 rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(count)));
}

/// Where the octets of a string go: to a block, or, when the string is only measured, past a sink.
class OctetTarget {
public:
    /// A block that `reserve` takes from the heap.
    OctetTarget() noexcept = default;
    /// A block of the caller's.
    explicit OctetTarget(unsigned char* block) noexcept : block_(block) {}
    /// No block; the octets are shown to @p sink, which may be null.
    static OctetTarget measuring(const ASN1OctetSink* sink) noexcept {
        OctetTarget target;
        target.sink_ = sink;
        target.measures_ = true;
        return target;
    }

    /// Makes room for the octets where they are kept.
    /// @return false when memory is out
    bool reserve(ASN1CTXT* ctxt, long long count) noexcept {
        if (!measures_) {
            block_ = allocateOctets(ctxt, count);
        }
        return measures_ || block_ != nullptr;
    }
    /// The same target behind @p count octets.
    OctetTarget behind(unsigned int count) const noexcept {
        OctetTarget rest = *this;
        rest.block_ = block_ != nullptr ? block_ + count : nullptr;
        return rest;
    }
    /// Null where the octets are not kept.
    unsigned char* block() const noexcept { return block_; }

    /// Takes octets from the message and moves behind them.
    /// @return 0; ASN1S_END_OF_BUFFER when fewer are left, or @p count is negative
    int take(ASN1CTXT* ctxt, int count) const noexcept {
        if (!fits(ctxt, count)) {
            return ASN1S_END_OF_BUFFER;
        }
        if (count != 0) {
            ASN1Buffer& buffer = ctxt->buffer;
            const unsigned char* octets = buffer.data + buffer.byteIndex;
            const auto taken = static_cast<unsigned int>(count);
            if (!measures_) {
                std::memcpy(block_, octets, taken);
            } else if (sink_ != nullptr) {
                sink_->take(sink_->state, octets, taken);
            }
            buffer.byteIndex += taken;
        }
        return ASN1S_SUCCESS;
    }

private:
    unsigned char* block_ = nullptr;
    const ASN1OctetSink* sink_ = nullptr;
    bool measures_ = false;
};

/// Reads the header of a string with ASN1TagExplicit, and measures one of indefinite length.
/// @param identifierOctet identifier octet of the type; the form bit does not count
/// @param segmentTag tag of the segments of a constructed form
/// @param length with ASN1TagImplicit the length that the caller read
/// @return 0, or a failure of xd_match1 or xd_consStrIndefLenAndSize, recorded
int openString(ASN1CTXT* ctxt, unsigned char identifierOctet, ASN1TAG segmentTag,
               ASN1TagType tagging, int length, StringContents* contents) noexcept;

/// Takes the end-of-contents octets that a string of indefinite length owns.
/// @return 0; ASN1S_INVALID_LENGTH, recorded, when they are not there
int closeString(ASN1CTXT* ctxt, const StringContents& contents) noexcept;

/// Reads contents octets of definite length: OCTET STRING segments where ASN1F_CONSTRUCTED is set.
/// @param target has room for @p room octets
/// @param count receives the octets read, after a failure too
/// @return 0, or a status of xd_octstr_s, recorded
int readOctets(ASN1CTXT* ctxt, const OctetTarget& target, unsigned int room, int length,
               unsigned int* count) noexcept;

/// Measures a string that has a limit. Its octets end where the reading ends.
/// @param read reads into a target, as xd_octstr_s and xd_bitstr_s do; the capacity and then the
///        count stand at its third argument
/// @param octetsOf octets that a count takes
template <class Read, class OctetsOf>
int measureFixed(ASN1CTXT* ctxt, ASN1Extent* extent, unsigned int capacity, ASN1TagType tagging,
                 int length, Read read, OctetsOf octetsOf) noexcept {
    *extent = {nullptr, 0};
    const bool segmented = tagging == ASN1TagImplicit && (ctxt->flags & ASN1F_CONSTRUCTED) != 0;
    unsigned int count = capacity;
    if (const int status = read(ctxt, OctetTarget::measuring(nullptr), &count, tagging, length)) {
        return status;
    }
    const unsigned char* const end = ctxt->buffer.data + ctxt->buffer.byteIndex;
    *extent = {segmented ? nullptr : end - octetsOf(count), count};
    return ASN1S_SUCCESS;
}

} // namespace runtime_detail

#endif
