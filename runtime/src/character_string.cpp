#include <brevantis/asn1/runtime/character_string.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <type_traits>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/runtime/octet_string.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "octet_reader.h"
#include "octet_writer.h"
#include "string_contents.h"

using namespace runtime_detail;

namespace {

constexpr ASN1TAG segmentTag = 4; // X.690, 8.23.6: the segments are OCTET STRINGs

template <class Value>
using CharacterOf = std::remove_pointer_t<decltype(Value::data)>;

template <class Value>
int writeWide(ASN1CTXT* ctxt, const Value* value, ASN1TagType tagging, ASN1TAG tag) noexcept {
    constexpr unsigned int width = sizeof(CharacterOf<Value>);
    if (value == nullptr || (value->data == nullptr && value->nchars != 0)) {
        return ASN1S_BAD_VALUE;
    }
    if (value->nchars > INT_MAX / width) {
        return ASN1S_BUFFER_OVERFLOW;
    }
    // A growing buffer is copied at every step; one step for the whole string keeps that linear.
    const int total = static_cast<int>(value->nchars * width);
    if (ctxt->buffer.dynamic != 0 && ctxt->buffer.byteIndex < static_cast<unsigned int>(total)) {
        if (const int status = xe_expandBuffer(ctxt, total)) {
            return status;
        }
    }
    for (unsigned int i = value->nchars; i-- != 0;) {
        unsigned int character = value->data[i];
        unsigned char octets[width];
        for (unsigned int k = width; k-- != 0; character >>= 8) {
            octets[k] = static_cast<unsigned char>(character);
        }
        if (const int written = xe_memcpy(ctxt, octets, width); written < 0) {
            return written;
        }
    }
    return tagging == ASN1TagExplicit ? xe_tag_len(ctxt, tag, total) : total;
}

/// Text of wide characters in the octets of the message.
/// @param octets receives their count
int readWideOctets(ASN1CTXT* ctxt, OctetTarget* target, ASN1TagType tagging, ASN1TAG tag,
                   int length, StringContents* contents, unsigned int* octets) noexcept {
    *octets = 0;
    if (const int status =
            openString(ctxt, rtIdentifierOctet(tag), segmentTag, tagging, length, contents)) {
        return status;
    }
    if (contents->length < 0) {
        return record(ctxt, ASN1S_INVALID_LENGTH);
    }
    if (contents->length == 0 && !contents->closesItself) {
        return ASN1S_SUCCESS;
    }
    if (!target->reserve(ctxt, contents->dataLength)) {
        return record(ctxt, ASN1S_NO_MEMORY);
    }
    return readOctets(ctxt, *target, static_cast<unsigned int>(contents->dataLength),
                      contents->length, octets);
}

template <class Value>
int readWide(ASN1CTXT* ctxt, Value* value, ASN1TagType tagging, ASN1TAG tag, int length) noexcept {
    using Character = CharacterOf<Value>;
    value->nchars = 0;
    value->data = nullptr;
    OctetTarget target;
    StringContents contents;
    unsigned int count = 0;
    if (const int status = readWideOctets(ctxt, &target, tagging, tag, length, &contents, &count)) {
        return status;
    }
    unsigned char* block = target.block();
    if (block == nullptr) {
        return ASN1S_SUCCESS;
    }
    // In place: a character takes the room of the octets that it is made of.
    auto* characters = static_cast<Character*>(static_cast<void*>(block));
    // Kept: octets that fill no character are dropped. Programs depend on it.
    const auto nchars = static_cast<unsigned int>(count / sizeof(Character));
    for (unsigned int i = 0; i < nchars; ++i) {
        unsigned int character = 0;
        for (unsigned int k = 0; k < sizeof(Character); ++k) {
            character = character << 8 | block[i * sizeof(Character) + k];
        }
        characters[i] = static_cast<Character>(character);
    }
    value->nchars = nchars;
    value->data = characters;
    return closeString(ctxt, contents);
}

/// Text of 8-bit characters, with a terminator where it is kept.
int readText(ASN1CTXT* ctxt, OctetTarget* target, ASN1TagType tagging, ASN1TAG tag, int length,
             StringContents* contents, unsigned int* count) noexcept {
    *count = 0;
    if (const int status =
            openString(ctxt, rtIdentifierOctet(tag), segmentTag, tagging, length, contents)) {
        return status;
    }
    const unsigned int room =
        contents->dataLength > 0 ? static_cast<unsigned int>(contents->dataLength) : 0;
    if (!target->reserve(ctxt, room + 1LL)) {
        return record(ctxt, ASN1S_NO_MEMORY);
    }
    const int status =
        room != 0 ? readOctets(ctxt, *target, room, contents->length, count) : ASN1S_SUCCESS;
    if (target->block() != nullptr) {
        target->block()[*count] = 0;
    }
    const int closed = closeString(ctxt, *contents);
    return closed != ASN1S_SUCCESS ? closed : status;
}

} // namespace

int xe_charstr(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging, ASN1TAG tag) noexcept {
    if (text == nullptr) {
        return ASN1S_BAD_VALUE;
    }
    // A length that does not fit its type is too long for any buffer all the same.
    const auto octets = static_cast<unsigned int>(
        std::min<unsigned long long>(std::strlen(text), static_cast<unsigned int>(UINT_MAX)));
    const int count =
        putOctets(ctxt, static_cast<const unsigned char*>(static_cast<const void*>(text)), octets);
    return tagging == ASN1TagExplicit ? xe_tag_len(ctxt, tag, count) : count;
}

int xd_charstr(ASN1CTXT* ctxt, char** text, ASN1TagType tagging, ASN1TAG tag, int length) noexcept {
    if (WholeContents whole; takeWhole(ctxt, rtIdentifierOctet(tag), tagging, length, &whole)) {
        unsigned char* const block = allocateOctets(ctxt, whole.count + 1LL);
        *text = static_cast<char*>(static_cast<void*>(block));
        if (block == nullptr) {
            return refuseWhole(ctxt, whole);
        }
        std::memcpy(block, whole.octets, whole.count);
        block[whole.count] = 0;
        return ASN1S_SUCCESS;
    }
    OctetTarget target;
    StringContents contents;
    unsigned int count = 0;
    const int status = readText(ctxt, &target, tagging, tag, length, &contents, &count);
    *text = static_cast<char*>(static_cast<void*>(target.block()));
    return status;
}

int xd_measureText(ASN1CTXT* ctxt, ASN1Extent* extent, const ASN1OctetSink* sink,
                   ASN1TagType tagging, ASN1TAG tag, int length) noexcept {
    if (WholeContents whole; takeWhole(ctxt, rtIdentifierOctet(tag), tagging, length, &whole)) {
        if (sink != nullptr && whole.count != 0) {
            sink->take(sink->state, whole.octets, whole.count);
        }
        *extent = {whole.octets, whole.count};
        return ASN1S_SUCCESS;
    }
    *extent = {nullptr, 0};
    OctetTarget target = OctetTarget::measuring(sink);
    StringContents contents;
    const int status = readText(ctxt, &target, tagging, tag, length, &contents, &extent->count);
    if (status == ASN1S_SUCCESS) {
        extent->data = contents.inOnePiece();
    }
    return status;
}

int xd_measureWideText(ASN1CTXT* ctxt, ASN1Extent* extent, unsigned int width, ASN1TagType tagging,
                       ASN1TAG tag, int length) noexcept {
    *extent = {nullptr, 0};
    OctetTarget target = OctetTarget::measuring(nullptr);
    StringContents contents;
    unsigned int octets = 0;
    if (const int status =
            readWideOctets(ctxt, &target, tagging, tag, length, &contents, &octets)) {
        return status;
    }
    extent->data = contents.inOnePiece();
    extent->count = octets / width;
    return closeString(ctxt, contents);
}

int xe_16BitCharStr(ASN1CTXT* ctxt, Asn116BitCharString* value, ASN1TagType tagging,
                    ASN1TAG tag) noexcept {
    return writeWide(ctxt, value, tagging, tag);
}

int xe_32BitCharStr(ASN1CTXT* ctxt, Asn132BitCharString* value, ASN1TagType tagging,
                    ASN1TAG tag) noexcept {
    return writeWide(ctxt, value, tagging, tag);
}

int xd_16BitCharStr(ASN1CTXT* ctxt, Asn116BitCharString* value, ASN1TagType tagging, ASN1TAG tag,
                    int length) noexcept {
    return readWide(ctxt, value, tagging, tag, length);
}

int xd_32BitCharStr(ASN1CTXT* ctxt, Asn132BitCharString* value, ASN1TagType tagging, ASN1TAG tag,
                    int length) noexcept {
    return readWide(ctxt, value, tagging, tag, length);
}
