#include <memory>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <shapes/shapes.h>

#include "support/hex.h"

// Control classes: one of each base, with values that are copied, replaced and outlived.

namespace {

using namespace shapes;

struct Message {
    explicit Message(const char* hex) : octets(tests::fromHex(hex)) {}
    tests::Octets octets;
    ASN1BERDecodeBuffer buffer{octets.data(), static_cast<int>(octets.size())};
};

template <class Control>
std::string encoded(Control& control) {
    ASN1BEREncodeBuffer out;
    const int length = control.EncodeTo(out);
    EXPECT_GE(length, 0);
    return length < 0 ? "" : tests::toHex(out.getMsgPtr(), static_cast<std::size_t>(length));
}

// Decodes, copies in every way that there is, and asks each copy for the octets that went in.
template <class Control, class Record>
void survivesCopying(const char* hex) {
    SCOPED_TRACE(hex);
    Record record{};
    std::unique_ptr<Record> heapCopy;
    {
        Message message(hex);
        Record value{};
        Control control(message.buffer, value);
        ASSERT_EQ(control.Decode(), 0);
        EXPECT_EQ(control.getCopy(&value), &value);
        Record* onHeap = control.getCopy();
        ASSERT_NE(onHeap, nullptr);
        Control third(control);
        EXPECT_EQ(third.getMsgBuf(), &message.buffer);
        EXPECT_EQ(third.getContext().get(), control.getContext().get());
        EXPECT_NE(third.msgData, control.msgData);
        EXPECT_EQ(encoded(third), hex);
        Record other{};
        Control assigned(other);
        assigned = control;
        EXPECT_EQ(encoded(assigned), hex);
        Control& itself = assigned;
        assigned = itself;
        Control same(other);
        assigned = same;
        EXPECT_EQ(encoded(assigned), hex);
        Control overHeap(*onHeap);
        EXPECT_EQ(encoded(overHeap), hex);
        heapCopy.reset(control.newCopy());
        if constexpr (asn1data::family::HasOwnerContext<Record>::value) {
            control.getCopy(&record);
            EXPECT_TRUE(record.ownerContext);
        }
    }
    if constexpr (asn1data::family::HasOwnerContext<Record>::value) {
        // The context lives on with the copies that hold it, and goes with them.
        Control late(record);
        EXPECT_EQ(encoded(late), hex);
        Control latest(*heapCopy);
        EXPECT_EQ(encoded(latest), hex);
    }
}

TEST(Control, CopiesOfEveryBase) {
    survivesCopying<ASN1C_Inner, ASN1T_Inner>("30 06 02 01 05 06 01 2A");
    survivesCopying<ASN1C_OtherName, ASN1T_OtherName>("30 06 02 01 05 06 01 2A");
    survivesCopying<ASN1C_TaggedName, ASN1T_TaggedName>("A8 06 02 01 05 06 01 2A");
    survivesCopying<ASN1C_Optionals, ASN1T_Optionals>("30 0A 04 01 AA 0C 02 41 42 01 01 FF");
    survivesCopying<ASN1C_Choice, ASN1T_Choice>("85 02 01 02");
    survivesCopying<ASN1C_NumberList, ASN1T_NumberList>("30 06 02 01 01 02 01 02");
    survivesCopying<ASN1C_TextArray, ASN1T_TextArray>("30 06 0C 01 41 0C 01 42");
    survivesCopying<ASN1C_FixedTexts, ASN1T_FixedTexts>("30 06 13 01 41 13 01 42");
    survivesCopying<ASN1C_FourOctets, ASN1T_FourOctets>("04 04 01 02 03 04");
    survivesCopying<ASN1C_NineBits, ASN1T_NineBits>("03 03 07 80 80");
    survivesCopying<ASN1C_Bits, ASN1T_Bits>("03 03 01 12 34");
    survivesCopying<ASN1C_Utf8, ASN1T_Utf8>("0C 02 41 42");
    survivesCopying<ASN1C_Big, ASN1T_Big>("02 09 01 00 00 00 00 00 00 00 00");
    survivesCopying<ASN1C_Signed, ASN1T_Signed>("02 01 FF");
    survivesCopying<ASN1C_Oid, ASN1T_Oid>("06 03 2A 03 04");
    survivesCopying<ASN1C_When, ASN1T_When>("18 0F 32 30 32 30 30 31 30 31 31 32 30 30 30 30 5A");
    survivesCopying<ASN1C_Open, ASN1T_Open>("30 09 06 03 2A 03 02 0C 02 41 42");
    survivesCopying<ASN1C_Tree, ASN1T_Tree>("30 07 A0 05 30 03 0C 01 41");
}

TEST(Control, OfANull) {
    Message message("05 00");
    ASN1C_Nothing_ control(message.buffer);
    EXPECT_EQ(control.Decode(), 0);
    ASN1C_Nothing_ copy(control);
    EXPECT_EQ(encoded(copy), "05 00");
    ASN1C_Nothing_ alone;
    EXPECT_EQ(encoded(alone), "05 00");
}

TEST(Control, RecordMadeFromAControlObject) {
    std::unique_ptr<ASN1T_Optionals> record;
    {
        Message message("30 06 04 01 AA 01 01 FF");
        ASN1T_Optionals value;
        ASN1C_Optionals control(message.buffer, value);
        ASSERT_EQ(control.Decode(), 0);
        record = std::make_unique<ASN1T_Optionals>(control);
    }
    ASSERT_EQ(record->m.octetsPresent, 1u);
    ASSERT_EQ(record->octets.numocts, 1u);
    EXPECT_EQ(record->octets.data[0], 0xAA);
}

// What the object knew of the value it was made on must not be applied to a shorter one.
TEST(Control, BitStringFollowsADecodedValue) {
    unsigned char before[] = {0xFF, 0xFF, 0xFF, 0xFF};
    ASN1T_Bits value{32, before};
    ASN1C_Bits bits(value);
    EXPECT_TRUE(bits.get(30));
    Message message("03 02 00 80");
    ASSERT_EQ(bits.DecodeFrom(message.buffer), 0);
    EXPECT_EQ(bits.length(), 1u);
    EXPECT_FALSE(bits.get(30));
    ASN1T_NineBits fixed;
    ASN1C_NineBits nine(fixed);
    Message another("03 03 07 80 80");
    ASSERT_EQ(nine.DecodeFrom(another.buffer), 0);
    EXPECT_TRUE(nine.get(8));
    EXPECT_EQ(nine.length(), 9u);
}

TEST(Control, TimeFollowsADecodedValue) {
    ASN1T_When value = "19990101000000Z";
    ASN1C_When control(value);
    EXPECT_EQ(control.getYear(), 1999);
    Message message("18 0F 32 30 32 30 30 31 30 31 31 32 30 30 30 30 5A");
    ASSERT_EQ(control.DecodeFrom(message.buffer), 0);
    EXPECT_EQ(control.getYear(), 2020);
}

TEST(Control, FreshRecordsAreEmpty) {
    const ASN1T_Numbers numbers{};
    EXPECT_EQ(numbers.big, nullptr);
    EXPECT_EQ(numbers.small, 0);
    const ASN1T_Choice choice;
    EXPECT_EQ(choice.t, 0u);
    EXPECT_EQ(choice.u.octets, nullptr);
    const ASN1T_Lists lists;
    EXPECT_EQ(lists.m.alikePresent, 0u);
    EXPECT_EQ(lists.plain.head, nullptr);
    EXPECT_EQ(lists.numbers.elem, nullptr);
    EXPECT_EQ(lists.fixed.elem[3], nullptr);
    EXPECT_EQ(T_Choice_inner, 10u);
    EXPECT_EQ(NineBits_last, 8u);
}

} // namespace
