// Makes a revocation list (RFC 5280, 5), and an index of it; then looks numbers up, as a responder
// would in a list of millions of entries.

#include <cstdio>
#include <ctime>

#include <brevantis/asn1/asn1data/revocation_list.h>

#include "signing.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using namespace asn1data;

namespace {

/// Tells what the list says about a number.
void lookUp(const RevocationIndex& index, const char* number) {
    CBigInteger serial;
    StringToBigInteger(number, serial);
    RevokedEntry entry;
    const int status = index.find(serial.pbData(), serial.cbData(), entry);
    if (status == ASN1S_MISSING_ELEMENT) {
        std::printf("%s: not revoked\n", number);
    } else if (status == 0) {
        std::printf("%s: revoked, reason %u\n", number, static_cast<unsigned>(entry.reason));
    } else {
        throw std::runtime_error(rtStatusName(status));
    }
}

int make(int argc, char** argv) {
    if (argc < 5) {
        std::fputs("usage: revocation_list CA-CERTIFICATE CA-KEY OUT SERIAL...\n", stderr);
        return 2;
    }
    Decoded<ASN1C_Certificate, ASN1T_Certificate> authority(readMessage(argv[1]));
    const Key key(argv[2]);

    ASN1BERDecodeBuffer memory;
    ASN1CTXT* const heap = memory.getCtxtPtr();
    ASN1T_CertificateList list;
    ASN1T_TBSCertList& content = list.tbsCertList;
    content.m.versionPresent = 1;
    content.version = Version_v2;
    ASN1T_AlgorithmIdentifier_traits::set(heap, content.signature, key.algorithm());
    asn1Copy_Name(heap, &authority.record.tbsCertificate.subject, &content.issuer);
    const std::time_t now = std::time(nullptr);
    ASN1T_Time_traits::set(heap, content.thisUpdate, CTimeChoice(CDateTime(now, 0)));
    content.m.nextUpdatePresent = 1;
    ASN1T_Time_traits::set(heap, content.nextUpdate, CTimeChoice(CDateTime(now + 7 * 86400, 0)));

    for (int i = 4; i < argc; ++i) {
        auto& entry = newElement(heap, content.revokedCertificates);
        content.m.revokedCertificatesPresent = 1;
        entry.userCertificate = argv[i];
        ASN1T_Time_traits::set(heap, entry.revocationDate, CTimeChoice(CDateTime(now, 0)));
        entry.m.crlEntryExtensionsPresent = 1;
        const CExtension reason(CExtCRLReason(CrlReason_keyCompromise), false);
        ASN1T_Extensions_traits::set(heap, entry.crlEntryExtensions, CExtensions{reason});
    }
    CBigInteger number(1ul);
    ++number;
    content.m.crlExtensionsPresent = 1;
    ASN1T_Extensions_traits::set(
        heap, content.crlExtensions,
        CExtensions{CExtension(toOID(id_ce_cRLNumber).c_str(), number.encode())});

    const CBlob signature = key.sign(encoded<ASN1C_TBSCertList>(content));
    ASN1T_AlgorithmIdentifier_traits::set(heap, list.signatureAlgorithm, key.algorithm());
    list.signature = bitString(signature);
    const CBlob octets = encoded<ASN1C_CertificateList>(list);
    writeOctets(octets, argv[3]);

    // The index needs the octets alone, which may well be a mapped file.
    RevocationList reader;
    RevocationIndex index;
    int status = reader.open(octets.pbData(), octets.cbData());
    if (status == 0) {
        status = index.build(reader);
    }
    if (status != 0) {
        throw std::runtime_error(rtStatusName(status));
    }
    lookUp(index, argv[4]);
    lookUp(index, "0x7fff");
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    return runExample("revocation_list", make, argc, argv);
}
