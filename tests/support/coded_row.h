#ifndef TESTS_SUPPORT_CODED_ROW_H
#define TESTS_SUPPORT_CODED_ROW_H

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "support/coding.h"
#include "support/data_file.h"

namespace tests {

/// A value decoded from octets through a type's description, released at the end.
class DecodedValue {
public:
    DecodedValue(const asn1data::TypeDescription& type, const Octets& octets, int flags = 0)
        : type_(type), reader_(octets) {
        rtCtxtSetFlag(reader_, flags);
        xd_setp(reader_, reader_->buffer.data, static_cast<int>(octets.size()), nullptr, nullptr);
        value_ = asn1data::family::newRecord(reader_, type);
        status_ = asn1data::family::decode(reader_, type, value_, ASN1TagExplicit, 0);
        EXPECT_EQ(reader_->nestingDepth, 0);
    }
    ~DecodedValue() { asn1data::family::release(reader_, type_, value_); }
    DecodedValue(const DecodedValue&) = delete;
    DecodedValue& operator=(const DecodedValue&) = delete;

    int status() const { return status_; }
    void* get() { return value_; }
    Reader& reader() { return reader_; }

    /// The octets of the value, or the name of the status if it cannot be encoded.
    std::string encoded() {
        Writer writer;
        const int count = asn1data::family::encode(writer, type_, value_, ASN1TagExplicit);
        return count < 0 ? rtStatusName(count) : writer.hex();
    }

private:
    const asn1data::TypeDescription& type_;
    Reader reader_;
    void* value_ = nullptr;
    int status_ = 0;
};

/// The type, the octets, the status of decoding them, and what the value is encoded as: the "same"
/// octets, others, or "none" where decoding fails.
/// @return the position behind what was decoded
inline std::size_t expectCoded(const DataRow& row, const asn1data::TypeDescription& type,
                               const Octets& octets, int flags = 0) {
    DecodedValue value(type, octets, flags);
    EXPECT_EQ(value.status(), row.number("status"));
    EXPECT_EQ(value.reader().recorded(), row.number("status")) << "the first failure is recorded";
    if (value.status() == 0) {
        EXPECT_EQ(value.encoded(), row["encoded"] == "same" ? toHex(octets) : row["encoded"]);
    }
    return value.reader().position();
}

} // namespace tests

#endif
