#ifndef FUZZ_ENTRY_H
#define FUZZ_ENTRY_H

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/message_buffer.h>

/// Entry point of every target; libFuzzer calls it for each input.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

namespace fuzz {

/// Ends the process, which is how a finding is told.
[[noreturn]] inline void report(const char* finding) {
    std::fprintf(stderr, "finding: %s\n", finding);
    std::abort();
}

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

/// Decodes an input; what decodes is encoded, decoded again and compared, copied and released.
/// Values that decode need not be fit for encoding. Nor need the encoding decode: an open value
/// that a message ends in front of is empty, and stays away. But what does decode must come out the
/// same.
template <class Record, class Control, void (*Release)(ASN1CTXT*, Record*)>
int roundTrip(const unsigned char* data, std::size_t size) {
    if (size > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return 0;
    }
    ASN1BERDecodeBuffer input(data, static_cast<int>(size));
    Record value;
    Control control(input, value);
    const int status = control.Decode();
    if (status > 0) {
        report("decoding returns a positive status");
    }
    std::string encoded;
    if (status == 0 && encode<Control>(value, encoded)) {
        std::string again;
        Record copy(control);
        if (!encode<Control>(copy, again) || again != encoded) {
            report("the copy differs");
        }
        ASN1BERDecodeBuffer returned(reinterpret_cast<const unsigned char*>(encoded.data()),
                                     static_cast<int>(encoded.size()));
        Record second;
        if (Control(returned, second).Decode() == 0 &&
            (!encode<Control>(second, again) || again != encoded)) {
            report("the second encoding differs");
        }
    }
    Release(input.getCtxtPtr(), &value);
    return 0;
}

} // namespace fuzz

#endif
