#include <iterator>
#include <string>

#include <brevantis/asn1/asn1data/extensions.h>
#include <brevantis/asn1/asn1data/ocsp.h>
#include <brevantis/asn1/runtime.h>
#include <gtest/gtest.h>

#include "support/hex.h"
#include "support/time_class_checks.h"

// Types that are a GeneralizedTime have a control class that reads and sets the fields of the time.

namespace {

using namespace asn1data;
using tests::Octets;

template <class Type>
class TimeControls : public testing::Test {};

struct Invalidity {
    using Value = ASN1T_InvalidityDate;
    using Control = ASN1C_InvalidityDate;
};
struct Cutoff {
    using Value = ASN1T_ArchiveCutoff;
    using Control = ASN1C_ArchiveCutoff;
};
using Types = testing::Types<Invalidity, Cutoff>;
TYPED_TEST_SUITE(TimeControls, Types, );

/// A GeneralizedTime element of the given text.
Octets encoded(const std::string& text) {
    Octets octets(text.begin(), text.end());
    const unsigned char header[] = {0x18, static_cast<unsigned char>(text.size())};
    octets.insert(octets.begin(), std::begin(header), std::end(header));
    return octets;
}

/// One time after the other, read through the same object.
template <class Type>
struct Reader {
    ASN1BERDecodeBuffer buffer;
    typename Type::Value value = nullptr;
    typename Type::Control control{buffer, value};

    int read(const Octets& message) {
        const int status = buffer.setBuffer(message.data(), static_cast<int>(message.size()), 0);
        return status != 0 ? status : control.Decode();
    }
};

TYPED_TEST(TimeControls, FieldsOfADecodedTime) {
    Reader<TypeParam> reader;
    const Octets first = encoded("20240229235958.5+0530");
    ASSERT_EQ(reader.read(first), 0);
    EXPECT_EQ(tests::describe(reader.control), "2024-02-29 23:59:58 f5 5:30");

    // A second message through the same object is not read with the fields of the first.
    const Octets second = encoded("19991231000000Z");
    ASSERT_EQ(reader.read(second), 0);
    EXPECT_EQ(tests::describe(reader.control), "1999-12-31 00:00:00 Z");
}

TYPED_TEST(TimeControls, SetFieldsAreEncoded) {
    ASN1BEREncodeBuffer buffer;
    typename TypeParam::Value value = nullptr;
    typename TypeParam::Control control(buffer, value);
    EXPECT_EQ(control.setUTC(1), 0);
    EXPECT_EQ(control.setYear(2031), 0);
    EXPECT_EQ(control.setMonth(12), 0);
    EXPECT_EQ(control.setDay(24), 0);
    EXPECT_EQ(control.setHour(18), 0);
    EXPECT_EQ(control.setMinute(30), 0);
    EXPECT_EQ(control.setSecond(5), 0);
    const int size = control.Encode();
    const Octets expected = encoded("20311224183005Z");
    ASSERT_EQ(size, static_cast<int>(expected.size()));
    EXPECT_EQ(tests::toHex(buffer.getMsgPtr(), expected.size()), tests::toHex(expected));
}

TYPED_TEST(TimeControls, TextThatIsNoTimeIsCarriedButNotRead) {
    const Octets message = encoded("tomorrow");
    Reader<TypeParam> reader;
    ASSERT_EQ(reader.read(message), 0);
    EXPECT_STREQ(reader.value, "tomorrow");
    EXPECT_LT(reader.control.getYear(), 0);
}

} // namespace
