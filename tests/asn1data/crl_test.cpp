#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/runtime.h>
#include <gtest/gtest.h>

#include "support/damaged_message.h"
#include "support/hex.h"

namespace {

using namespace asn1data;
using tests::Octets;
using tests::toHex;

/// A certification authority in a directory of its own, run by the `openssl` command.
class Authority {
public:
    Authority() {
        std::string name = (std::filesystem::temp_directory_path() / "crl_test.XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            return;
        }
        directory_ = name;
        // A CRL with a number is one of version 2.
        const std::string config = "[ca]\ndefault_ca=c\n[req]\ndistinguished_name=dn\n[dn]\n[ext]\n"
                                   "issuingDistributionPoint=critical,@idp\n[idp]\nonlyuser=TRUE\n["
                                   "c]\ndatabase=index\ncertificate=cert\n"
                                   "private_key=key\ndefault_md=sha256\n";
        write("version1", config);
        write("version2", config + "crlnumber=number\n");
        write("number", "1000\n");
        usable_ = run("req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -keyout key "
                      "-out cert -days 3650 -subj /C=DE/O=Test/CN=Authority -config version1");
    }
    ~Authority() {
        if (!directory_.empty()) {
            std::filesystem::remove_all(directory_);
        }
    }
    Authority(const Authority&) = delete;
    Authority& operator=(const Authority&) = delete;

    bool usable() const { return usable_; }

    /// @param index the database of revoked certificates
    Octets issue(const std::string& index, const std::string& options) {
        write("index", index);
        if (!run("ca -gencrl -out crl.pem " + options) ||
            !run("crl -in crl.pem -outform DER -out crl.der")) {
            ADD_FAILURE() << "no CRL made with " << options;
            return {};
        }
        std::ifstream file(directory_ + "/crl.der", std::ios::binary);
        return Octets{std::istreambuf_iterator<char>(file), {}};
    }

private:
    void write(const char* name, const std::string& content) {
        std::ofstream(directory_ + "/" + name, std::ios::binary) << content;
    }
    bool run(const std::string& arguments) {
        return std::system(
                   ("cd '" + directory_ + "' && openssl " + arguments + " >log 2>&1").c_str()) == 0;
    }

    std::string directory_;
    bool usable_ = false;
};

/// A line of the database.
std::string revoked(unsigned serial, const char* date, const char* reason) {
    char line[128];
    std::snprintf(line, sizeof line, "R\t330101000000Z\t%s%s%s\t%08X\tunknown\t/CN=%u\n", date,
                  *reason != '\0' ? "," : "", reason, serial, serial);
    return line;
}

class Crl : public testing::Test {
protected:
    void SetUp() override {
        if (!authority_.usable()) {
            GTEST_SKIP()
                << "the openssl command is missing or cannot make a key: install the package "
                   "openssl";
        }
    }
    Authority authority_;
};

struct Decoded {
    explicit Decoded(const Octets& message)
        : buffer(message.data(), static_cast<int>(message.size())), control(buffer, value) {
        status = control.Decode();
    }
    ASN1T_TBSCertList& list() { return value.tbsCertList; }
    std::string encode() {
        ASN1BEREncodeBuffer output;
        const int size = ASN1C_CertificateList(output, value).Encode();
        return size < 0 ? rtStatusName(size)
                        : toHex(output.getMsgPtr(), static_cast<std::size_t>(size));
    }
    ASN1BERDecodeBuffer buffer;
    ASN1T_CertificateList value;
    ASN1C_CertificateList control;
    int status;
};

const ASN1T_TBSCertList_revokedCertificates_element& entry(const ASN1T_TBSCertList& list,
                                                           int index) {
    const Asn1RTDListNode* node = rtDListFindByIndex(&list.revokedCertificates, index);
    return *static_cast<const ASN1T_TBSCertList_revokedCertificates_element*>(node->data);
}

TEST_F(Crl, ComesBackOctetForOctet) {
    const struct {
        const char* what;
        std::string index;
        const char* options;
        unsigned entries;
    } rows[] = {
        {"version 1 without entries", "", "-config version1 -crldays 30", 0},
        {"version 2 without entries", "", "-config version2 -crldays 30 -crlexts ext", 0},
        {"version 1 with an entry", revoked(1, "240101000000Z", ""), "-config version1 -crldays 30",
         1},
        {"reasons, dates of invalidity, a hold instruction",
         revoked(0x10, "240101000000Z", "keyCompromise") +
             revoked(0x90000001, "240102000000Z", "holdInstruction,holdInstructionReject") +
             revoked(0x20, "240103000000Z", "CAkeyTime,20231231235959Z") +
             revoked(0x30, "240104000000Z", ""),
         "-config version2 -crldays 30 -crlexts ext", 4},
        {"times beyond 2049", revoked(1, "240101000000Z", ""),
         "-config version1 -crl_lastupdate 20500101000000Z -crl_nextupdate 20510101000000Z", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const Octets message = authority_.issue(row.index, row.options);
        Decoded decoded(message);
        ASSERT_EQ(decoded.status, 0);
        EXPECT_EQ(decoded.encode(), toHex(message));
        EXPECT_EQ(decoded.list().m.revokedCertificatesPresent, row.entries != 0);
        EXPECT_EQ(decoded.list().m.nextUpdatePresent, 1u);
        EXPECT_EQ(decoded.list().revokedCertificates.count, row.entries);
    }
}

TEST_F(Crl, HoldsWhatWasRevoked) {
    const Octets message = authority_.issue(revoked(0x10, "240101000000Z", "keyCompromise") +
                                                revoked(0x90000001, "240102000000Z", ""),
                                            "-config version2 -crldays 30 -crlexts ext");
    Decoded decoded(message);
    ASSERT_EQ(decoded.status, 0);
    ASSERT_EQ(decoded.list().revokedCertificates.count, 2u);
    const auto& first = entry(decoded.list(), 0);
    EXPECT_STREQ(first.userCertificate, "0x10");
    EXPECT_STREQ(first.revocationDate.u.utcTime, "240101000000Z");
    ASSERT_TRUE(first.m.crlEntryExtensionsPresent);
    const auto* reason = static_cast<const ASN1T_Extension*>(first.crlEntryExtensions.head->data);
    EXPECT_TRUE(reason->extnID == id_ce_reasonCode);
    EXPECT_EQ(toHex(reason->extnValue.data, reason->extnValue.numocts), "0A 01 01");
    const auto& second = entry(decoded.list(), 1);
    EXPECT_STREQ(second.userCertificate, "0x090000001");
    EXPECT_FALSE(second.m.crlEntryExtensionsPresent);
    EXPECT_EQ(decoded.list().crlExtensions.count, 2u);
}

TEST_F(Crl, OfManyEntries) {
    constexpr unsigned Entries = 10000;
    std::string index;
    for (unsigned i = 1; i <= Entries; ++i) {
        index += revoked(i, "240101000000Z", i % 2 != 0 ? "superseded" : "");
    }
    const Octets message = authority_.issue(index, "-config version2 -crldays 30 -crlexts ext");
    Decoded decoded(message);
    ASSERT_EQ(decoded.status, 0);
    EXPECT_EQ(decoded.list().revokedCertificates.count, Entries);
    // A comparison of texts of this length would not be read by anybody.
    EXPECT_TRUE(decoded.encode() == toHex(message));
}

TEST_F(Crl, Damaged) {
    const Octets message = authority_.issue(revoked(0x10, "240101000000Z", "keyCompromise") +
                                                revoked(0x20, "240102000000Z", ""),
                                            "-config version2 -crldays 30 -crlexts ext");
    tests::DamagedMessage<ASN1T_CertificateList, ASN1C_CertificateList, asn1Free_CertificateList>
        damaged;
    damaged.cutAtEveryOctet(message);
    damaged.changeEveryOctet(message);
    EXPECT_GT(damaged.decoded(), 100u);
}

// RFC 5280 wants a nextUpdate, X.509 does not; what follows it must not be taken for it.
TEST(CrlWithoutNextUpdate, Decodes) {
    const std::string algorithm = "30 05 06 03 2A 03 04";
    const std::string thisUpdate = "17 0D 32 35 30 31 30 31 30 30 30 30 30 30 5A";
    const std::string entries = "30 14 30 12 02 01 07" + thisUpdate;
    const struct {
        const char* what;
        std::string message;
        unsigned count;
    } rows[] = {
        {"entries",
         "30 00 30 00 02 01 01" + algorithm + "30 00" + thisUpdate + entries + algorithm +
             "03 02 00 01",
         1},
        {"nothing", "30 00 30 00" + algorithm + "30 00" + thisUpdate + algorithm + "03 02 00 01",
         0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Octets message = tests::fromHex(row.message);
        message[1] = static_cast<unsigned char>(message.size() - 2);
        message[3] = static_cast<unsigned char>(message.size() - 4 - 7 - 4);
        Decoded decoded(message);
        ASSERT_EQ(decoded.status, 0);
        EXPECT_EQ(decoded.list().m.nextUpdatePresent, 0u);
        EXPECT_EQ(decoded.list().m.versionPresent, row.count);
        EXPECT_EQ(decoded.list().revokedCertificates.count, row.count);
        EXPECT_EQ(decoded.encode(), toHex(message));
    }
}

} // namespace
