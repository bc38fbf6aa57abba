#include <gtest/gtest.h>

#include <brevantis/asn1/values/cmp/failure_info_traits.h>
#include <brevantis/asn1/values/cmp/info_type_and_value.h>
#include <brevantis/asn1/values/cmp/info_type_and_value_traits.h>
#include <brevantis/asn1/values/cmp/revocation_announcement.h>
#include <brevantis/asn1/values/cmp/status_info.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/traits.h>

#include "support/blob.h"
#include "support/data_file.h"
#include "support/failing_allocations.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

TEST(FailureInfo, IsWrittenWithoutZeroBitsAtTheEnd) {
    tests::forEachRow("bit_flags.txt", "failures", [](const tests::DataRow& row) {
        const CPKIFailureInfo value(row.number<unsigned>("value"));
        EXPECT_EQ(value.encode(), blob(row["message"]));
        CPKIFailureInfo read(0);
        read.decode(blob(row["message"]));
        EXPECT_EQ(read, value);
    });
}

TEST(FailureInfo, CountsBitsFromZeroTo31) {
    CPKIFailureInfo value(5);
    EXPECT_TRUE(value.get_bit(2));
    EXPECT_FALSE(value.get_bit(1));
    value.put_bit(31, true);
    value.put_bit(0, false);
    EXPECT_EQ(value.get_value(), 0x80000004u);
    EXPECT_EQ(thrownCode([&] { value.get_bit(32); }), E_INVALIDARG);
    EXPECT_EQ(thrownCode([&] { value.put_bit(32, true); }), E_INVALIDARG);
    asn1data::ASN1T_PKIFailureInfo record{33, {0xFF, 0, 0, 0}};
    EXPECT_EQ(thrownCode([&] { ASN1T_PKIFailureInfo_traits::get(record, value); }), E_INVALIDARG);
    EXPECT_EQ(value, CPKIFailureInfo(0x80000004u)) << "unchanged by failures";
}

TEST(FailureInfo, AddsBitsOnDecoding) {
    CPKIFailureInfo value(2);
    value.decode(blob("03020780"));
    EXPECT_EQ(value.get_value(), 3u);
    value.decode(blob("03020400"));
    EXPECT_EQ(value.get_value(), 3u);
    for (const char* hex : {"", "0500", "0302", "0306000000000001"}) {
        EXPECT_EQ(thrownCode([&] { value.decode(blob(hex)); }), CRYPT_E_ASN1_INTERNAL) << hex;
    }
    EXPECT_NE(value, CPKIFailureInfo(0));
    EXPECT_EQ(value.get_value(), 3u);
}

TEST(StatusInfo, CarriesAnswers) {
    for (const tests::DataRow& row : tests::dataRows("status_info.txt", "answers")) {
        SCOPED_TRACE(row);
        CPKIStatusInfo value(PKIStatusEnum_keyUpdateWarning);
        value.put_failureInfo(CPKIFailureInfo(8));
        value.put_statusString(CPKIFreeText(L"before"));
        value.decode(blob(row["message"]));
        EXPECT_EQ(value.get_pkiStatus(), row.number<unsigned>("status"));
        EXPECT_EQ(value.get_failureInfo(), row.number<unsigned>("failure"));
        EXPECT_EQ(value.get_statusString(), row.text("text") != nullptr
                                                ? CPKIFreeText(CPKIFreeTextString(row.text("text")))
                                                : CPKIFreeText());
        EXPECT_EQ(value.encode(), blob(row["message"]));
    }
}

TEST(StatusInfo, LeavesOutWhatIsEmpty) {
    CPKIStatusInfo value(PKIStatusEnum_rejection);
    EXPECT_EQ(value.encode(), blob("3003020102"));
    value.put_statusString(CPKIFreeText(L"x", CLanguageTag("a")));
    EXPECT_EQ(value.encode(), blob("301102010230 0C0C0AE0B881E0B9A1E0B9BE78"));
    value.put_pkiStatus(static_cast<PKIStatusEnum>(0x12345678));
    value.put_statusString(CPKIFreeText());
    EXPECT_EQ(value.encode(), blob("3006020412345678"));
}

TEST(RevocationAnnouncement, KeepsWholeSecondsAndDetailsThatAreNotEmpty) {
    const CGeneralName issuer = CGeneralName::dNSName(L"ca.test");
    const CBlob serialNumber = blob("00C001");
    const CDateTime since(2029, 12, 31, 23, 59, 59);
    CRevAnnContent value(PKIStatusEnum_revocationWarning,
                         CCertId(issuer, CBigInteger(serialNumber.pbData(), serialNumber.cbData())),
                         CDateTime(2030, 1, 2, 3, 4, 5, 678), since);
    const CBlob withoutDetails = blob("3035 020104 300E 820763612E74657374 020300C001"
                                      "180F32303330303130323033303430355A"
                                      "180F32303239313233313233353935395A");
    EXPECT_EQ(value.encode(), withoutDetails);
    CExtensions details;
    value.put_crlDetails(&details);
    EXPECT_EQ(value.encode(), withoutDetails) << "empty details are absent";
    details.insert(CExtension("2.5.29.20", blob("020105")));
    value.put_crlDetails(&details);

    CRevAnnContent read;
    read.decode(value.encode());
    EXPECT_EQ(read.get_status(), PKIStatusEnum_revocationWarning);
    EXPECT_STREQ(read.get_certId().get_issuer().get_dNSName(), L"ca.test");
    EXPECT_EQ(static_cast<const CBlob&>(read.get_certId().get_serialNumber()), serialNumber);
    EXPECT_EQ(read.get_willBeRevokedAt(), CDateTime(2030, 1, 2, 3, 4, 5)) << "whole seconds";
    EXPECT_EQ(read.get_badSinceDate(), since);
    ASSERT_NE(read.get_crlDetails(), nullptr);
    EXPECT_TRUE(*read.get_crlDetails() == details);

    const CRevAnnContent copy(value);
    value.put_status(PKIStatusEnum_accepted);
    value.put_certId(CCertId());
    value.put_willBeRevokedAt(CDateTime());
    value.put_badSinceDate(CDateTime());
    value.put_crlDetails(nullptr);
    EXPECT_EQ(copy.encode(), read.encode()) << "a copy is apart";
    read.decode(withoutDetails);
    EXPECT_EQ(read.get_crlDetails(), nullptr);
}

TEST(RevocationAnnouncement, WithoutContentIsRefusedEverywhereButForAssignment) {
    const CRevAnnContent content(PKIStatusEnum_waiting, CCertId(), CDateTime(), CDateTime());
    CRevAnnContent none;
    const CRevAnnContent copy(none);
    void (*const uses[])(CRevAnnContent&) = {
        [](CRevAnnContent& value) { value.get_status(); },
        [](CRevAnnContent& value) { value.get_crlDetails(); },
        [](CRevAnnContent& value) { value.put_badSinceDate(CDateTime()); },
        [](CRevAnnContent& value) { value.put_crlDetails(nullptr); },
        [](CRevAnnContent& value) { value.encode(); },
    };
    for (const auto& use : uses) {
        EXPECT_EQ(thrownCode([&] { use(none); }), E_INVALIDARG) << &use - uses;
    }
    none = content;
    EXPECT_EQ(none.get_status(), PKIStatusEnum_waiting);
    none = copy;
    EXPECT_EQ(thrownCode([&] { none.get_status(); }), E_INVALIDARG);
}

constexpr const char* preferredAlgorithm = "1.3.6.1.5.5.7.4.4";

using MessageTraits = CatalogueTraits<asn1data::ASN1T_GenMsgContent, asn1data::ASN1C_GenMsgContent,
                                      &asn1data::asn1Copy_GenMsgContent>;

CBlob encode(const CInfoTypeAndValueList& items) {
    EncodeBuffer buffer;
    DecodeBuffer memory;
    asn1data::ASN1T_GenMsgContent record;
    ASN1TavList_Encode(items, record, memory);
    return buffer.message(MessageTraits::encode(buffer, record));
}

CInfoTypeAndValueList decode(const CBlob& message) {
    DecodeBuffer buffer(message);
    asn1data::ASN1T_GenMsgContent record;
    requireSuccess(MessageTraits::decode(buffer, record));
    CInfoTypeAndValueList items{"1.1"};
    ASN1TavList_Parse(record, items);
    return items;
}

TEST(InfoTypeAndValue, IsATypeAndPerhapsAValue) {
    const CInfoTypeAndValue item("1.2.3", blob("0500"));
    EXPECT_EQ(CInfoTypeAndValue("1.2.3").get_infoValue(), CBlob());
    EXPECT_NE(item, CInfoTypeAndValue("1.2.3"));
    EXPECT_NE(item, CInfoTypeAndValue("1.2.4", blob("0500")));
    CInfoTypeAndValue other;
    EXPECT_STREQ(other.get_infoType(), "");
    other = item;
    EXPECT_EQ(other, item);
}

TEST(InfoTypeAndValueList, KeepsTypesUnique) {
    CInfoTypeAndValueList items;
    items.insert(CInfoTypeAndValue("1.2.3", blob("0500")));
    items.insert(CInfoTypeAndValue("1.2.4"));
    items.insert(CInfoTypeAndValue("1.2.3", blob("040141")));
    const CInfoTypeAndValueList expected{CInfoTypeAndValue("1.2.3", blob("040141")), "1.2.4"};
    EXPECT_EQ(items, expected);
    const CInfoTypeAndValueList& same = items;
    EXPECT_EQ(same.find("1.2.4"), std::next(same.begin()));
    EXPECT_EQ(items.find("1.2.5"), items.end());
    items.remove("1.2.5");
    EXPECT_EQ(items.size(), 2u) << "a type that is not there is not removed";
    items.remove(items.front().get_infoType());
    EXPECT_EQ(items, CInfoTypeAndValueList{"1.2.4"});
}

TEST(InfoTypeAndValueList, IsWrittenAndRead) {
    const std::pair<CInfoTypeAndValueList, const char*> rows[] = {
        {{}, "3000"},
        {{"1.2.3"}, "3006300406022A03"},
        {{CInfoTypeAndValue("1.2.3", blob("0500")), "1.2.4"}, "300E300606022A030500300406022A04"},
        {{CInfoTypeAndValue(preferredAlgorithm, blob("300406022A03"))},
         "3012301006082B06010505070404300406022A03"},
    };
    for (const auto& [items, encoded] : rows) {
        EXPECT_EQ(encode(items), blob(encoded));
        EXPECT_EQ(decode(blob(encoded)), items) << encoded;
    }
    const CInfoTypeAndValueList anothersValue{"1.2.3",
                                              CInfoTypeAndValue(preferredAlgorithm, blob("0500"))};
    EXPECT_EQ(thrownCode([&] { encode(anothersValue); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(thrownCode([] { encode({"x"}); }), E_INVALIDARG);
}

TEST(InfoTypeAndValueList, IsReadUpToANodeWithoutARecord) {
    const CInfoTypeAndValueList items{CInfoTypeAndValue("1.2.3"), CInfoTypeAndValue("1.2.4")};
    DecodeBuffer owner;
    ASN1TSeqOfList list;
    ASN1TavList_Encode(items, list, owner);
    list.tail->data = nullptr;
    CInfoTypeAndValueList read;
    EXPECT_EQ(thrownCode([&] { ASN1TavList_Parse(list, read); }), E_INVALIDARG);
    EXPECT_EQ(read, CInfoTypeAndValueList(1, items.front()));
}

TEST(InfoTypeAndValueList, GivesEverythingBackWhenMemoryIsOut) {
    const CInfoTypeAndValueList items{"1.2.3.4.5.6.7.8.9.10",
                                      CInfoTypeAndValue(preferredAlgorithm, blob("300406022A03"))};
    const CBlob encoded = encode(items);
    EXPECT_GT(tests::failEveryAllocation([&] { encode(items); }), 5);
    EXPECT_GT(tests::failEveryAllocation([&] { decode(encoded); }), 5);
}

} // namespace
