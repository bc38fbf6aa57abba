#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "entry_reader.h"
#include "index_format.h"

namespace asn1data {

using namespace revocation_list;

namespace {

/// The digest of an index, but for the field that holds it.
std::uint64_t digestOf(OctetSpan index) {
    OctetDigest header;
    OctetDigest rest;
    return mixed(header.finish(index.data, DigestPlace)) ^
           rest.finish(index.data + HeaderSize, index.size - HeaderSize);
}

} // namespace

void RevocationIndex::Release::operator()(unsigned char* octets) const noexcept {
    std::free(octets);
}

RevocationIndex::RevocationIndex() noexcept = default;
RevocationIndex::~RevocationIndex() = default;

RevocationIndex::RevocationIndex(RevocationIndex&& other) noexcept {
    *this = std::move(other);
}

RevocationIndex& RevocationIndex::operator=(RevocationIndex&& other) noexcept {
    if (this != &other) {
        list_ = other.list_;
        octets_ = other.octets_;
        owned_ = std::move(other.owned_);
        count_ = other.count_;
        checkpointCount_ = other.checkpointCount_;
        offsetBits_ = other.offsetBits_;
        unsortedBits_ = other.unsortedBits_;
        other.clear();
    }
    return *this;
}

void RevocationIndex::clear() noexcept {
    list_ = RevocationList();
    octets_ = {};
    owned_.reset();
    count_ = 0;
    checkpointCount_ = 0;
    offsetBits_ = 0;
    unsortedBits_ = 0;
}

void RevocationIndex::view(const RevocationList& list, OctetSpan octets) noexcept {
    list_ = list;
    octets_ = octets;
    count_ = static_cast<std::size_t>(loadNumber(octets.data + CountPlace));
    checkpointCount_ = static_cast<std::size_t>(loadNumber(octets.data + CheckpointCountPlace));
    unsortedBits_ = 64 - static_cast<unsigned>(loadNumber(octets.data + SortedBitsPlace));
    offsetBits_ = offsetBitsFor(list.octets().size);
}

int RevocationIndex::load(const RevocationList& list, const unsigned char* octets,
                          std::size_t size) noexcept {
    clear();
    if (octets == nullptr || size < HeaderSize) {
        return ASN1S_BAD_VALUE;
    }
    const std::uint64_t mark = loadNumber(octets + MarkPlace);
    if ((mark ^ Mark) != 0) {
        return ((mark ^ Mark) & ~VersionMask) == 0 ? ASN1S_NOT_SUPPORTED : ASN1S_BAD_VALUE;
    }
    const std::uint64_t count = loadNumber(octets + CountPlace);
    const std::uint64_t checkpoints = loadNumber(octets + CheckpointCountPlace);
    const std::size_t room = size - HeaderSize;
    if (count > room / RecordSize || checkpoints > room / CheckpointSize ||
        count * RecordSize + checkpoints * CheckpointSize != room ||
        digestOf({octets, size}) != loadNumber(octets + DigestPlace)) {
        return ASN1S_BAD_VALUE;
    }
    const OctetSpan message = list.octets();
    if (loadNumber(octets + ListSizePlace) != message.size) {
        return ASN1S_INVALID_PARAMETER;
    }
    OctetDigest digest;
    if (digest.finish(message.data, message.size) != loadNumber(octets + ListDigestPlace)) {
        return ASN1S_INVALID_PARAMETER;
    }
    const std::uint64_t sortedBits = loadNumber(octets + SortedBitsPlace);
    if (sortedBits == 0 || sortedBits > 64 || offsetBitsFor(message.size) > LargestOffsetBits) {
        return ASN1S_BAD_VALUE;
    }
    view(list, {octets, size});
    return ASN1S_SUCCESS;
}

/// The first place whose record is not below @p key, as far as they are sorted.
std::size_t RevocationIndex::lowerBound(unsigned long long key) const noexcept {
    const unsigned char* const records = octets_.data + HeaderSize;
    const unsigned unsortedBits = unsortedBits_;
    key = key >> unsortedBits << unsortedBits;
    const auto isBelow = [records, key](std::size_t place) {
        return loadNumber(records + place * RecordSize) < key;
    };
    // Hashes are spread evenly, so the place can be calculated. A few steps of that come within a
    // cache line, where a binary search would touch twenty.
    std::size_t low = 0;
    std::size_t high = count_;
    bool below = false;
    const double density = static_cast<double>(count_) * 0x1p-64;
    double guess = static_cast<double>(key) * density;
    for (int step = 0; step < 3 && low < high; ++step) {
        const auto first = static_cast<double>(low);
        const auto last = static_cast<double>(high - 1);
        const std::size_t place = guess <= first  ? low
                                  : guess >= last ? high - 1
                                                  : static_cast<std::size_t>(guess);
        const std::uint64_t record = loadNumber(records + place * RecordSize);
        below = record < key;
        (below ? low : high) = below ? place + 1 : place;
        guess = static_cast<double>(place) +
                (static_cast<double>(key) - static_cast<double>(record)) * density;
    }
    // Whatever stands there, the rest takes a logarithmic number of steps.
    std::size_t reach = 8;
    if (below) {
        for (; high - low > reach && isBelow(low + reach); reach *= 2) {
            low += reach + 1;
        }
        high = std::min(high, low + std::min(reach, high - low));
    } else {
        for (; high - low > reach && !isBelow(high - reach); reach *= 2) {
            high -= reach;
        }
        low = high - std::min(reach, high - low);
    }
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (isBelow(middle)) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

int RevocationIndex::entryAt(std::size_t offset, RevokedEntry& entry) const noexcept {
    const OctetSpan entries = list_.entries();
    const unsigned char* const end = entries.data + entries.size;
    if (offset < distance(list_.octets().data, entries.data) ||
        offset >= distance(list_.octets().data, end)) {
        return ASN1S_BAD_VALUE;
    }
    const unsigned char* position = list_.octets().data + offset;
    return takeEntry(position, end, entry) == ASN1S_SUCCESS ? ASN1S_SUCCESS : ASN1S_BAD_VALUE;
}

/// Finds the issuer that an entry without certificateIssuer inherits, if any.
int RevocationIndex::findIssuer(std::size_t offset, RevokedEntry& entry) const noexcept {
    const unsigned char* const checkpoints = octets_.data + HeaderSize + count_ * RecordSize;
    const auto placeAt = [checkpoints](std::size_t checkpoint, std::size_t field) {
        return static_cast<std::size_t>(
            loadNumber(checkpoints + checkpoint * CheckpointSize + field * 8));
    };
    std::size_t low = 0;
    std::size_t high = checkpointCount_;
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (placeAt(middle, 0) <= offset) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    if (low == 0) {
        return ASN1S_SUCCESS;
    }
    RevokedEntry other;
    int status = entryAt(placeAt(low - 1, 1), other);
    if (status == ASN1S_SUCCESS && other.certificateIssuer.data == nullptr) {
        status = ASN1S_BAD_VALUE;
    }
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    entry.certificateIssuer = other.certificateIssuer;
    entry.issuerInherited = true;
    std::size_t place = placeAt(low - 1, 0);
    while (place < offset) {
        status = entryAt(place, other);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
        if (other.certificateIssuer.data != nullptr) {
            entry.certificateIssuer = other.certificateIssuer;
        }
        place += other.octets.size;
    }
    return place == offset ? ASN1S_SUCCESS : ASN1S_BAD_VALUE;
}

int RevocationIndex::find(const unsigned char* serial, std::size_t size,
                          RevokedEntry& entry) const noexcept {
    RevokedMatches matches(*this, serial, size);
    if (matches.next(entry)) {
        return ASN1S_SUCCESS;
    }
    return matches.status() != ASN1S_SUCCESS ? matches.status() : ASN1S_MISSING_ELEMENT;
}

RevokedMatches::RevokedMatches(const RevocationIndex& index, const unsigned char* serial,
                               std::size_t size) noexcept
    : index_(index), serial_(shortest({serial, size})),
      key_(serialHash(serial_) >> index.offsetBits_ << index.offsetBits_),
      place_(index.lowerBound(key_)) {}

bool RevokedMatches::next(RevokedEntry& entry) noexcept {
    const unsigned offsetBits = index_.offsetBits_;
    for (; place_ < index_.count_ && status_ == ASN1S_SUCCESS; ++place_) {
        const std::uint64_t record =
            loadNumber(index_.octets_.data + HeaderSize + place_ * RecordSize);
        if ((record ^ key_) >> index_.unsortedBits_ != 0) {
            return false;
        }
        if ((record ^ key_) >> offsetBits != 0) {
            continue;
        }
        const auto offset = static_cast<std::size_t>(record - key_);
        status_ = index_.entryAt(offset, entry);
        if (status_ != ASN1S_SUCCESS) {
            return false;
        }
        const OctetSpan serial = shortest(entry.serialNumber);
        if (serial.size != serial_.size ||
            std::memcmp(serial.data, serial_.data, serial.size) != 0) {
            continue;
        }
        if (index_.checkpointCount_ != 0 && entry.certificateIssuer.data == nullptr) {
            status_ = index_.findIssuer(offset, entry);
        }
        ++place_;
        return status_ == ASN1S_SUCCESS;
    }
    return false;
}

} // namespace asn1data
