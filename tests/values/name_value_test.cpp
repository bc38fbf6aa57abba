#include <algorithm>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/types/attribute_register.h>
#include <brevantis/asn1/values/types/general_name.h>
#include <brevantis/asn1/values/types/name.h>
#include <brevantis/asn1/values/types/name_traits.h>
#include <brevantis/asn1/values/util/context_handle.h>
#include <brevantis/asn1/values/util/text_conversion.h>

#include "support/blob.h"
#include "support/ca_bundle.h"
#include "support/data_file.h"
#include "support/failing_allocations.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::thrownCode;

namespace {

TEST(Name, IsReadFromTextEncodedDecodedAndWritten) {
    tests::forEachRow("distinguished_name.txt", "names", [](const tests::DataRow& row) {
        const std::wstring text = towstring(row["text"].c_str());
        const std::string& decodedText = row[row["decoded"] == "same" ? "text" : "decoded"];
        const CName name(text.c_str());
        EXPECT_EQ(name.toString(), text);
        EXPECT_EQ(name.encode(), blob(row["encoded"]));
        CName decoded(L"CN=before");
        decoded.decode(name.encode());
        EXPECT_EQ(decoded.toString(), towstring(decodedText.c_str()));
        EXPECT_EQ(decoded.encode(), name.encode());
        CRelativeDistinguishedName first;
        first.decode(name.front().encode());
        EXPECT_EQ(first.toString(), decoded.front().toString());
    });
}

TEST(Name, MayBeEmptyButNotAsTextNorARelativeName) {
    EXPECT_EQ(CName().toString(), L"");
    EXPECT_EQ(CName().encode(), blob("3000"));
    CName name(L"CN=a");
    name.decode(blob("3000"));
    EXPECT_TRUE(name.empty());
    EXPECT_EQ(thrownCode([&] { name.fromString(L""); }), E_INVALIDARG);
    EXPECT_EQ(CRelativeDistinguishedName().toString(), L"");
    EXPECT_EQ(thrownCode([] { CRelativeDistinguishedName().encode(); }), CRYPT_E_ASN1_INTERNAL);
}

TEST(Name, AppendsWhatStandsBeforeAFailure) {
    tests::forEachRow("distinguished_name.txt", "appended to C=RU", [](const tests::DataRow& row) {
        CName name(L"C=RU");
        const std::wstring text = towstring(row["text"].c_str());
        EXPECT_EQ(tests::thrownName([&] { name.fromString(text.c_str()); }), row["code"]);
        EXPECT_EQ(name.toString(), towstring(row["after"].c_str()));
    });
    EXPECT_EQ(thrownCode([] { CName().fromString(nullptr); }), E_INVALIDARG);
    CRelativeDistinguishedName rdn(L"C=RU");
    EXPECT_EQ(thrownCode([&] { rdn.fromString(L"CN=a+O=b+x"); }), E_INVALIDARG);
    EXPECT_EQ(rdn.toString(), L"C=RU+CN=a+O=b");
}

TEST(Name, TakesTextOfAnotherDeclaredType) {
    const auto* text = static_cast<const unsigned short*>(static_cast<const void*>(L"CN=a"));
    CName name;
    fromString(name, text);
    CRelativeDistinguishedName rdn;
    fromString(rdn, text);
    EXPECT_EQ(name.toString(), L"CN=a");
    EXPECT_EQ(rdn.toString(), L"CN=a");
}

TEST(Name, WithAValueThatIsNoTextIsEncodedButNotWritten) {
    // The register knows serial numbers, the catalogue does not, and so lets a NULL pass.
    const CRelativeDistinguishedName rdn{CAttributeTypeAndValue("2.5.4.5", blob("0500"))};
    CName name;
    name.push_back(rdn);
    EXPECT_EQ(thrownCode([&] { name.toString(); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(name.encode(), blob("300B 3109 3007 0603550405 0500"));
}

TEST(Name, GoesOnBehindAZeroCharacterInAValue) {
    for (const char* value : {"1E06 004100000042", "1C0C 000000410000000000000042", "0C04 41C08042",
                              "0C03 410042", "1303 410042"}) {
        CName name;
        name.push_back(
            CRelativeDistinguishedName{CAttributeTypeAndValue("2.5.4.3", blob(value)),
                                       CAttributeTypeAndValue(L"OU=y", StringTypeDefault)});
        name.push_back(CRelativeDistinguishedName(L"O=x"));
        EXPECT_EQ(name.toString(), L"CN=A+OU=y,O=x") << value;
        EXPECT_STREQ(name.toString().c_str(), L"CN=A+OU=y,O=x") << value;
        const CGeneralName general = CGeneralName::directoryName(name);
        EXPECT_NE(std::wstring(general.toString().c_str()).find(L",O=x"), std::wstring::npos)
            << value;
    }
}

TEST(Name, ReadsTheBitsThatAreThereOfACharacterThatBreaksOff) {
    CName name;
    name.decode(blob("300D 310B 3009 0603550403 0C0241C3"));
    EXPECT_EQ(name.toString(), L"CN=A\u0003");
}

TEST(Name, GoesThroughARecordAsABlob) {
    ScopedContext context;
    asn1data::ASN1T_Name record;
    // A length in more octets than it needs comes back as DER, without the octets behind.
    ASN1T_Name_traits::set(context.get(), record, blob("30810C 310A 3008 0603550403 0C0161 FF"));
    CBlob encoding;
    ASN1T_Name_traits::get(record, encoding);
    EXPECT_EQ(encoding, CName(L"CN=a").encode());
    CName name;
    ASN1T_Name_traits::get(record, name);
    EXPECT_EQ(name.toString(), L"CN=a");

    EXPECT_EQ(thrownCode([&] { ASN1T_Name_traits::set(context.get(), record, blob("3100")); }),
              CRYPT_E_ASN1_INTERNAL);
    const asn1data::ASN1T_Name nothing;
    EXPECT_EQ(thrownCode([&] { ASN1T_Name_traits::get(nothing, encoding); }),
              CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(thrownCode([&] { ASN1T_Name_traits::get(nothing, name); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(encoding, name.encode());
}

/// The string type of an encoded string.
StringType stringType(const CBlob& value) {
    switch (value.pbData()[0]) {
    case 12:
        return StringTypeUTF8;
    case 19:
        return StringTypePrintable;
    case 20:
        return StringTypeTeletex;
    case 22:
        return StringTypeIA5;
    case 28:
        return StringTypeUniversal;
    case 30:
        return StringTypeBMP;
    default:
        return StringTypeDefault;
    }
}

/// Parses the text of a name. The register's string types may differ from those that the name was
/// written in, so each pair gets the type of its original before the encoding is compared.
void expectTextComesBack(const CName& name) {
    CName parsed(name.toString().c_str());
    ASSERT_EQ(parsed.size(), name.size());
    auto original = name.begin();
    for (CRelativeDistinguishedName& rdn : parsed) {
        ASSERT_EQ(rdn.size(), original->size());
        auto originalPair = original->begin();
        for (CAttributeTypeAndValue& pair : rdn) {
            ASSERT_STREQ(pair.get_type(), originalPair->get_type());
            if (CATAVRegister::find(pair.get_type()) != CATAVRegister::registered_.end()) {
                pair.put_value_str(pair.get_value_str().c_str(),
                                   stringType(originalPair->get_value()));
            }
            ++originalPair;
        }
        ++original;
    }
    EXPECT_EQ(parsed.encode(), name.encode());
}

TEST(Name, OfEveryCertificateOfTheBundleComesBack) {
    if (tests::caBundle().empty()) {
        GTEST_SKIP() << tests::NoCaBundle;
    }
    int withSeparator = 0;
    for (const tests::Octets& octets : tests::caBundle()) {
        ASN1BERDecodeBuffer buffer(octets.data(), static_cast<int>(octets.size()));
        asn1data::ASN1T_Certificate certificate;
        asn1data::ASN1C_Certificate control(buffer, certificate);
        ASSERT_EQ(control.Decode(), 0);
        const auto& tbs = certificate.tbsCertificate;
        for (const asn1data::ASN1T_Name* record : {&tbs.issuer, &tbs.subject}) {
            CBlob encoded;
            ASN1T_Name_traits::get(*record, encoded);
            const unsigned char* begin = encoded.pbData();
            EXPECT_NE(std::search(octets.begin(), octets.end(), begin, begin + encoded.cbData()),
                      octets.end())
                << "the octets of the certificate";
            CName name;
            name.decode(encoded);
            EXPECT_EQ(name.encode(), encoded);
            EXPECT_FALSE(name.toString().empty());
            const bool hasSeparator =
                std::any_of(name.begin(), name.end(), [](const CRelativeDistinguishedName& rdn) {
                    return std::any_of(rdn.begin(), rdn.end(), [](const auto& pair) {
                        const CWStringProxy text = pair.get_value_str();
                        return std::wstring(text.c_str()).find_first_of(L",+") !=
                               std::wstring::npos;
                    });
                });
            if (hasSeparator) {
                ++withSeparator;
            } else {
                expectTextComesBack(name);
            }
        }
    }
    const int names = 2 * static_cast<int>(tests::caBundle().size());
    EXPECT_LT(withSeparator, names / 4);
    RecordProperty("names", names);
    RecordProperty("withSeparator", withSeparator);
}

TEST(Name, GivesEverythingBackWhenMemoryIsOut) {
    const wchar_t* const text = L"C=RU,O=a company+OU=a unit of some length,CN=somebody";
    const CName name(text);
    const CBlob encoded = name.encode();
    EXPECT_GT(tests::failEveryAllocation([&] { name.toString(); }), 3);
    EXPECT_GT(tests::failEveryAllocation([&] { CName read(text); }), 10);
    EXPECT_GT(tests::failEveryAllocation([&] {
                  ScopedContext context;
                  asn1data::ASN1T_Name record;
                  ASN1T_Name_traits::set(context.get(), record, encoded);
                  CBlob again;
                  ASN1T_Name_traits::get(record, again);
              }),
              10);
}

} // namespace
