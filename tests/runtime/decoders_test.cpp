#include <cstring>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/big_integer.h>
#include <brevantis/asn1/runtime/bit_string.h>
#include <brevantis/asn1/runtime/character_string.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>
#include <brevantis/asn1/runtime/octet_string.h>
#include <brevantis/asn1/runtime/open_type.h>

#include "support/coding.h"
#include "support/counting_allocator.h"
#include "support/mutation.h"

// What every decoder of more than a number holds to, whatever the message is and wherever memory
// ends.

namespace {

using namespace tests;

/// Decodes and reads all that comes of it; @p size is the size of the message in octets.
using Decode = int (*)(ASN1CTXT* ctxt, std::size_t size);

int octetString(ASN1CTXT* ctxt, std::size_t size) {
    const unsigned char* data = nullptr;
    unsigned count = 0;
    const int status = xd_octstr(ctxt, &data, &count, ASN1TagExplicit, 0);
    EXPECT_LE(count, size);
    toHex(data, count);
    return status;
}

int octetArray(ASN1CTXT* ctxt, std::size_t /*size*/) {
    rtCtxtSetFlag(ctxt, ASN1F_CONSTRUCTED);
    const auto array = std::make_unique<unsigned char[]>(4);
    unsigned count = 4;
    const int status = xd_octstr_s(ctxt, array.get(), &count, ASN1TagImplicit, 4);
    EXPECT_LE(count, 4u);
    return status;
}

int bitString(ASN1CTXT* ctxt, std::size_t size) {
    const unsigned char* data = nullptr;
    unsigned numbits = 0;
    const int status = xd_bitstr(ctxt, &data, &numbits, ASN1TagExplicit, 0);
    EXPECT_LE(numbits, size * 8);
    toHex(data, (numbits + 7) / 8);
    return status;
}

template <int Length>
int bitArray(ASN1CTXT* ctxt, std::size_t /*size*/) {
    rtCtxtSetFlag(ctxt, ASN1F_CONSTRUCTED);
    const auto array = std::make_unique<unsigned char[]>(3);
    unsigned numbits = 24;
    const int status = xd_bitstr_s(ctxt, array.get(), &numbits, ASN1TagImplicit, Length);
    EXPECT_LE(numbits, 24u);
    return status;
}

int text(ASN1CTXT* ctxt, std::size_t size) {
    char* decoded = nullptr;
    const int status = xd_charstr(ctxt, &decoded, ASN1TagExplicit, 30, 0);
    EXPECT_TRUE(status != 0 || decoded != nullptr);
    EXPECT_LE(decoded != nullptr ? std::strlen(decoded) : 0, size);
    return status;
}

int wideText(ASN1CTXT* ctxt, std::size_t size) {
    Asn116BitCharString value{0, nullptr};
    const int status = xd_16BitCharStr(ctxt, &value, ASN1TagExplicit, 30, 0);
    EXPECT_LE(value.nchars, size / 2);
    return status;
}

int objectIdentifier(ASN1CTXT* ctxt, std::size_t size) {
    ASN1OBJID value = {};
    const int status = xd_objid(ctxt, &value, ASN1TagExplicit, 0);
    EXPECT_LE(value.numids, size + 1);
    return status;
}

int bigInteger(ASN1CTXT* ctxt, std::size_t size) {
    const char* decoded = nullptr;
    const int status = xd_bigint(ctxt, &decoded, ASN1TagExplicit, 0);
    EXPECT_LE(status == 0 ? std::strlen(decoded) : 0, 3 + 2 * size);
    return status;
}

int openTypes(ASN1CTXT* ctxt, std::size_t size) {
    ASN1ElementScope scope{ctxt->buffer.data, static_cast<int>(size)};
    Asn1RTDList list = {};
    const int status = xd_OpenTypeExt(ctxt, &scope, ASN1TagNone, &list);
    // The same octets as a stored value that is to be written.
    Writer writer;
    const int count = xe_OpenType(writer, ctxt->buffer.data, static_cast<unsigned>(size));
    EXPECT_LE(count, static_cast<int>(size));
    if (count > 0) {
        EXPECT_EQ(toHex(ctxt->buffer.data, static_cast<std::size_t>(count)), writer.hex());
    }
    for (const Asn1RTDListNode* node = list.head; node != nullptr; node = node->next) {
        const auto* element = static_cast<const ASN1OpenType*>(node->data);
        toHex(element->data, element->numocts);
    }
    rtMemFreeOpenSeqExt(ctxt, &list);
    return status;
}

const struct {
    Decode decode;
    std::vector<const char*> messages;
} rows[] = {
    {octetString,
     {"04 03 01 02 03", "24 80 04 01 41 04 01 42 00 00", "24 08 04 02 41 43 04 02 42 44"}},
    {octetArray, {"04 03 01 02 03", "04 02 41 43 04 02 42 44"}},
    {bitString,
     {"03 03 04 AB CD", "23 80 03 02 00 AB 03 02 04 C0 00 00", "23 08 03 02 00 AB 03 02 04 C0",
      "23 06 23 04 03 02 00 AB"}},
    {bitArray<4>, {"03 03 04 AB CD", "03 02 00 AB 03 02 04 C0 00 00"}},
    {bitArray<ASN1IndefiniteLength>, {"03 03 04 AB CD", "03 02 00 AB 03 02 04 C0 00 00"}},
    {text, {"1E 04 00 41 20 AC", "3E 80 04 01 41 04 03 41 20 AC 00 00"}},
    {wideText, {"1E 04 00 41 20 AC", "3E 80 04 01 00 04 03 41 20 AC 00 00"}},
    {objectIdentifier, {"06 06 2A 86 48 86 F7 0D"}},
    {bigInteger, {"02 03 00 80 01", "02 81 02 FF 7F"}},
    {openTypes, {"30 80 24 80 04 01 41 00 00 00 00", "BF 81 01 81 01 AA 05 00 02 01 07"}},
};

TEST(Decoders, StayInsideAnyMessage) {
    for (const auto& [decode, messages] : rows) {
        for (const char* message : messages) {
            forEachMutation(fromHex(message), [decode = decode](const Octets& octets) {
                for (const int flags : {0, +ASN1F_NO_COPY, +ASN1F_LENGTH_UNCHECKED,
                                        ASN1F_INDEF_MESSAGE | ASN1F_LENGTH_UNCHECKED}) {
                    SCOPED_TRACE(toHex(octets));
                    Reader reader(octets);
                    rtCtxtSetFlag(reader, flags);
                    EXPECT_LE(decode(reader, octets.size()), 0);
                    EXPECT_LE(reader.position(), octets.size());
                }
            });
        }
    }
}

TEST(Decoders, ReportThatMemoryIsOut) {
    const CountingAllocator allocator;
    const struct {
        Decode decode;
        const char* message;
        int recorded;
    } failures[] = {
        {octetString, "04 01 41", -12},  {octetString, "24 80 04 01 41 00 00", -12},
        {bitString, "03 02 00 41", -12}, {text, "1E 00", -12},
        {text, "1E 02 00 41", -12},      {wideText, "1E 02 00 41", -12},
        {bigInteger, "02 01 05", 0},
    };
    for (const auto& row : failures) {
        SCOPED_TRACE(row.message);
        Reader reader(row.message);
        CountingAllocator::failAfter(0);
        EXPECT_EQ(row.decode(reader, 0x1000), ASN1S_NO_MEMORY);
        EXPECT_EQ(reader.recorded(), row.recorded);
        CountingAllocator::neverFail();
    }
}

} // namespace
