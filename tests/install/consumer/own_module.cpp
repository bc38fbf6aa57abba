#include <cstdio>

#include <brevantis/asn1/runtime.h>
#include <measurement/measurement.h>

// Writes a value of a type that the library has never heard of, in hexadecimal.
int main() {
    measurement::ASN1T_Reading reading;
    reading.value = "25";
    reading.m.unitPresent = 1;
    reading.unit = "mm";
    ASN1BEREncodeBuffer output;
    const int size = measurement::ASN1C_Reading(output, reading).Encode();
    for (int i = 0; i < size; ++i) {
        std::printf("%02X", output.getMsgPtr()[i]);
    }
    std::puts(size < 0 ? rtStatusName(size) : "");
    return size < 0 ? 1 : 0;
}
