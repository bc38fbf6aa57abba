#include <brevantis/asn1/asn1data/x509.h>

#include "entry.h"

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace asn1data;
    return fuzz::roundTrip<ASN1T_CertificateList, ASN1C_CertificateList, asn1Free_CertificateList>(
        data, size);
}
