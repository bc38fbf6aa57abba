#include "header.h"

namespace derview {

Header readHeader(Octets octets) {
    Header header;
    std::size_t place = 0;
    const auto next = [&](unsigned& octet) {
        octet = place < octets.size() ? octets[place] : 0;
        return place++ < octets.size();
    };
    unsigned octet = 0;
    if (!next(octet)) {
        return {};
    }
    header.identifier = static_cast<unsigned char>(octet);
    header.constructed = (octet & 0x20u) != 0;
    unsigned number = octet & 0x1Fu;
    if (number == 0x1F) {
        number = 0;
        do {
            if (!next(octet)) {
                return {};
            }
            header.longTag = header.longTag || (number == 0 && octet == 0x80);
            number = number << 7 | (octet & 0x7Fu);
        } while ((octet & 0x80u) != 0);
        header.longTag = header.longTag || number < 0x1F;
    }
    header.order = (header.identifier & 0xC0u) << 24 | (number & 0x3FFFFFFFu);
    if (!next(octet)) {
        return {};
    }
    header.length = octet;
    if (octet == 0x80) {
        header.indefinite = true;
        header.length = 0;
    } else if (octet > 0x80) {
        unsigned count = octet & 0x7Fu;
        header.length = 0;
        for (unsigned i = 0; i < count; ++i) {
            if (!next(octet)) {
                return {};
            }
            header.longLength = header.longLength || (i == 0 && octet == 0);
            header.length = header.length << 8 | octet;
        }
        header.longLength = header.longLength || header.length < 0x80;
    }
    header.size = place;
    return header;
}

} // namespace derview
