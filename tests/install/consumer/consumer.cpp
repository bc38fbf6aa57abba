#include <cstdio>
#include <cstring>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime.h>

// A name of no parts, through every layer: 30 00 in, 30 00 out.
int main() {
    const unsigned char message[] = {0x30, 0x00};
    ASN1BERDecodeBuffer input(message, sizeof message);
    asn1data::ASN1T_Name name;
    asn1data::ASN1C_Name control(input, name);
    if (const int status = control.Decode(); status != 0) {
        std::fprintf(stderr, "does not decode: %s\n", rtStatusName(status));
        return 1;
    }
    ASN1BEREncodeBuffer output;
    const int size = asn1data::ASN1C_Name(output, name).Encode();
    if (size != sizeof message || std::memcmp(output.getMsgPtr(), message, sizeof message) != 0) {
        std::fprintf(stderr, "comes back otherwise: %d\n", size);
        return 1;
    }
    std::puts("identical");
    return 0;
}
