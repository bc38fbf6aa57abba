#include <brevantis/asn1/runtime/octet_string.h>

#include <algorithm>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "octet_reader.h"
#include "octet_writer.h"
#include "string_contents.h"

namespace {

using namespace runtime_detail;

constexpr unsigned char octetStringTag = 4;

/// A value of at most *size octets, whose form is primitive where it has a header of its own.
int readFixed(ASN1CTXT* ctxt, const OctetTarget& target, unsigned int* size, ASN1TagType tagging,
              int length) noexcept {
    if (tagging == ASN1TagExplicit) {
        int ownLength = 0;
        const int status = readExplicitHeader(ctxt, octetStringTag, &ownLength);
        if (status == ASN1S_TAG_NOT_FOUND) {
            return status;
        }
        // A length that cannot be read is recorded; the reading goes on with the caller's.
        if (status == ASN1S_SUCCESS) {
            length = ownLength;
        }
    }
    if (length < 0) { // X.690, 8.1.3.2: no indefinite length on a primitive form
        return record(ctxt, ASN1S_INVALID_LENGTH);
    }
    if (static_cast<unsigned int>(length) > *size) {
        return record(ctxt, ASN1S_STRING_OVERFLOW);
    }
    unsigned int count = 0;
    if (const int status = readOctets(ctxt, target, *size, length, &count)) {
        return status;
    }
    *size = count;
    return ASN1S_SUCCESS;
}

/// The header of a value of any size.
int openOctets(ASN1CTXT* ctxt, ASN1TagType tagging, int length, StringContents* contents) noexcept {
    if (const int status =
            openString(ctxt, octetStringTag, octetStringTag, tagging, length, contents)) {
        return status;
    }
    return contents->length < 0 ? record(ctxt, ASN1S_INVALID_LENGTH) : ASN1S_SUCCESS;
}

} // namespace

namespace runtime_detail {

int openString(ASN1CTXT* ctxt, unsigned char identifierOctet, ASN1TAG segmentTag,
               ASN1TagType tagging, int length, StringContents* contents) noexcept {
    if (tagging == ASN1TagExplicit) {
        if (const int status = xd_match1(ctxt, identifierOctet, &length)) {
            record(ctxt, status);
            return status;
        }
    }
    // The flag speaks of the tag read last, and measuring the segments reads further ones.
    contents->constructed = (ctxt->flags & ASN1F_CONSTRUCTED) != 0;
    contents->closesItself = contents->constructed && length == ASN1IndefiniteLength;
    contents->length = length;
    contents->dataLength = length;
    contents->start = ctxt->buffer.data + ctxt->buffer.byteIndex;
    if (length == ASN1IndefiniteLength) {
        // X.690, 8.1.3.6; producers that stream (CMS content, mostly) write this form.
        if (const int status = xd_consStrIndefLenAndSize(ctxt, segmentTag, &contents->dataLength,
                                                         &contents->length)) {
            record(ctxt, status);
            return status;
        }
    }
    return ASN1S_SUCCESS;
}

int closeString(ASN1CTXT* ctxt, const StringContents& contents) noexcept {
    if (!contents.closesItself) {
        return ASN1S_SUCCESS;
    }
    if (!rtEndOfContentsAhead(ctxt)) { // X.690, 8.1.5
        return record(ctxt, ASN1S_INVALID_LENGTH);
    }
    ctxt->buffer.byteIndex += 2;
    return ASN1S_SUCCESS;
}

int readOctets(ASN1CTXT* ctxt, const OctetTarget& target, unsigned int room, int length,
               unsigned int* count) noexcept {
    *count = 0;
    if ((ctxt->flags & ASN1F_CONSTRUCTED) == 0) {
        if (static_cast<unsigned int>(length) > room) {
            return record(ctxt, ASN1S_STRING_OVERFLOW);
        }
        if (length == 0) {
            return ASN1S_SUCCESS;
        }
        if (const int status = target.take(ctxt, length)) {
            return record(ctxt, status);
        }
        *count = static_cast<unsigned int>(length);
        return ASN1S_SUCCESS;
    }
    // X.690, 8.7.3: the segments are OCTET STRINGs. The standard lets them be constructed in turn;
    // here each has to be primitive, which also bounds the recursion.
    const unsigned int whole = static_cast<unsigned int>(length);
    const unsigned int start = ctxt->buffer.byteIndex;
    while (ctxt->buffer.byteIndex - start < whole && remaining(ctxt) != 0) {
        unsigned int segment = std::min(whole, room - *count);
        if (const int status = readFixed(ctxt, target.behind(*count), &segment, ASN1TagExplicit,
                                         static_cast<int>(segment))) {
            return status;
        }
        *count += segment;
    }
    return ctxt->buffer.byteIndex - start == whole ? ASN1S_SUCCESS
                                                   : record(ctxt, ASN1S_INVALID_LENGTH);
}

} // namespace runtime_detail

int xe_octstr(ASN1CTXT* ctxt, const unsigned char* data, unsigned int numocts,
              ASN1TagType tagging) noexcept {
    const int count = data != nullptr ? putOctets(ctxt, data, numocts) : 0;
    return tagging == ASN1TagExplicit ? xe_tag_len(ctxt, octetStringTag, count) : count;
}

int xd_octstr(ASN1CTXT* ctxt, const unsigned char** data, unsigned int* numocts,
              ASN1TagType tagging, int length) noexcept {
    *data = nullptr;
    *numocts = 0;
    if (WholeContents whole; takeWhole(ctxt, octetStringTag, tagging, length, &whole)) {
        if ((ctxt->flags & ASN1F_NO_COPY) == 0) {
            unsigned char* const block = allocateOctets(ctxt, whole.count);
            if (block == nullptr) {
                return refuseWhole(ctxt, whole);
            }
            std::memcpy(block, whole.octets, whole.count);
            whole.octets = block;
        }
        *data = whole.octets;
        *numocts = whole.count;
        return ASN1S_SUCCESS;
    }
    StringContents contents;
    if (const int status = openOctets(ctxt, tagging, length, &contents)) {
        return status;
    }
    if (!contents.constructed && (ctxt->flags & ASN1F_NO_COPY) != 0) {
        const unsigned char* octets = ctxt->buffer.data + ctxt->buffer.byteIndex;
        if (const int status = skipContents(ctxt, contents.length)) {
            return record(ctxt, status);
        }
        *data = octets;
        *numocts = static_cast<unsigned int>(contents.length);
    } else {
        OctetTarget target;
        if (!target.reserve(ctxt, contents.dataLength)) {
            return record(ctxt, ASN1S_NO_MEMORY);
        }
        *data = target.block();
        unsigned int count = 0;
        if (const int status =
                readOctets(ctxt, target, static_cast<unsigned int>(contents.dataLength),
                           contents.length, &count)) {
            return status;
        }
        *numocts = count;
    }
    return closeString(ctxt, contents);
}

int xd_octstr_s(ASN1CTXT* ctxt, unsigned char* buffer, unsigned int* size, ASN1TagType tagging,
                int length) noexcept {
    return readFixed(ctxt, OctetTarget(buffer), size, tagging, length);
}

int xd_measureOctets(ASN1CTXT* ctxt, ASN1Extent* extent, const ASN1OctetSink* sink,
                     ASN1TagType tagging, int length) noexcept {
    if (WholeContents whole; takeWhole(ctxt, octetStringTag, tagging, length, &whole)) {
        if (sink != nullptr && whole.count != 0) {
            sink->take(sink->state, whole.octets, whole.count);
        }
        *extent = {whole.octets, whole.count};
        return ASN1S_SUCCESS;
    }
    *extent = {nullptr, 0};
    StringContents contents;
    if (const int status = openOctets(ctxt, tagging, length, &contents)) {
        return status;
    }
    if (const int status = readOctets(ctxt, OctetTarget::measuring(sink),
                                      static_cast<unsigned int>(contents.dataLength),
                                      contents.length, &extent->count)) {
        return status;
    }
    extent->data = contents.inOnePiece();
    return closeString(ctxt, contents);
}

int xd_measureFixedOctets(ASN1CTXT* ctxt, ASN1Extent* extent, unsigned int capacity,
                          ASN1TagType tagging, int length) noexcept {
    return measureFixed(ctxt, extent, capacity, tagging, length, readFixed,
                        [](unsigned int count) { return count; });
}
