#include <fnmatch.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime.h>
#include <gtest/gtest.h>

#include "interop/expectations.h"
#include "interop/messages.h"
#include "support/hex.h"
#include "support/json_identity.h"
#include "support/mutation.h"
#include "support/value_text.h"
#include "support/value_walk.h"
#include "support/walk_agreement.h"

// Messages that the openssl command made (make_messages.sh): each is decoded, open values and what
// octet strings hold included, and encoded again. What is DER comes back octet for octet; what is
// not comes back as DER that says the same, and that the command accepts.

namespace {

using namespace asn1data;
using namespace interop;
using tests::Octets;
namespace fs = std::filesystem;

const fs::path Directory = TESTS_INTEROP_MESSAGES;

void writeFile(const fs::path& path, const Octets& octets) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    std::copy(octets.begin(), octets.end(), std::ostreambuf_iterator<char>(file));
}

bool matches(const char* pattern, const std::string& text) {
    return fnmatch(pattern, text.c_str(), 0) == 0;
}

bool isIdentifier(const ASN1TObjId& identifier, const std::vector<unsigned>& arcs) {
    return std::equal(arcs.begin(), arcs.end(), identifier.subid,
                      identifier.subid + identifier.numids);
}

Octets encode(const TypeDescription& type, const void* value, int& status) {
    ASN1BEREncodeBuffer output;
    status = DescribedControl(output, const_cast<void*>(value), type).Encode();
    return status < 0 ? Octets() : Octets(output.getMsgPtr(), output.getMsgPtr() + status);
}

/// A decoded message with the buffer that its memory belongs to. The octets are copied, so that a
/// sanitizer sees every read outside them.
class Decoded {
public:
    Decoded(const TypeDescription& describedType, const Octets& message)
        : type(describedType), octets_(new unsigned char[message.size()]),
          buffer_((std::copy(message.begin(), message.end(), octets_.get()), octets_.get()),
                  static_cast<int>(message.size())),
          value(family::newRecord(buffer_.getCtxtPtr(), type)),
          status(DescribedControl(buffer_, value, type).Decode()) {}

    unsigned end() { return buffer_.getCtxtPtr()->buffer.byteIndex; }

    const TypeDescription& type;

private:
    std::unique_ptr<unsigned char[]> octets_;
    ASN1BERDecodeBuffer buffer_;

public:
    void* const value;
    const int status;
};

/// Decodes and encodes by the class that a program would use.
template <class Control, class Record>
int recode(const Octets& message, Octets& result) {
    ASN1BERDecodeBuffer input(message.data(), static_cast<int>(message.size()));
    Record value;
    Control control(input, value);
    if (const int status = control.Decode(); status != 0) {
        return status;
    }
    ASN1BEREncodeBuffer output;
    const int size = control.EncodeTo(output);
    if (size >= 0) {
        result.assign(output.getMsgPtr(), output.getMsgPtr() + size);
    }
    return std::min(size, 0);
}

const std::map<std::string, int (*)(const Octets&, Octets&)> controls = {
    {"AuthenticatedSafe", recode<ASN1C_AuthenticatedSafe, ASN1T_AuthenticatedSafe>},
    {"Certificate", recode<ASN1C_Certificate, ASN1T_Certificate>},
    {"CertificateList", recode<ASN1C_CertificateList, ASN1T_CertificateList>},
    {"CertificationRequest", recode<ASN1C_CertificationRequest, ASN1T_CertificationRequest>},
    {"ContentInfo", recode<ASN1C_ContentInfo, ASN1T_ContentInfo>},
    {"EncryptedPrivateKeyInfo",
     recode<ASN1C_EncryptedPrivateKeyInfo, ASN1T_EncryptedPrivateKeyInfo>},
    {"OCSPRequest", recode<ASN1C_OCSPRequest, ASN1T_OCSPRequest>},
    {"OCSPResponse", recode<ASN1C_OCSPResponse, ASN1T_OCSPResponse>},
    {"PFX", recode<ASN1C_PFX, ASN1T_PFX>},
    {"PKIMessage", recode<ASN1C_PKIMessage, ASN1T_PKIMessage>},
    {"PrivateKeyInfo", recode<ASN1C_PrivateKeyInfo, ASN1T_PrivateKeyInfo>},
    {"SafeContents", recode<ASN1C_SafeContents, ASN1T_SafeContents>},
    {"SubjectPublicKeyInfo", recode<ASN1C_SubjectPublicKeyInfo, ASN1T_SubjectPublicKeyInfo>},
    {"TimeStampReq", recode<ASN1C_TimeStampReq, ASN1T_TimeStampReq>},
    {"TimeStampResp", recode<ASN1C_TimeStampResp, ASN1T_TimeStampResp>},
    {"TimeStampToken", recode<ASN1C_TimeStampToken, ASN1T_TimeStampToken>},
};

/// Whether octets are elements with low tag numbers of definite, minimal length, and no string is
/// in parts.
bool looksLikeDer(const unsigned char* octets, std::size_t count) {
    for (std::size_t at = 0; at < count;) {
        const unsigned char identifier = octets[at++];
        std::size_t length = at < count ? octets[at++] : 0x80;
        if (length >= 0x80) {
            const std::size_t more = length & 0x7F;
            length = 0;
            for (std::size_t i = 0; i < more && at < count; ++i) {
                length = length << 8 | octets[at++];
            }
            if (more == 0 || length < 0x80 || length >> 8 * (more - 1) == 0) {
                return false;
            }
        }
        const bool constructed = (identifier & 0x20) != 0;
        const bool universal = (identifier & 0xC0) == 0;
        const bool sequenceOrSet = identifier == 0x30 || identifier == 0x31;
        if (length > count - at || (universal && constructed && !sequenceOrSet) ||
            (constructed && !looksLikeDer(octets + at, length))) {
            return false;
        }
        at += length;
    }
    return true;
}

/// Whether the command accepts octets in the place of the message that it was written for.
bool commandAccepts(std::string command, const std::string& name, const Octets& octets) {
    const fs::path file = Directory / "work/recoded" / (name + ".der");
    writeFile(file, octets);
    for (std::size_t at = 0; (at = command.find('@', at)) != std::string::npos;) {
        command.replace(at, 1, file.string());
    }
    command.insert(0, "cd '" + (Directory / "work").string() + "' && ");
    return std::system(("(" + command + ") >/dev/null 2>&1").c_str()) == 0;
}

class Interop : public testing::Test {
protected:
    static void SetUpTestSuite() { messages = messagesOf(Directory); }
    void SetUp() override {
        if (messages.empty()) {
            GTEST_SKIP() << "no messages: the openssl command is missing, or make_messages.sh was "
                            "not run";
        }
    }
    static const Message& named(const std::string& name) {
        const auto found =
            std::find_if(messages.begin(), messages.end(),
                         [&](const Message& message) { return message.name == name; });
        return found != messages.end() ? *found : throw std::out_of_range(name);
    }

    static std::vector<Message> messages;
};

std::vector<Message> Interop::messages;

/// Counts the open values of a message, checks that those with a known identifier are typed, and
/// collects what stands in octets.
class OpenValues : public tests::ValueVisitor {
public:
    explicit OpenValues(const Message& message) : message_(message) {}

    void value(const TypeDescription& type, const void* value) override {
        const std::string name = type.name;
        int status = 0;
        if (name == "SignedOpenType") {
            derive("Certificate", encode(type, value, status));
        } else if (name == "SubjectPublicKeyInfo") {
            const auto& info = *static_cast<const ASN1T_SubjectPublicKeyInfo*>(value);
            if (isIdentifier(info.algorithm.algorithm, {1, 2, 840, 113549, 1, 1, 1})) {
                const ASN1TDynBitStr& key = info.subjectPublicKey;
                derive("RsaPubKey", Octets(key.data, key.data + key.numbits / 8));
            }
        }
    }

    void openValue(const ASN1TObjId& identifier, const ObjectDescription* object,
                   const Asn1TObject& slot) override {
        if (object == nullptr || object->type == nullptr) {
            ++raw;
            for (const FurtherType& further : furtherTypes) {
                if (isIdentifier(identifier, further.identifier)) {
                    derive(further.type, Octets(slot.data, slot.data + slot.numocts));
                }
            }
            return;
        }
        ++typed;
        objects.insert(object->name);
        EXPECT_NE(slot.decoded, nullptr) << message_.name << ": " << object->name;
        const std::string name = object->name;
        if (name == "simpleData" && message_.type == "PFX") {
            deriveContents("AuthenticatedSafe", slot);
        } else if (name == "simpleData" && message_.type == "AuthenticatedSafe") {
            deriveContents("SafeContents", slot);
        } else if (name == "x509Certificate") {
            deriveContents("Certificate", slot);
        }
    }

    unsigned typed = 0;
    unsigned raw = 0;
    std::set<std::string> objects;
    std::vector<Message> derived;

private:
    void deriveContents(const char* type, const Asn1TObject& slot) {
        const auto& string = *static_cast<const ASN1TDynOctStr*>(slot.decoded);
        derive(type, Octets(string.data, string.data + string.numocts));
    }

    void derive(const char* type, const Octets& octets) {
        const std::string origin = message_.name.substr(message_.name.find('/') + 1);
        derived.push_back({type, type + ("/" + origin) + "." + std::to_string(derived.size() + 1),
                           true, octets, ""});
    }

    const Message& message_;
};

struct Tally {
    unsigned messages = 0, identical = 0, equal = 0, excepted = 0;
};

void checkWhatComesBack(const Message& message, Decoded& decoded, const Exception* exception,
                        Tally& tally) {
    int status = 0;
    const Octets octets = encode(decoded.type, decoded.value, status);
    ASSERT_GE(status, 0);
    if (const auto control = controls.find(message.type); control != controls.end()) {
        Octets same;
        EXPECT_EQ(control->second(message.octets, same), 0);
        EXPECT_EQ(same, octets);
    }
    if (message.isDer) {
        const auto place = std::mismatch(octets.begin(), octets.end(), message.octets.begin(),
                                         message.octets.end())
                               .first;
        EXPECT_EQ(octets == message.octets, exception == nullptr)
            << "differs from octet " << place - octets.begin();
        tally.excepted += exception != nullptr ? 1u : 0u;
        tally.identical += octets == message.octets ? 1u : 0u;
        return;
    }
    Decoded again(decoded.type, octets);
    ASSERT_EQ(again.status, 0);
    EXPECT_TRUE(tests::equalValues(decoded.type, decoded.value, again.value));
    EXPECT_EQ(encode(again.type, again.value, status), octets);
    EXPECT_EQ(looksLikeDer(octets.data(), octets.size()), exception == nullptr);
    ASSERT_NE(message.check, "");
    EXPECT_TRUE(commandAccepts(message.check, message.name, octets)) << message.check;
    Octets damaged = octets;
    damaged.back() ^= 0x55;
    EXPECT_FALSE(commandAccepts(message.check, message.name + ".damaged", damaged))
        << message.check;
    ++(exception == nullptr ? tally.equal : tally.excepted);
}

TEST_F(Interop, MessagesComeBack) {
    std::map<std::string, Tally> tallies;
    std::set<std::string> objects;
    std::set<const void*> needed;
    std::vector<std::string> lines;
    unsigned typed = 0;
    unsigned raw = 0;
    std::vector<Message> queue = messages;
    for (std::size_t i = 0; i < queue.size(); ++i) {
        const Message message = queue[i];
        SCOPED_TRACE(message.name);
        const TypeDescription* type = findType(message.type.c_str());
        ASSERT_NE(type, nullptr);
        Tally& tally = tallies[message.type];
        ++tally.messages;
        const auto* exception =
            std::find_if(std::begin(exceptions), std::end(exceptions),
                         [&](const Exception& row) { return matches(row.messages, message.name); });
        exception = exception != std::end(exceptions) ? exception : nullptr;
        if (exception != nullptr) {
            needed.insert(exception);
            lines.push_back(message.name + ": " +
                            (exception->status != 0 ? rtStatusName(exception->status) : "differs") +
                            ", " + exception->reason);
        }

        tests::expectWalkAgrees(*type, message.octets);
        Decoded decoded(*type, message.octets);
        if (exception != nullptr && exception->status != 0) {
            EXPECT_EQ(decoded.status, exception->status);
            ++tally.excepted;
            continue;
        }
        EXPECT_EQ(decoded.status, 0) << tests::toHex(message.octets);
        if (decoded.status != 0) {
            continue;
        }
        EXPECT_EQ(decoded.end(), message.octets.size());
        if (message.isDer && exception == nullptr) {
            tests::expectBackFromJson(*type, message.octets);
        }
        OpenValues open(message);
        tests::walkValue(*type, decoded.value, open);
        typed += open.typed;
        raw += open.raw;
        objects.insert(open.objects.begin(), open.objects.end());
        queue.insert(queue.end(), open.derived.begin(), open.derived.end());
        for (const interop::Expectation& expectation : expectations) {
            if (matches(expectation.messages, message.name)) {
                needed.insert(&expectation);
                for (const std::string& object : expectation.objects) {
                    EXPECT_EQ(open.objects.count(object), 1u) << object;
                }
            }
        }
        checkWhatComesBack(message, decoded, exception, tally);
    }
    for (const Exception& exception : exceptions) {
        EXPECT_EQ(needed.count(&exception), 1u) << exception.messages;
    }
    for (const interop::Expectation& expectation : expectations) {
        EXPECT_EQ(needed.count(&expectation), 1u) << expectation.messages;
    }

    Tally sum;
    for (const auto& [type, tally] : tallies) {
        std::printf("%-24s %3u messages, %3u identical, %2u equal, %2u excepted\n", type.c_str(),
                    tally.messages, tally.identical, tally.equal, tally.excepted);
        sum.messages += tally.messages;
        sum.identical += tally.identical;
        sum.equal += tally.equal;
        sum.excepted += tally.excepted;
    }
    std::printf("%u messages of %zu kinds: %u DER and identical, %u BER and equal in DER, "
                "%u excepted\n%zu were files of the command, the others stood in them\n"
                "%u open values of %zu objects typed, %u of unknown identifiers kept raw\n",
                sum.messages, tallies.size(), sum.identical, sum.equal, sum.excepted,
                messages.size(), typed, objects.size(), raw);
    for (const std::string& line : lines) {
        std::printf("excepted: %s\n", line.c_str());
    }
    EXPECT_EQ(sum.messages, sum.identical + sum.equal + sum.excepted);
}

TEST_F(Interop, DamagedMessagesAreWalkedAsTheyAreDecoded) {
    constexpr std::size_t All = 100000;
    std::mt19937 random(1);
    tests::WalkAgreement agreement;
    for (std::size_t i = 0; i < All && !HasFailure(); ++i) {
        const Message& message = messages[i % messages.size()];
        Octets damaged = message.octets;
        for (std::size_t harm = 0; harm <= random() % 3 && !damaged.empty(); ++harm) {
            tests::damage(damaged, random);
        }
        agreement.check(*findType(message.type.c_str()), damaged);
    }
}

// The command adds no unsigned attributes of its own; a time-stamp is the one that is in use.
TEST_F(Interop, TimeStampsCanBeAddedToSignatures) {
    const Message& signature = named("ContentInfo/signed-cades");
    const Message& token = named("TimeStampToken/full");
    Decoded message(*findType("ContentInfo"), signature.octets);
    Decoded stamp(*findType("TimeStampToken"), token.octets);
    ASSERT_EQ(message.status, 0);
    ASSERT_EQ(stamp.status, 0);
    auto& content = *static_cast<ASN1T_ContentInfo*>(message.value);
    auto& signedData = *static_cast<ASN1T_SignedData*>(content.content.decoded);
    auto& signer = *static_cast<ASN1T_SignerInfo*>(signedData.signerInfos.head->data);

    ASN1BERDecodeBuffer memory;
    Asn1TObject slot{};
    slot.decoded = stamp.value;
    ASN1T_Attribute attribute;
    attribute.type = id_aa_signatureTimeStampToken;
    rtDListInit(&attribute.values);
    rtDListAppend(memory.getCtxtPtr(), &attribute.values, &slot);
    rtDListInit(&signer.unsignedAttrs);
    rtDListAppend(memory.getCtxtPtr(), &signer.unsignedAttrs, &attribute);
    signer.m.unsignedAttrsPresent = 1;

    int status = 0;
    const Octets octets = encode(message.type, message.value, status);
    ASSERT_GE(status, 0);
    signer.m.unsignedAttrsPresent = 0;
    EXPECT_TRUE(commandAccepts("openssl cms -verify -cades -binary -inform DER -in @ -CAfile "
                               "root.pem -purpose any -out verified",
                               "stamped", octets));
    EXPECT_TRUE(commandAccepts("openssl cms -cmsout -noout -print -inform DER -in @ | grep -A 2 "
                               "unsignedAttrs | grep -q id-smime-aa-timeStampToken",
                               "stamped", octets));

    Decoded again(message.type, octets);
    ASSERT_EQ(again.status, 0);
    const Message stamped{"ContentInfo", "ContentInfo/stamped", true, octets, ""};
    OpenValues open(stamped);
    tests::walkValue(again.type, again.value, open);
    EXPECT_EQ(open.objects.count("signatureTimeStampToken"), 1u);
    EXPECT_EQ(open.objects.count("e_tstInfo"), 1u);
    EXPECT_EQ(tests::toHex(encode(again.type, again.value, status)), tests::toHex(octets));
}

} // namespace
