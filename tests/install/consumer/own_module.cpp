#include <cstdio>
#include <cstring>
#include <type_traits>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/runtime.h>
#include <device/device.v1.h>
#include <measurement/measurement.h>

namespace device {
const asn1data::TypeDescription* findType(const char* name) noexcept;
}

namespace {

void print(ASN1BEREncodeBuffer& output, int size) {
    for (int i = 0; i < size; ++i) {
        std::printf("%02X", output.getMsgPtr()[i]);
    }
    std::puts(size < 0 ? rtStatusName(size) : "");
}

// A value of a type that the library has never heard of.
int writeReading() {
    measurement::ASN1T_Reading reading;
    reading.value = "25";
    reading.m.unitPresent = 1;
    reading.unit = "mm";
    ASN1BEREncodeBuffer output;
    const int size = measurement::ASN1C_Reading(output, reading).Encode();
    print(output, size);
    return size;
}

// The library's own types are parts of it, and its objects members of one's own sets.
int readPassport() {
    static_assert(std::is_same_v<device::ASN1T_Maker, asn1data::ASN1T_Name>);
    const unsigned char message[] = {
        0x30, 0x1F, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00, // maker, owners
        0x30, 0x17, 0x30, 0x0A, 0x06, 0x03, 0x55, 0x04, 0x03, 0x0C, 0x03,
        'a',  'b',  'c',                                                  // commonName
        0x30, 0x09, 0x06, 0x03, 0x88, 0x37, 0x01, 0x0C, 0x02, 'X',  'Y'}; // modelName
    ASN1BERDecodeBuffer input(message, sizeof message);
    device::ASN1T_Passport passport;
    device::ASN1C_Passport control(input, passport);
    const int status = control.Decode();
    if (status < 0) {
        std::puts(rtStatusName(status));
        return status;
    }
    ASN1BEREncodeBuffer output;
    const int size = device::ASN1C_Passport(output, passport).Encode();
    print(output, size);
    const bool shared =
        device::findType("Passport")->elements[1].type->element == asn1data::findType("Name") &&
        device::findType("Maker")->aliasOf == asn1data::findType("Name") &&
        device::DeviceAttributes::instance(nullptr)->count == 3;
    std::puts(shared ? "shared" : "not shared");
    return size;
}

} // namespace

int main() {
    return writeReading() < 0 || readPassport() < 0 ? 1 : 0;
}
