#include <limits>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime/message_buffer.h>

#include "entry.h"

// Messages through the control classes and message buffers that a program would use: the first
// octet chooses the type.

namespace {

using namespace asn1data;

/// Encodes a value.
/// @param octets receives the encoding
/// @return whether the value can be encoded
template <class Control, class Record>
bool encode(Record& value, std::string& octets) {
    ASN1BEREncodeBuffer output;
    const int size = Control(output, value).Encode();
    if (size < 0) {
        return false;
    }
    const unsigned char* first = output.getMsgPtr();
    octets.assign(first, first + size);
    return true;
}

/// Decodes a message, and then another into the same value; what decodes is copied, encoded and
/// decoded again.
template <class Record, class Control, void (*Release)(ASN1CTXT*, Record*)>
void roundTrip(const std::vector<unsigned char>& octets, int flags) {
    ASN1BERDecodeBuffer input(octets.data(), static_cast<int>(octets.size()));
    rtCtxtSetFlag(input.getCtxtPtr(), flags);
    Record value;
    Control control(input, value);
    const int status = control.Decode();
    if (status > 0) {
        fuzz::report("decoding returns a positive status");
    }
    std::string encoded;
    if (status == 0 && encode<Control>(value, encoded)) {
        std::string again;
        Record copy(control);
        if (!encode<Control>(copy, again) || again != encoded) {
            fuzz::report("the copy differs");
        }
        ASN1BERDecodeBuffer returned(reinterpret_cast<const unsigned char*>(encoded.data()),
                                     static_cast<int>(encoded.size()));
        if (control.DecodeFrom(returned) == 0 &&
            (!encode<Control>(value, again) || again != encoded)) {
            fuzz::report("the second encoding differs");
        }
    }
    Release(control.getCtxtPtr(), &value);
}

constexpr void (*const trips[])(const std::vector<unsigned char>&, int) = {
    roundTrip<ASN1T_Certificate, ASN1C_Certificate, asn1Free_Certificate>,
    roundTrip<ASN1T_CertificateList, ASN1C_CertificateList, asn1Free_CertificateList>,
    roundTrip<ASN1T_Name, ASN1C_Name, asn1Free_Name>,
    roundTrip<ASN1T_ContentInfo, ASN1C_ContentInfo, asn1Free_ContentInfo>,
    roundTrip<ASN1T_OCSPResponse, ASN1C_OCSPResponse, asn1Free_OCSPResponse>,
    roundTrip<ASN1T_PKIMessage, ASN1C_PKIMessage, asn1Free_PKIMessage>,
};
constexpr int contextFlags[] = {0, ASN1F_NO_COPY, ASN1F_LENGTH_UNCHECKED,
                                ASN1F_NO_COPY | ASN1F_LENGTH_UNCHECKED};

} // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    fuzz::Input input(data, size);
    const auto trip = trips[input.below(std::size(trips))];
    const int flags = contextFlags[input.below(std::size(contextFlags))];
    trip(input.rest(), flags);
    return 0;
}
