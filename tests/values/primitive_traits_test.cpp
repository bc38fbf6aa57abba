#include <list>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/types/primitive_traits.h>
#include <brevantis/asn1/values/util/context_handle.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>
#include <brevantis/asn1/values/util/optional_member.h>
#include <brevantis/asn1/values/util/text_conversion.h>

#include "support/blob.h"
#include "support/data_file.h"
#include "support/failing_allocations.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

TEST(ObjectIdentifierText, IsReadAsToldAndWrittenInOneForm) {
    const auto expectWritten = [](const char* text, const char* written) {
        SCOPED_TRACE(text);
        ASN1OBJID oid{};
        EXPECT_EQ(str2oid(text, &oid), written != nullptr ? 0u : 1u);
        if (written != nullptr) {
            EXPECT_EQ(toOID(oid), written);
            EXPECT_EQ(toASN1OBJID(text), oid);
        } else {
            EXPECT_EQ(thrownCode([&] { toASN1OBJID(text); }), E_INVALIDARG);
        }
    };
    tests::forEachRow("object_identifier_text.txt", "read", [&](const tests::DataRow& row) {
        expectWritten(row["text"].c_str(), row.text("written"));
    });
    std::string longest = "1";
    for (int i = 1; i < 128; ++i) {
        longest += ".1";
    }
    expectWritten(longest.c_str(), longest.c_str());
    expectWritten((longest + ".1").c_str(), nullptr);
    CBlob text;
    const ASN1OBJID none{};
    EXPECT_TRUE(oid2str(text, &none));
    EXPECT_EQ(text, blob("00"));
}

TEST(TextConversion, NarrowsWhatTakesOneOctetACharacter) {
    EXPECT_EQ(tostring(L"abc"), "abc");
    EXPECT_EQ(tostring(L""), "");
    EXPECT_EQ(thrownCode([] { tostring(L"\u0416"); }), static_cast<int>(0x8007007Au));
    EXPECT_EQ(towstring("\xD0\x96z"), L"\u0416z");
    EXPECT_EQ(towstring("a\xFF"), L"a\uFFFD");
    EXPECT_EQ(tostring(-17), "-17");
    EXPECT_EQ(towstring(1234567), L"1234567");
}

/// @param copy takes the member and the argument
template <class Pointer, class Copy>
void checkMember(Copy copy) {
    Pointer member;
    const CBlob source = blob("0102");
    copy(member, &source);
    ASSERT_NE(member.get(), nullptr);
    EXPECT_EQ(*member, source);
    const CBlob* held = member.get();
    copy(member, held);
    EXPECT_EQ(member.get(), held);
    copy(member, nullptr);
    EXPECT_EQ(member.get(), nullptr);
}

TEST(OptionalMember, TakesACopyOrNothing) {
#if BREVANTIS_ASN1_HAS_AUTO_PTR
    checkMember<OptionalMember<CBlob>>(copy_to_auto_ptr<CBlob>);
#endif
    checkMember<std::unique_ptr<CBlob>>(copy_to_unique_ptr<CBlob>);
}

/// Sets a record from a value, copies the record, and reads the copy back.
template <class Traits, class Value, class Read>
Read throughRecord(const Value& value) {
    ScopedContext first;
    ScopedContext second;
    typename Traits::ASN1_T record{};
    typename Traits::ASN1_T copied{};
    Traits::set(first.get(), record, value);
    Traits::copy(second.get(), record, copied);
    Read read;
    Traits::get(copied, read);
    return read;
}

TEST(PrimitiveTraits, KeepValuesThroughRecords) {
    for (const char* hex : {"", "00", "0102FF"}) {
        const CBlob value = blob(hex);
        EXPECT_EQ((throughRecord<ASN1TDynOctStr_traits, CBlob, CBlob>(value)), value) << hex;
        EXPECT_EQ((throughRecord<ASN1TDynBitStr_traits, CBlob, CBlob>(value)), value) << hex;
        EXPECT_EQ((throughRecord<ASN1TOpenType_traits, CBlob, CBlob>(value)), value) << hex;
        EXPECT_EQ((throughRecord<Asn1TObject_traits, CBlob, CBlob>(value)), value) << hex;
    }
    EXPECT_EQ((throughRecord<ASN1IA5String_traits, const char*, CStringProxy>("ab")), "ab");
    EXPECT_EQ(
        (throughRecord<ASN1UTF8String_traits, const wchar_t*, CWStringProxy>(L"\u0416\U0001F600")),
        L"\u0416\U0001F600");
    EXPECT_EQ((throughRecord<ASN1TObjId_traits, const char*, CStringProxy>("1.2.840")), "1.2.840");
    EXPECT_EQ((throughRecord<ASN1GeneralizedTime_traits, CDateTime, CDateTime>(
                  CDateTime(2030, 12, 31, 23, 59, 59, 999))),
              CDateTime(2030, 12, 31, 23, 59, 59));
}

TEST(PrimitiveTraits, EmptyOctetsHaveABlockOfTheirOwn) {
    ScopedContext context;
    ASN1TDynOctStr record{};
    ASN1TDynOctStr_traits::set(context.get(), record, CBlob());
    EXPECT_EQ(record.numocts, 0u);
    EXPECT_NE(record.data, nullptr);
}

TEST(PrimitiveTraits, CopiesOfNoBitsAndNoOpenValueHaveNone) {
    ScopedContext context;
    const unsigned char octet = 0;
    ASN1TDynBitStr bits{1, &octet};
    ASN1TDynBitStr_traits::copy(context.get(), {0, &octet}, bits);
    EXPECT_EQ(bits.numbits, 0u);
    EXPECT_TRUE(bits.data == nullptr);
    Asn1TObject source;
    source.data = &octet;
    Asn1TObject target;
    target.numocts = 1;
    target.data = &octet;
    Asn1TObject_traits::copy(context.get(), source, target);
    EXPECT_EQ(target.numocts, 0u);
    EXPECT_TRUE(target.data == nullptr);
}

TEST(PrimitiveTraits, RefuseACountWithoutOctets) {
    ScopedContext context;
    ASN1TDynOctStr octets;
    ASN1TDynBitStr bits;
    ASN1OpenType open;
    CBlob value = blob("01");
    EXPECT_EQ(thrownCode([&] {
                  ASN1TDynOctStr_traits::copy(context.get(), {1, nullptr}, octets);
              }),
              E_INVALIDARG);
    EXPECT_EQ(thrownCode([&] {
                  ASN1TDynBitStr_traits::copy(context.get(), {1, nullptr}, bits);
              }),
              E_INVALIDARG);
    EXPECT_EQ(thrownCode([&] {
                  ASN1TOpenType_traits::copy(context.get(), {1, nullptr}, open);
              }),
              E_INVALIDARG);
    EXPECT_EQ(thrownCode([&] { ASN1TDynOctStr_traits::get({1, nullptr}, value); }), E_INVALIDARG);
    EXPECT_EQ(value, blob("01"));
}

TEST(PrimitiveTraits, ABitStringComesBackAsWholeOctets) {
    const unsigned char octets[] = {0xAA, 0x80};
    CBlob value;
    for (const auto& [bits, size] : {std::pair{0u, 0ul}, {1u, 1ul}, {8u, 1ul}, {9u, 2ul}}) {
        ASN1TDynBitStr_traits::get({bits, octets}, value);
        EXPECT_EQ(value.cbData(), size) << bits;
    }
}

TEST(PrimitiveTraits, ACopyOfIa5TextIsTheSourceItself) {
    ScopedContext context;
    const char* const source = "text";
    const char* target = nullptr;
    ASN1IA5String_traits::copy(context.get(), source, target);
    EXPECT_EQ(target, source);
}

TEST(PrimitiveTraits, RefuseTextThatDoesNotConvert) {
    ScopedContext context;
    const char* record = nullptr;
    const wchar_t bad[] = {static_cast<wchar_t>(-1), 0};
    EXPECT_EQ(thrownCode([&] { ASN1UTF8String_traits::set(context.get(), record, bad); }),
              E_INVALIDARG);
    CWStringProxy wide;
    for (const char* text : {"a\x80", "A\xC3z", "\xFE"}) {
        EXPECT_EQ(thrownCode([&] { ASN1UTF8String_traits::get(text, wide); }),
                  CRYPT_E_ASN1_INTERNAL)
            << text;
    }
    ASN1UTF8String_traits::get("A\xE2\x82", wide);
    EXPECT_EQ(wide, L"A\u0082") << "cut off within the last character";
    EXPECT_EQ(tostring(static_cast<const wchar_t*>(nullptr)), "");
    EXPECT_EQ(towstring(nullptr), L"");
    ASN1OBJID oid{};
    EXPECT_EQ(str2oid(nullptr, &oid), 1u);
    CDateTime time;
    EXPECT_EQ(thrownCode([&] { ASN1GeneralizedTime_traits::get("2030", time); }), E_INVALIDARG);
}

using IdentifierList = std::list<CStringProxy>;

struct IdentifierTraits {
    static void set(ASN1CTXT* ctxt, ASN1OBJID& record, const CStringProxy& value) {
        ASN1TObjId_traits::set(ctxt, record, value.c_str());
    }
    static void get(const ASN1OBJID& record, CStringProxy& value) {
        ASN1TObjId_traits::get(record, value);
    }
};

using IdentifierListTraits =
    ASN1TSeqOfList_traits<ASN1OBJID, IdentifierTraits, CStringProxy, IdentifierList>;

TEST(ListTraits, KeepTheListOfARecordUntilAllElementsAreThere) {
    ScopedContext context;
    ASN1TSeqOfList record;
    IdentifierListTraits::set(context.get(), record, {"1.2", "1.3"});
    EXPECT_EQ(thrownCode([&] {
                  IdentifierListTraits::set(context.get(), record, {"1.4", "x"});
              }),
              E_INVALIDARG);
    IdentifierList read;
    IdentifierListTraits::get(record, read);
    EXPECT_EQ(read, (IdentifierList{"1.2", "1.3"}));
    IdentifierListTraits::set(context.get(), record, {});
    EXPECT_EQ(record.count, 0u);
}

TEST(ListTraits, RefuseANodeWithoutAnElement) {
    ScopedContext context;
    ASN1TSeqOfList record;
    IdentifierListTraits::set(context.get(), record, {"1.2", "1.3"});
    record.tail->data = nullptr;
    IdentifierList read;
    EXPECT_EQ(thrownCode([&] { IdentifierListTraits::get(record, read); }), E_INVALIDARG);
    EXPECT_EQ(read, IdentifierList{"1.2"});
}

TEST(Coding, TakesIdentifiersAndTimesBothWays) {
    const CBlob oid = asn1Encode<ASN1TObjId_traits, const char*>("1.2.840.113549");
    EXPECT_EQ(oid, blob("06062A864886F70D"));
    CStringProxy text("before");
    asn1Decode<ASN1TObjId_traits, CStringProxy>(blob("06062A864886F70D0500"), text);
    EXPECT_EQ(text, "1.2.840.113549");
    for (const char* hex : {"", "06", "0605", "0500"}) {
        EXPECT_EQ(thrownCode([&] { asn1Decode<ASN1TObjId_traits, CStringProxy>(blob(hex), text); }),
                  CRYPT_E_ASN1_INTERNAL)
            << hex;
        EXPECT_EQ(text, "1.2.840.113549") << "unchanged by a failure";
    }
    const CBlob time =
        asn1Encode<ASN1GeneralizedTime_traits, CDateTime>(CDateTime(2030, 1, 2, 3, 4, 5));
    EXPECT_EQ(time, blob("180F32303330303130323033303430355A"));
    CDateTime read;
    asn1Decode<ASN1GeneralizedTime_traits, CDateTime>(time, read);
    EXPECT_EQ(read, CDateTime(2030, 1, 2, 3, 4, 5));
}

TEST(Coding, GivesEverythingBackWhenMemoryIsOut) {
    const CBlob encoded = blob("06062A864886F70D");
    EXPECT_GT(tests::failEveryAllocation(
                  [] { asn1Encode<ASN1TObjId_traits, const char*>("1.2.840.113549"); }),
              3);
    EXPECT_GT(tests::failEveryAllocation([&] {
                  CStringProxy text;
                  asn1Decode<ASN1TObjId_traits, CStringProxy>(encoded, text);
              }),
              1);
    EXPECT_GT(tests::failEveryAllocation([&] {
                  throughRecord<ASN1UTF8String_traits, const wchar_t*, CWStringProxy>(L"\u0416");
              }),
              3);
}

} // namespace
