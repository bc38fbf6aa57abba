// Types of one's own: asn1gen compiles Measurements.asn1 as the program is built, and what comes
// out is used like any type of the library.

#include <cstdio>

#include <brevantis/asn1/asn1data/list_records.h>
#include <brevantis/asn1/runtime.h>
#include <measurements/Measurements.h>

using namespace measurements;

int main() {
    ASN1BEREncodeBuffer output;
    ASN1T_Report report;
    report.sensor = "roof";
    for (const int value : {21500, -300}) {
        auto* const reading = asn1data::appendRecord(output.getCtxtPtr(), report.readings);
        if (reading == nullptr) {
            return 1;
        }
        reading->value = value;
        reading->m.unitPresent = 1;
        reading->unit = "mK";
    }
    const int size = ASN1C_Report(output, report).Encode();
    if (size < 0) { // such as ASN1S_CONSTRAINT_VIOLATION, for a report without readings
        std::puts(rtStatusName(size));
        return 1;
    }
    for (int i = 0; i < size; ++i) {
        std::printf("%02x", output.getMsgPtr()[i]);
    }
    std::puts("");

    ASN1BERDecodeBuffer input(output.getMsgPtr(), size);
    ASN1T_Report read;
    ASN1C_Report control(input, read);
    if (const int status = control.Decode(); status != 0) {
        std::puts(rtStatusName(status));
        return 1;
    }
    std::printf("%s:", read.sensor);
    for (const auto& reading : asn1data::recordsOf(read.readings)) {
        std::printf(" %d %s", reading.value, reading.unit);
    }
    std::puts("");
    return 0;
}
