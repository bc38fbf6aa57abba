#include <algorithm>
#include <cctype>
#include <set>
#include <stdexcept>
#include <string>

#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/runtime.h>
#include <gtest/gtest.h>

#include "support/ca_bundle.h"
#include "support/data_file.h"

namespace {

using namespace asn1data;
using tests::Octets;
using tests::toHex;

/// An element as a reader of DER sees it who knows nothing of the library.
struct Element {
    unsigned char identifier = 0;
    Octets whole;
    Octets contents;
};

/// Takes an octet string apart into the elements that stand in it.
std::vector<Element> elementsOf(const Octets& octets) {
    std::vector<Element> elements;
    std::size_t position = 0;
    while (position < octets.size()) {
        const std::size_t start = position++;
        std::size_t length = octets.at(position++);
        if (length >= 0x80) {
            std::size_t count = length & 0x7F;
            for (length = 0; count > 0; --count) {
                length = length << 8 | octets.at(position++);
            }
        }
        const auto at = [&](std::size_t offset) {
            return octets.begin() + static_cast<std::ptrdiff_t>(offset);
        };
        if (position + length > octets.size()) {
            throw std::out_of_range("element beyond its parent");
        }
        elements.push_back({octets[start],
                            {at(start), at(position + length)},
                            {at(position), at(position + length)}});
        position += length;
    }
    return elements;
}

/// The members of a certificate's tbsCertificate; without a version, one is put in front.
std::vector<Element> contentOf(const Octets& certificate) {
    const Octets tbs = elementsOf(elementsOf(certificate).at(0).contents).at(0).contents;
    std::vector<Element> members = elementsOf(tbs);
    if (members.at(0).identifier != 0xA0) {
        members.insert(members.begin(), Element{});
    }
    return members;
}

class Certificates : public testing::Test {
protected:
    void SetUp() override {
        if (tests::caBundle().empty()) {
            GTEST_SKIP() << tests::NoCaBundle;
        }
    }
};

/// The text of an INTEGER: two digits an octet without zero octets in front, or one digit 0 in
/// their place where the number would turn negative without.
std::string integerText(const Octets& contents) {
    auto first = std::find_if(contents.begin(), contents.end(), [](auto c) { return c != 0; });
    if (first == contents.end()) {
        return "0x0";
    }
    std::string text = first != contents.begin() && (*first & 0x80) != 0 ? "0x0" : "0x";
    for (char c : toHex(Octets(first, contents.end()))) {
        if (c != ' ') {
            text += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
    }
    return text;
}

/// A decoded certificate with the buffer that its memory belongs to.
struct Decoded {
    explicit Decoded(const Octets& message)
        : buffer(message.data(), static_cast<int>(message.size())), control(buffer, value) {
        EXPECT_EQ(control.Decode(), 0);
    }
    ASN1BERDecodeBuffer buffer;
    ASN1T_Certificate value;
    ASN1C_Certificate control;
};

template <class Control, class Record>
std::string encode(Record& value) {
    ASN1BEREncodeBuffer output;
    const int size = Control(output, value).Encode();
    return size < 0 ? rtStatusName(size)
                    : toHex(output.getMsgPtr(), static_cast<std::size_t>(size));
}

TEST_F(Certificates, ComeBackOctetForOctet) {
    for (const Octets& message : tests::caBundle()) {
        Decoded decoded(message);
        EXPECT_EQ(encode<ASN1C_Certificate>(decoded.value), toHex(message));
    }
}

TEST_F(Certificates, HoldWhatTheirOctetsSay) {
    for (const Octets& message : tests::caBundle()) {
        Decoded decoded(message);
        ASN1T_TBSCertificate& tbs = decoded.value.tbsCertificate;
        const std::vector<Element> members = contentOf(message);

        EXPECT_EQ(tbs.m.versionPresent, members[0].identifier == 0xA0);
        if (tbs.m.versionPresent) {
            EXPECT_EQ(tbs.version, members[0].contents.back());
        }
        EXPECT_EQ(tbs.serialNumber, integerText(members[1].contents));
        EXPECT_EQ(encode<ASN1C_Name>(tbs.issuer), toHex(members[3].whole));
        EXPECT_EQ(encode<ASN1C_Validity>(tbs.validity), toHex(members[4].whole));
        EXPECT_EQ(encode<ASN1C_Name>(tbs.subject), toHex(members[5].whole));
        EXPECT_EQ(tbs.subject.u.rdnSequence->count, elementsOf(members[5].contents).size());

        const Octets notBefore = elementsOf(members[4].contents).at(0).contents;
        const ASN1T_Time& time = tbs.validity.notBefore;
        EXPECT_EQ(time.t == 1 ? time.u.utcTime : time.u.generalTime,
                  std::string(notBefore.begin(), notBefore.end()));

        // A BIT STRING's contents begin with the count of unused bits.
        const std::vector<Element> key = elementsOf(members[6].contents);
        const ASN1TDynBitStr& keyBits = tbs.subjectPublicKeyInfo.subjectPublicKey;
        EXPECT_EQ(keyBits.numbits, (key[1].contents.size() - 1) * 8 - key[1].contents[0]);
        EXPECT_EQ(toHex(keyBits.data, keyBits.numbits / 8),
                  toHex(key[1].contents.data() + 1, key[1].contents.size() - 1));

        ASSERT_EQ(tbs.m.extensionsPresent, members.back().identifier == 0xA3);
        if (tbs.m.extensionsPresent) {
            const std::vector<Element> extensions =
                elementsOf(elementsOf(members.back().contents).at(0).contents);
            ASSERT_EQ(tbs.extensions.count, extensions.size());
            const Asn1RTDListNode* node = tbs.extensions.head;
            for (const Element& expected : extensions) {
                const auto* extension = static_cast<const ASN1T_Extension*>(node->data);
                const std::vector<Element> parts = elementsOf(expected.contents);
                EXPECT_EQ(toHex(extension->extnValue.data, extension->extnValue.numocts),
                          toHex(parts.back().contents));
                EXPECT_EQ(extension->critical != 0, parts.size() == 3);
                node = node->next;
            }
        }
    }
}

TEST_F(Certificates, CopiesOutliveTheirOrigin) {
    const Octets& message = tests::caBundle().front();
    ASN1T_Certificate copy;
    ASN1T_Certificate* heapCopy = nullptr;
    {
        Decoded decoded(message);
        EXPECT_EQ(decoded.control.getCopy(&decoded.value), &decoded.value);
        decoded.control.getCopy(&copy);
        heapCopy = decoded.control.newCopy();
        ASN1C_Certificate sharing(decoded.control);
        EXPECT_EQ(encode<ASN1C_Certificate>(*sharing.msgData), toHex(message));
    }
    EXPECT_EQ(encode<ASN1C_Certificate>(copy), toHex(message));
    EXPECT_EQ(encode<ASN1C_Certificate>(*heapCopy), toHex(message));
    delete heapCopy;
}

TEST_F(Certificates, ReleasedNamesLeaveNothingBehind) {
    for (const Octets& certificate : tests::caBundle()) {
        const Octets message = contentOf(certificate).at(5).whole;
        ASN1BERDecodeBuffer buffer(message.data(), static_cast<int>(message.size()));
        ASN1T_Name name;
        ASSERT_EQ(ASN1C_Name(buffer, name).Decode(), 0);
        // But for the record of a resolved value, whose contents go and whose block stays.
        std::set<const void*> staying;
        for (const Asn1RTDListNode* rdn = name.u.rdnSequence->head; rdn != nullptr;
             rdn = rdn->next) {
            const auto* parts = static_cast<const ASN1T_RelativeDistinguishedName*>(rdn->data);
            for (const Asn1RTDListNode* node = parts->head; node != nullptr; node = node->next) {
                staying.insert(
                    static_cast<const ASN1T_AttributeTypeAndValue*>(node->data)->value.decoded);
            }
        }
        ASN1CTXT* ctxt = buffer.getCtxtPtr();
        asn1Free_Name(ctxt, &name);
        const auto* block = static_cast<const ASN1MemHeap*>(ctxt->memHeap)->blockList;
        for (; block != nullptr; block = block->next) {
            EXPECT_EQ(staying.count(block + 1), 1u) << block->size << " octets were left";
        }
    }
}

// A resolved attribute value that did not arrive in DER is encoded anew. The octets must not live
// shorter than the value that holds them: encode buffers come and go.
TEST(Name, IsEncodedAgainAfterItsEncodeBufferWent) {
    const Octets message = tests::fromHex("30 0E 31 0C 30 0A 06 03 55 04 06 13 81 02 44 45");
    ASN1BERDecodeBuffer input(message.data(), static_cast<int>(message.size()));
    ASN1T_Name name;
    ASN1C_Name control(input, name);
    ASSERT_EQ(control.Decode(), 0);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(encode<ASN1C_Name>(name), "30 0D 31 0B 30 09 06 03 55 04 06 13 02 44 45");
    }
    ASN1T_Name copy(control);
    EXPECT_EQ(encode<ASN1C_Name>(copy), "30 0D 31 0B 30 09 06 03 55 04 06 13 02 44 45");
    asn1Free_Name(input.getCtxtPtr(), &name);
}

TEST(Certificate, EveryFailureIsTold) {
    tests::forEachRow("certificates.txt", "messages", [&](const tests::DataRow& row) {
        const Octets message = tests::fromHex(row["message"]);
        ASN1BERDecodeBuffer buffer(message.data(), static_cast<int>(message.size()));
        ASN1T_Certificate value;
        EXPECT_EQ(ASN1C_Certificate(buffer, value).Decode(), row.number("status"));
        EXPECT_EQ(buffer.getCtxtPtr()->errInfo.status, row.number("status"));
    });
}

} // namespace
