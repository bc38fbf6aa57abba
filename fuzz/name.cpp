#include <brevantis/asn1/asn1data/x509.h>

#include "entry.h"

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace asn1data;
    return fuzz::roundTrip<ASN1T_Name, ASN1C_Name, asn1Free_Name>(data, size);
}
