#ifndef TESTS_SUPPORT_VALUE_ROUND_TRIP_H
#define TESTS_SUPPORT_VALUE_ROUND_TRIP_H

#include <utility>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/family.h>

#include "support/coding.h"
#include "support/value_builder.h"
#include "support/value_text.h"

namespace tests {

/// Encodes a value.
/// @param status receives what the encoder returns
/// @param flags of the context
inline Octets encodedValue(const asn1data::TypeDescription& type, void* value, int& status,
                           int flags = 0) {
    Writer writer;
    rtCtxtSetFlag(writer, flags);
    status = asn1data::family::encode(writer, type, value, ASN1TagExplicit);
    if (status < 0) {
        return {};
    }
    const ASN1Buffer& buffer = writer->buffer;
    return Octets(buffer.data + buffer.byteIndex, buffer.data + buffer.size - 1);
}

/// Builds a value of a type and checks that it survives the way to octets and back, copying,
/// releasing and a second encoding.
/// @return its encoding
inline Octets expectRoundTrip(const asn1data::TypeDescription& type, ValueBuilder::Random random) {
    using namespace asn1data;
    Context values;
    void* value = ValueBuilder(values, std::move(random)).build(type);

    // Encoding leaves the raw octets of typed open values on the heap of the context that encodes,
    // so it is the one that the value lives on.
    EXPECT_EQ(xe_setp(values, nullptr, 0), 0);
    const int count = family::encode(values, type, value, ASN1TagExplicit);
    EXPECT_GE(count, 0);
    if (count <= 0) {
        return {};
    }
    const ASN1Buffer& buffer = values->buffer;
    Octets octets(buffer.data + buffer.byteIndex, buffer.data + buffer.size - 1);
    EXPECT_EQ(octets.size(), static_cast<std::size_t>(count));

    Reader reader(octets);
    void* decoded = family::newRecord(reader, type);
    EXPECT_EQ(xd_setp(reader, reader->buffer.data, count, nullptr, nullptr), 0);
    const int status = family::decode(reader, type, decoded, ASN1TagExplicit, 0);
    EXPECT_EQ(status, 0) << toHex(octets);
    if (status != 0) {
        return octets;
    }
    EXPECT_EQ(reader.position(), octets.size());
    EXPECT_TRUE(equalValues(type, value, decoded)) << toHex(octets);

    if (!type.copyable) {
        return octets;
    }
    Context copies;
    void* copied = family::newRecord(copies, type);
    family::copy(copies, type, decoded, copied);
    EXPECT_EQ(copies->errInfo.status, 0);
    EXPECT_TRUE(equalValues(type, decoded, copied));
    family::release(reader, type, decoded);

    int again = 0;
    EXPECT_EQ(toHex(encodedValue(type, copied, again)), toHex(octets));
    EXPECT_GE(again, 0);
    family::release(copies, type, copied);
    return octets;
}

} // namespace tests

#endif
