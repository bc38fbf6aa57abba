#include "cut_text.h"

#include <brevantis/asn1/text/value.h>

namespace derview {

std::string restText(std::size_t octets) {
    return "… " + std::to_string(octets) + (octets == 1 ? " more octet" : " more octets");
}

ValueText cutHex(const std::string& prefix, Octets octets, std::size_t total, std::size_t room) {
    const std::size_t digits =
        room > prefix.size() + SmallestRoom ? room - prefix.size() : SmallestRoom;
    std::size_t shown = total;
    if (total > digits / 2) {
        const std::size_t note = restText(total).size();
        shown = digits > note + SmallestRoom ? (digits - note) / 2 : SmallestRoom / 2;
    }
    return {prefix + hexText(octets.first(shown)), total - shown};
}

} // namespace derview
