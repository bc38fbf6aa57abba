#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/cms/content_info.h>
#include <brevantis/asn1/values/cms/content_info_traits.h>
#include <brevantis/asn1/values/cms/signer_info_traits.h>
#include <brevantis/asn1/values/util/context_handle.h>
#include <brevantis/asn1/values/util/private_buffer.h>

#include "support/blob.h"
#include "support/data_file.h"
#include "support/failing_allocations.h"
#include "support/through_record.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

TEST(ContentInfo, CarriesMessagesOfEveryKind) {
    for (const tests::DataRow& row : tests::dataRows("content_info.txt", "messages")) {
        SCOPED_TRACE(row);
        const CBlob message = blob(row["message"]);
        const CBlob written = row["written"] == "same" ? message : blob(row["written"]);
        CContentInfo value;
        value.decode(message);
        EXPECT_EQ(value.get_contentType(), row["type"]);
        EXPECT_EQ(value.encode(), written);

        EXPECT_EQ(tests::throughRecord<ASN1T_ContentInfo_traits>(message), written);
        EXPECT_EQ(thrownCode([] { tests::throughRecord<ASN1T_ContentInfo_traits>(blob("3000")); }),
                  CRYPT_E_ASN1_INTERNAL);
    }
}

TEST(ContentInfo, ChecksTheContentOfTypesThatAreKnown) {
    tests::forEachRow("content_info.txt", "contents", [](const tests::DataRow& row) {
        const CContentInfo value(row.text("type"), blob(row["content"]));
        CBlob encoded;
        EXPECT_EQ(tests::thrownName([&] { encoded = value.encode(); }), row["code"]);
        EXPECT_EQ(encoded, blob(row["encoded"]));
    });
}

/// The record of the one signer of a message of tests/data/content_info.txt.
class Signer {
public:
    explicit Signer(const std::string& kind) : content_(contentOf(kind)), buffer_(content_) {
        asn1data::ASN1C_SignedData control(buffer_, message_);
        requireSuccess(control.DecodeFrom(buffer_));
    }

    asn1data::ASN1T_SignerInfo& record() const {
        return *static_cast<asn1data::ASN1T_SignerInfo*>(message_.signerInfos.head->data);
    }

private:
    static CBlob contentOf(const std::string& kind) {
        for (const tests::DataRow& row : tests::dataRows("content_info.txt", "messages")) {
            if (row["kind"] == kind) {
                CContentInfo message;
                message.decode(blob(row["message"]));
                return message.get_content();
            }
        }
        throw std::runtime_error("no message of kind " + kind);
    }

    CBlob content_;
    DecodeBuffer buffer_;
    asn1data::ASN1T_SignedData message_;
};

const CBlob issuer = blob("301E310B3009060355040613025345310F300D06035504030C065369676E6572");
constexpr const char* sha256 = "2.16.840.1.101.3.4.2.1";
constexpr const char* ecdsaWithSha256 = "1.2.840.10045.4.3.2";

TEST(SignerInfo, IsReadOutOfAMessage) {
    const Signer signer("signed data");
    ScopedContext context;
    asn1data::ASN1T_SignerInfo copied;
    ASN1T_SignerInfo_traits::copy(context.get(), signer.record(), copied);
    CSignerInfo value;
    ASN1T_SignerInfo_traits::get(copied, value);
    EXPECT_EQ(value.get_version(), 1u);
    EXPECT_EQ(value.get_issuer(), issuer);
    EXPECT_EQ(static_cast<const CBlob&>(value.get_serialNumber()), blob("00C001D00D"));
    EXPECT_EQ(value.get_digestAlgorithm(), CAlgorithmIdentifier(sha256));
    EXPECT_EQ(value.get_signatureAlgorithm(), CAlgorithmIdentifier(ecdsaWithSha256));
    EXPECT_EQ(value.get_signature().cbData(), 71u);
}

TEST(SignerInfo, ASignerToldByKeyLeavesWhatWasReadBefore) {
    CSignerInfo value;
    EXPECT_EQ(value.get_version(), 0u);
    value.put_issuer(issuer);
    value.put_serialNumber(CBigInteger(issuer.pbData(), 1));
    const CBigInteger serialNumber = value.get_serialNumber();
    const Signer signer("signed data, the signer told by key");
    EXPECT_EQ(thrownCode([&] { ASN1T_SignerInfo_get(value, signer.record()); }),
              CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(value.get_version(), 3u);
    EXPECT_EQ(value.get_digestAlgorithm(), CAlgorithmIdentifier(sha256));
    EXPECT_EQ(value.get_signatureAlgorithm(), CAlgorithmIdentifier(ecdsaWithSha256));
    EXPECT_EQ(value.get_signature().cbData(), 70u);
    EXPECT_EQ(value.get_issuer(), issuer);
    EXPECT_EQ(value.get_serialNumber(), serialNumber);
}

TEST(SignerInfo, WithoutWhatItsRecordPromisesIsRefused) {
    const Signer signer("signed data");
    asn1data::ASN1T_SignerInfo& record = signer.record();
    record.signature.data = nullptr;
    CSignerInfo value;
    EXPECT_EQ(thrownCode([&] { ASN1T_SignerInfo_get(value, record); }), E_INVALIDARG);
    record.signature.numocts = 0;
    record.sid.u.issuerAndSerialNumber = nullptr;
    EXPECT_EQ(thrownCode([&] { ASN1T_SignerInfo_get(value, record); }), E_INVALIDARG);
    EXPECT_EQ(value.get_version(), 1u);
}

TEST(SignerInfo, IsEqualInEveryField) {
    CSignerInfo value;
    ASN1T_SignerInfo_get(value, Signer("signed data").record());
    void (*const changes[])(CSignerInfo&) = {
        [](CSignerInfo& info) { info.put_version(2); },
        [](CSignerInfo& info) { info.put_issuer(CBlob()); },
        [](CSignerInfo& info) { info.put_serialNumber(CBigInteger()); },
        [](CSignerInfo& info) { info.put_signature(CBlob()); },
        [](CSignerInfo& info) { info.put_digestAlgorithm(info.get_signatureAlgorithm()); },
        [](CSignerInfo& info) {
            const CAlgorithmIdentifier digest = info.get_digestAlgorithm();
            info.put_digestAlgorithm(info.get_signatureAlgorithm());
            info.put_signatureAlgorithm(digest);
        },
    };
    CSignerInfo other;
    for (const auto& change : changes) {
        other = value;
        EXPECT_TRUE(other == value);
        change(other);
        EXPECT_TRUE(other != value) << &change - changes;
    }
}

TEST(SignerInfo, GivesEverythingBackWhenMemoryIsOut) {
    const Signer signer("signed data");
    EXPECT_GT(tests::failEveryAllocation([&] {
                  CSignerInfo value;
                  ASN1T_SignerInfo_get(value, signer.record());
              }),
              5);
}

} // namespace
