#include <gtest/gtest.h>

#ifdef BREVANTIS_HAVE_LIBCRYPTO

#include <openssl/asn1.h>
#include <openssl/bn.h>
#include <openssl/cms.h>
#include <openssl/err.h>
#include <openssl/ocsp.h>
#include <openssl/pkcs12.h>
#include <openssl/ts.h>
#include <openssl/x509.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime.h>

#include "interop/messages.h"
#include "support/mutation.h"
#include "support/walk_agreement.h"

// What this library and libcrypto make of the same octets: whether they take them, and what stands
// in the fields that both give. Each difference belongs to a class that has a name and a reason.

namespace {

using namespace asn1data;
using namespace interop;
using tests::Octets;

/// Values of fields by their names.
using Fields = std::map<std::string, std::string>;

std::string hex(const unsigned char* data, std::size_t size) {
    return size != 0 ? tests::toHex(data, size) : "";
}

// Of libcrypto.

template <class T, void (*Free)(T*)>
struct Freed {
    void operator()(T* value) const { Free(value); }
};

std::string stringText(const ASN1_STRING* string) {
    return hex(ASN1_STRING_get0_data(string), static_cast<std::size_t>(ASN1_STRING_length(string)));
}

std::string numberText(const ASN1_INTEGER* number) {
    const std::unique_ptr<BIGNUM, Freed<BIGNUM, BN_free>> value(
        ASN1_INTEGER_to_BN(number, nullptr));
    char* const text = BN_bn2hex(value.get());
    std::string digits = text;
    OPENSSL_free(text);
    return digits;
}

std::string identifierText(const ASN1_OBJECT* object) {
    char text[1024] = {};
    OBJ_obj2txt(text, sizeof text, object, 1);
    return text;
}

std::string nameText(const X509_NAME* name) {
    std::string text;
    for (int i = 0; i < X509_NAME_entry_count(name); ++i) {
        const X509_NAME_ENTRY* const entry = X509_NAME_get_entry(name, i);
        text += std::to_string(X509_NAME_ENTRY_set(entry)) + " " +
                identifierText(X509_NAME_ENTRY_get_object(entry)) + "=" +
                stringText(X509_NAME_ENTRY_get_data(entry)) + "; ";
    }
    return text;
}

std::string timeText(const ASN1_TIME* time) {
    return time == nullptr ? ""
                           : std::string(reinterpret_cast<const char*>(time->data),
                                         static_cast<std::size_t>(time->length));
}

void takeExtensions(const STACK_OF(X509_EXTENSION) * extensions, Fields& fields) {
    for (int i = 0; i < X509v3_get_ext_count(extensions); ++i) {
        X509_EXTENSION* const extension = X509v3_get_ext(extensions, i);
        fields["extension " + std::to_string(i)] =
            identifierText(X509_EXTENSION_get_object(extension)) +
            (X509_EXTENSION_get_critical(extension) != 0 ? " critical " : " ") +
            stringText(X509_EXTENSION_get_data(extension));
    }
}

void takeFields(X509* certificate, Fields& fields) {
    fields["serial number"] = numberText(X509_get0_serialNumber(certificate));
    fields["issuer"] = nameText(X509_get_issuer_name(certificate));
    fields["subject"] = nameText(X509_get_subject_name(certificate));
    fields["not before"] = timeText(X509_get0_notBefore(certificate));
    fields["not after"] = timeText(X509_get0_notAfter(certificate));
    fields["key"] = stringText(X509_get0_pubkey_bitstr(certificate));
    takeExtensions(X509_get0_extensions(certificate), fields);
}

void takeFields(X509_CRL* list, Fields& fields) {
    fields["issuer"] = nameText(X509_CRL_get_issuer(list));
    fields["this update"] = timeText(X509_CRL_get0_lastUpdate(list));
    fields["next update"] = timeText(X509_CRL_get0_nextUpdate(list));
    const STACK_OF(X509_REVOKED)* const entries = X509_CRL_get_REVOKED(list);
    std::map<std::string, int> serials;
    for (int i = 0; i < sk_X509_REVOKED_num(entries); ++i) {
        ++serials[numberText(X509_REVOKED_get0_serialNumber(sk_X509_REVOKED_value(entries, i)))];
    }
    for (const auto& [serial, count] : serials) {
        fields["entry " + serial] = std::to_string(count);
    }
    takeExtensions(X509_CRL_get0_extensions(list), fields);
}

void takeFields(X509_REQ* request, Fields& fields) {
    fields["subject"] = nameText(X509_REQ_get_subject_name(request));
}

void takeFields(void* /*other*/, Fields& /*fields*/) {}

struct Outcome {
    bool accepted = false;
    std::size_t end = 0;
    std::string reason; ///< of a refusal
    Fields fields;
};

template <class T, T* (*Read)(T**, const unsigned char**, long), void (*Free)(T*)>
Outcome peer(const Octets& message) {
    ERR_clear_error();
    Outcome outcome;
    const unsigned char* at = message.data();
    const std::unique_ptr<T, Freed<T, Free>> value(
        Read(nullptr, &at, static_cast<long>(message.size())));
    outcome.accepted = value != nullptr;
    if (!outcome.accepted) {
        const char* const reason = ERR_reason_error_string(ERR_get_error());
        outcome.reason = reason != nullptr ? reason : "no reason";
        return outcome;
    }
    outcome.end = static_cast<std::size_t>(at - message.data());
    takeFields(value.get(), outcome.fields);
    return outcome;
}

const std::map<std::string, Outcome (*)(const Octets&)> peers = {
    {"Certificate", peer<X509, d2i_X509, X509_free>},
    {"CertificateList", peer<X509_CRL, d2i_X509_CRL, X509_CRL_free>},
    {"CertificationRequest", peer<X509_REQ, d2i_X509_REQ, X509_REQ_free>},
    {"ContentInfo", peer<CMS_ContentInfo, d2i_CMS_ContentInfo, CMS_ContentInfo_free>},
    {"EncryptedPrivateKeyInfo", peer<X509_SIG, d2i_X509_SIG, X509_SIG_free>},
    {"OCSPRequest", peer<OCSP_REQUEST, d2i_OCSP_REQUEST, OCSP_REQUEST_free>},
    {"OCSPResponse", peer<OCSP_RESPONSE, d2i_OCSP_RESPONSE, OCSP_RESPONSE_free>},
    {"PFX", peer<PKCS12, d2i_PKCS12, PKCS12_free>},
    {"PrivateKeyInfo",
     peer<PKCS8_PRIV_KEY_INFO, d2i_PKCS8_PRIV_KEY_INFO, PKCS8_PRIV_KEY_INFO_free>},
    {"SubjectPublicKeyInfo", peer<X509_PUBKEY, d2i_X509_PUBKEY, X509_PUBKEY_free>},
    {"TimeStampReq", peer<TS_REQ, d2i_TS_REQ, TS_REQ_free>},
    {"TimeStampResp", peer<TS_RESP, d2i_TS_RESP, TS_RESP_free>},
};

// Of this library.

/// Digits as BN_bn2hex has them.
std::string numberText(const char* text) {
    BIGNUM* number = nullptr;
    // Where the digits fill octets and the first bit is set, the number is negative.
    std::string digits = text + 2;
    const bool negative = digits.size() % 2 == 0 && digits[0] >= '8';
    BN_hex2bn(&number, digits.c_str());
    if (negative) {
        BIGNUM* const power = BN_new();
        BN_set_bit(power, static_cast<int>(digits.size() * 4));
        BN_sub(number, number, power);
        BN_free(power);
    }
    char* const result = BN_bn2hex(number);
    digits = result;
    OPENSSL_free(result);
    BN_free(number);
    return digits;
}

std::string identifierText(const ASN1TObjId& identifier) {
    std::vector<char> text(rtOidToStrLen(&identifier) + 1);
    rtOidToStr(&identifier, text.data(), text.size());
    return text.data();
}

constexpr unsigned sequenceIdentifier = 0x30;

std::string nameText(const ASN1T_Name& name) {
    std::string text;
    int set = 0;
    const Asn1RTDList& names = *name.u.rdnSequence;
    for (const Asn1RTDListNode* node = names.head; node != nullptr; node = node->next, ++set) {
        const auto& relative = *static_cast<const Asn1RTDList*>(node->data);
        for (const Asn1RTDListNode* pair = relative.head; pair != nullptr; pair = pair->next) {
            const auto& attribute = *static_cast<const ASN1T_AttributeTypeAndValue*>(pair->data);
            ASN1Header header{};
            rtReadHeader(attribute.value.data, attribute.value.numocts, &header);
            const unsigned size = header.size;
            text += std::to_string(set) + " " + identifierText(attribute.type) + "=" +
                    hex(attribute.value.data + size, attribute.value.numocts - size) + "; ";
        }
    }
    return text;
}

std::string timeText(const ASN1T_Time& time) {
    return time.t == 0 ? "" : time.u.utcTime;
}

void takeExtensions(const Asn1RTDList& extensions, Fields& fields) {
    int i = 0;
    for (const Asn1RTDListNode* node = extensions.head; node != nullptr; node = node->next, ++i) {
        const auto& extension = *static_cast<const ASN1T_Extension*>(node->data);
        fields["extension " + std::to_string(i)] =
            identifierText(extension.extnID) + (extension.critical != 0 ? " critical " : " ") +
            hex(extension.extnValue.data, extension.extnValue.numocts);
    }
}

void takeFields(const ASN1T_Certificate& certificate, Fields& fields) {
    const ASN1T_TBSCertificate& contents = certificate.tbsCertificate;
    fields["serial number"] = numberText(contents.serialNumber);
    fields["issuer"] = nameText(contents.issuer);
    fields["subject"] = nameText(contents.subject);
    fields["not before"] = timeText(contents.validity.notBefore);
    fields["not after"] = timeText(contents.validity.notAfter);
    const ASN1TDynBitStr& key = contents.subjectPublicKeyInfo.subjectPublicKey;
    fields["key"] = hex(key.data, (key.numbits + 7) / 8);
    if (contents.m.extensionsPresent) {
        takeExtensions(contents.extensions, fields);
    }
}

void takeFields(const ASN1T_CertificateList& list, Fields& fields) {
    const ASN1T_TBSCertList& contents = list.tbsCertList;
    fields["issuer"] = nameText(contents.issuer);
    fields["this update"] = timeText(contents.thisUpdate);
    fields["next update"] = contents.m.nextUpdatePresent ? timeText(contents.nextUpdate) : "";
    std::map<std::string, int> serials;
    if (contents.m.revokedCertificatesPresent) {
        const Asn1RTDList& entries = contents.revokedCertificates;
        for (const Asn1RTDListNode* node = entries.head; node != nullptr; node = node->next) {
            ++serials[numberText(
                static_cast<const ASN1T_TBSCertList_revokedCertificates_element*>(node->data)
                    ->userCertificate)];
        }
    }
    for (const auto& [serial, count] : serials) {
        fields["entry " + serial] = std::to_string(count);
    }
    if (contents.m.crlExtensionsPresent) {
        takeExtensions(contents.crlExtensions, fields);
    }
}

void takeFields(const ASN1T_CertificationRequest& request, Fields& fields) {
    fields["subject"] = nameText(request.certificationRequestInfo.subject);
}

Outcome own(const TypeDescription& type, const Octets& message) {
    Outcome outcome;
    if (message.empty()) { // without octets there is no size to state
        return outcome;
    }
    tests::Reader reader(message);
    void* const value = family::newRecord(reader, type);
    unsigned char* const octets = reader->buffer.data;
    int status = xd_setp(reader, octets, static_cast<int>(message.size()), nullptr, nullptr);
    if (status == 0) {
        status = family::decode(reader, type, value, ASN1TagExplicit, 0);
    }
    outcome.accepted = status == 0;
    outcome.end = reader.position();
    WalkVisitor visitor;
    outcome.reason = failureText(walk(type, octets, message.size(), visitor).failure);
    if (outcome.accepted) {
        const std::string name = type.name;
        if (name == "Certificate") {
            takeFields(*static_cast<const ASN1T_Certificate*>(value), outcome.fields);
        } else if (name == "CertificateList") {
            takeFields(*static_cast<const ASN1T_CertificateList*>(value), outcome.fields);
        } else if (name == "CertificationRequest") {
            takeFields(*static_cast<const ASN1T_CertificationRequest*>(value), outcome.fields);
        }
    }
    return outcome;
}

/// The class of messages that only this library takes, by the reason that libcrypto gives. With any
/// other reason it looked into what stays as it is here.
const std::map<std::string, const char*> onlyOurs = {
    {"too long", "lengths of what is inside"},
    {"header too long", "lengths of what is inside"},
    {"bad object header", "lengths of what is inside"},
    {"sequence length mismatch", "lengths of what is inside"},
    {"explicit length mismatch", "lengths of what is inside"},
    {"missing eoc", "lengths of what is inside"},
    {"sequence not constructed", "the form bit"},
    {"type not constructed", "the form bit"},
    {"type not primitive", "the form bit"},
    {"explicit tag not constructed", "the form bit"},
    {"illegal padding", "octets that a primitive can do without"},
    {"illegal zero content", "octets that a primitive can do without"},
    {"too small", "octets that a primitive can do without"},
    {"invalid bit string bits left", "octets that a primitive can do without"},
    {"invalid object encoding", "octets that a primitive can do without"},
    {"invalid utf8string", "octets that a primitive can do without"},
    {"universalstring is wrong length", "octets that a primitive can do without"},
    {"token not present", "rules between fields"},
    {"token present", "rules between fields"},
    {"bmpstring is wrong length", "octets that a primitive can do without"},
    {"string too short", "octets that a primitive can do without"},
};

/// Notes open values that stay as they are.
class RawValues : public WalkVisitor {
public:
    WalkAction enter(const WalkElement& element) override { return primitive(element); }
    WalkAction primitive(const WalkElement& element) override {
        const Shape shape = element.type != nullptr ? element.type->shape : Shape::OpenType;
        seen = seen || shape == Shape::OpenType ||
               (shape == Shape::OctetString && !element.encapsulates);
        return WalkAction::Continue;
    }
    bool seen = false;
};

/// The class of a message that one of them alone takes; empty for one that has none.
std::string classOf(const TypeDescription& type, const Octets& message, const Outcome& ours,
                    const Outcome& theirs) {
    if (ours.accepted) {
        const auto row = onlyOurs.find(theirs.reason);
        RawValues raw;
        walk(type, message.data(), message.size(), raw);
        return row != onlyOurs.end() ? row->second : raw.seen ? "values without a type" : "";
    }
    WalkVisitor visitor;
    const WalkFailure failure = walk(type, message.data(), message.size(), visitor).failure;
    if (failure.partOffset != failure.offset || failure.assembled) {
        return "values with a type";
    }
    if (failure.expectation == Expectation::InRange && failure.status == ASN1S_INVALID_ENUM) {
        return "numbers without a name";
    }
    const bool string = failure.type != nullptr && failure.type->tag == builtin::octetString.tag;
    if (failure.finding == Finding::Identifier && string &&
        (message[failure.elementOffset] & 0x20u) != 0) {
        return "segments of another tag";
    }
    if (failure.finding == Finding::Identifier && (failure.foundNumber & 0x1F) == 0x1F) {
        return "low tags in the long form";
    }
    if (failure.finding == Finding::Identifier && failure.foundNumber == 0) {
        return "a zero for an identifier";
    }
    return failure.status == ASN1S_INVALID_CHOICE &&
                   (message[failure.offset] | 0x20u) == sequenceIdentifier
               ? "the form bit"
               : "";
}

/// The class of a field that differs; empty for one that has none.
/// @param exact whether the message says nothing that the record cannot hold
std::string classOf(const std::string& ours, const std::string& theirs, bool exact) {
    if (!exact && theirs.compare(0, ours.size() + 1, ours.c_str(), ours.size() + 1) == 0) {
        return "text behind a zero";
    }
    if (!exact && ours.find('=') != std::string::npos) {
        return "arcs beyond 32 bits";
    }
    const bool sameLength = ours.size() == theirs.size() && ours.size() > 2;
    return sameLength && ours.compare(0, ours.size() - 2, theirs, 0, theirs.size() - 2) == 0
               ? "bits left unused"
               : "";
}

/// Compares outcomes and counts them by their classes.
class Agreement {
public:
    void check(const Message& message, const Octets& octets) {
        const TypeDescription& type = *findType(message.type.c_str());
        const Outcome ours = own(type, octets);
        const Outcome theirs = peers.at(message.type)(octets);
        if (ours.accepted != theirs.accepted) {
            count(classOf(type, octets, ours, theirs),
                  ours.accepted ? "libcrypto: " + theirs.reason : ours.reason);
            return;
        }
        ++counts[ours.accepted ? "(both take it)" : "(both refuse it)"];
        if (!ours.accepted) {
            return;
        }
        EXPECT_EQ(ours.end, theirs.end);
        EXPECT_EQ(ours.fields.size(), theirs.fields.size());
        const bool exact = explain(type, octets.data(), octets.size(), ASN1F_EXACT).status == 0;
        for (const auto& [name, value] : ours.fields) {
            const auto other = theirs.fields.find(name);
            const std::string theirValue = other != theirs.fields.end() ? other->second : "none";
            if (theirValue != value) {
                count(classOf(value, theirValue, exact), name + ": " + value + " / " + theirValue);
            }
        }
    }

    std::map<std::string, unsigned> counts;

private:
    void count(const std::string& name, const std::string& what) {
        EXPECT_NE(name, "") << what;
        ++counts[name];
    }
};

TEST(LibcryptoAgreement, DifferencesHaveAName) {
    std::vector<Message> messages;
    for (const Message& message : messagesOf(TESTS_INTEROP_MESSAGES)) {
        if (peers.count(message.type) != 0) {
            messages.push_back(message);
        }
    }
    if (messages.empty()) {
        GTEST_SKIP() << "no messages: the openssl command is missing";
    }
    const char* const wanted = std::getenv("BREVANTIS_MUTATIONS");
    const std::size_t mutations = wanted != nullptr ? std::strtoul(wanted, nullptr, 10) : 1000;
    std::mt19937 random(1);
    Agreement agreement;
    for (std::size_t i = 0; i < messages.size() + mutations && !HasFailure(); ++i) {
        const Message& message = messages[i % messages.size()];
        SCOPED_TRACE(message.name);
        Octets octets = message.octets;
        for (std::size_t harm = 0; i >= messages.size() && harm <= random() % 3; ++harm) {
            if (!octets.empty()) {
                tests::damage(octets, random);
            }
        }
        SCOPED_TRACE(tests::toHex(octets));
        agreement.check(message, octets);
    }
    EXPECT_GT(agreement.counts["(both take it)"], mutations / 10 + messages.size() / 2);
    const Octets document = readFile(TESTS_HARDENING_DOCUMENT);
    const std::string text(document.begin(), document.end());
    for (const auto& [name, count] : agreement.counts) {
        std::printf("%7u %s\n", count, name.c_str());
        EXPECT_TRUE(name[0] == '(' || text.find("| " + name + " |") != std::string::npos) << name;
    }
}

} // namespace

#else

TEST(LibcryptoAgreement, DifferencesHaveAName) {
    GTEST_SKIP() << "libcrypto is missing";
}

#endif
