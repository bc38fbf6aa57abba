#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#if defined(__linux__)
#include <sys/mman.h>
#endif

#include "entry_reader.h"
#include "index_format.h"

// The records come in the order of the list, the places where they belong in none: put there one by
// one, each would fetch a cache line from memory. So they are moved twice, first to the partition
// that the highest bits of their hashes tell, then within it. Both moves keep the order of records
// with the same bits, and take the same time whatever the hashes are.

namespace asn1data {

using namespace revocation_list;

namespace {

struct Free {
    void operator()(void* block) const noexcept { std::free(block); }
};
template <class Item>
using Block = std::unique_ptr<Item[], Free>;

/// Memory for @p count items, null when there is none. Of large blocks the kernel is asked for
/// large pages: filling small ones would take more time than what is put there.
template <class Item>
Block<Item> allocate(std::size_t count) {
    constexpr std::size_t largePage = std::size_t{1} << 21;
    if (count > (SIZE_MAX - largePage) / sizeof(Item)) {
        return nullptr;
    }
    std::size_t size = std::max<std::size_t>(count, 1) * sizeof(Item);
    void* block = nullptr;
    if (size < 2 * largePage) {
        block = std::malloc(size);
    } else {
        size = (size + largePage - 1) / largePage * largePage;
        block = std::aligned_alloc(largePage, size);
#if defined(__linux__)
        if (block != nullptr) {
            madvise(block, size, MADV_HUGEPAGE); // a wish; nothing depends on it
        }
#endif
    }
    return Block<Item>(static_cast<Item*>(block));
}

/// Records in the order of the list.
class Records {
public:
    /// Makes room behind the records.
    /// @param done octets of the entries so far, from which it is estimated how many are to come
    /// @param all octets of all entries
    /// @return where up to @p count records can be put; null when memory is out
    std::uint64_t* reserve(std::size_t count, std::size_t done, std::size_t all) noexcept {
        return room_ - count_ >= count || grow(count, done, all) ? records_.get() + count_
                                                                 : nullptr;
    }
    /// Takes the records in front of @p end, which have been put where `reserve` said.
    void take(const std::uint64_t* end) noexcept {
        count_ = static_cast<std::size_t>(end - records_.get());
    }

    std::size_t count() const noexcept { return count_; }
    const std::uint64_t* begin() const noexcept { return records_.get(); }
    const std::uint64_t* end() const noexcept { return records_.get() + count_; }

private:
    bool grow(std::size_t count, std::size_t done, std::size_t all) noexcept {
        const double expected = static_cast<double>(count_) * static_cast<double>(all) /
                                static_cast<double>(std::max<std::size_t>(done, 1));
        const std::size_t room =
            std::max(static_cast<std::size_t>(expected * 1.02), count_ + count_ / 4) + count;
        Block<std::uint64_t> larger = allocate<std::uint64_t>(room);
        if (larger == nullptr) {
            return false;
        }
        std::copy_n(records_.get(), count_, larger.get());
        records_ = std::move(larger);
        room_ = room;
        return true;
    }

    Block<std::uint64_t> records_;
    std::size_t count_ = 0;
    std::size_t room_ = 0;
};

/// Pairs of places, which only an indirect list has.
class Checkpoints {
public:
    /// @return false when memory is out
    bool add(std::size_t entry, std::size_t issuer) noexcept {
        if (count_ == room_) {
            const std::size_t room = room_ + room_ / 2 + 16;
            Block<unsigned char> larger = allocate<unsigned char>(room * CheckpointSize);
            if (larger == nullptr) {
                return false;
            }
            std::copy_n(octets_.get(), count_ * CheckpointSize, larger.get());
            octets_ = std::move(larger);
            room_ = room;
        }
        unsigned char* const place = octets_.get() + count_++ * CheckpointSize;
        storeNumber(place, entry);
        storeNumber(place + 8, issuer);
        return true;
    }

    std::size_t count() const noexcept { return count_; }
    OctetSpan octets() const noexcept { return {octets_.get(), count_ * CheckpointSize}; }

private:
    Block<unsigned char> octets_;
    std::size_t count_ = 0;
    std::size_t room_ = 0;
};

class IndexBuilder {
public:
    explicit IndexBuilder(const RevocationList& list) noexcept
        : list_(list), offsetBits_(offsetBitsFor(list.octets().size)),
          partitionBits_(partitionBitsFor(list.entries().size)) {}

    /// Reads the list.
    int gather() noexcept;
    /// Makes the index of what was gathered.
    int finish(Block<unsigned char>& index, std::size_t& size) noexcept;

private:
    enum : unsigned { LargestPartitionBits = 10, LargestGroupBits = 14 };

    /// Partitions of some 4,000 records, which are sorted in the cache; no more of them than a
    /// cache has lines to fill at the same time.
    static unsigned partitionBitsFor(std::size_t entriesSize) noexcept {
        constexpr std::size_t typicalPartition = std::size_t{4000} * 32;
        unsigned bits = 0;
        while (bits < LargestPartitionBits && entriesSize / typicalPartition >> bits != 0) {
            ++bits;
        }
        return bits;
    }

    std::size_t partitionOf(std::uint64_t record) const noexcept {
        return record >> 1 >> (63 - partitionBits_);
    }
    int readEntries(const unsigned char*& position, const unsigned char* stop,
                    const unsigned char* end, std::uint64_t*& records) noexcept;
    bool noteIssuer(std::size_t offset, bool isOwn) noexcept;
    void distribute(unsigned char* target) noexcept;
    int sort(unsigned char* records, unsigned groupBits, OctetDigest& digest) noexcept;

    const RevocationList& list_;
    unsigned offsetBits_;
    unsigned partitionBits_;
    Records records_;
    std::size_t partitions_[std::size_t{1} << LargestPartitionBits] = {}; ///< counts, then ends
    Checkpoints checkpoints_;
    std::size_t issuer_ = 0;
    std::size_t sinceCheckpoint_ = 0;
    std::uint64_t listDigest_ = 0;
};

int IndexBuilder::gather() noexcept {
    // In stretches that the cache holds while all is done that is to be done with them.
    constexpr std::size_t stretch = 16384;
    constexpr std::size_t smallestEntry = 6;
    const OctetSpan message = list_.octets();
    const OctetSpan entries = list_.entries();
    const unsigned char* position = entries.data;
    const unsigned char* const end = position + entries.size;
    OctetDigest digest;
    while (position != end) {
        std::uint64_t* const records = records_.reserve(
            stretch / smallestEntry + 1, distance(entries.data, position), entries.size);
        if (records == nullptr) {
            return ASN1S_NO_MEMORY;
        }
        const unsigned char* const stop = position + std::min(stretch, distance(position, end));
        std::uint64_t* next = records;
        const int status = readEntries(position, stop, end, next);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
        for (const std::uint64_t* record = records; record != next; ++record) {
            ++partitions_[partitionOf(*record)];
        }
        records_.take(next);
        digest.advance(message.data, distance(message.data, position));
    }
    listDigest_ = digest.finish(message.data, message.size);
    return ASN1S_SUCCESS;
}

/// Reads the entries that begin in front of @p stop, and makes their records.
int IndexBuilder::readEntries(const unsigned char*& position, const unsigned char* stop,
                              const unsigned char* end, std::uint64_t*& records) noexcept {
    const unsigned char* const first = list_.octets().data;
    const unsigned offsetBits = offsetBits_;
    std::uint64_t* next = records;
    const unsigned char* at = position;
    while (at < stop) {
        const std::size_t offset = distance(first, at);
        RevokedEntry entry;
        if (const int status = takeEntry(at, end, entry)) {
            return status;
        }
        const std::uint64_t hash = serialHash(shortest(entry.serialNumber));
        *next++ = hash >> offsetBits << offsetBits | offset;
        const bool isOwn = entry.certificateIssuer.data != nullptr;
        if ((isOwn || checkpoints_.count() != 0) && !noteIssuer(offset, isOwn)) {
            return ASN1S_NO_MEMORY;
        }
    }
    position = at;
    records = next;
    return ASN1S_SUCCESS;
}

/// Called for each entry from the first on that has a certificateIssuer.
bool IndexBuilder::noteIssuer(std::size_t offset, bool isOwn) noexcept {
    issuer_ = isOwn ? offset : issuer_;
    if (sinceCheckpoint_ == 0 && !checkpoints_.add(offset, issuer_)) {
        return false;
    }
    sinceCheckpoint_ = (sinceCheckpoint_ + 1) % CheckpointDistance;
    return true;
}

/// Turns counts into the places where each kind begins.
void accumulate(std::size_t* counts, std::size_t size) noexcept {
    std::size_t place = 0;
    for (std::size_t i = 0; i < size; ++i) {
        place += std::exchange(counts[i], place);
    }
}

/// Puts the records into their partitions, one behind the other.
void IndexBuilder::distribute(unsigned char* target) noexcept {
    accumulate(partitions_, std::size_t{1} << partitionBits_);
    for (const std::uint64_t record : records_) {
        storeNumber(target + partitions_[partitionOf(record)]++ * RecordSize, record);
    }
}

/// Sorts each partition by the bits that follow.
int IndexBuilder::sort(unsigned char* records, unsigned groupBits, OctetDigest& digest) noexcept {
    const std::size_t groups = std::size_t{1} << groupBits;
    const auto groupOf = [this, groupBits](std::uint64_t record) {
        return static_cast<std::size_t>(record << partitionBits_ >> (64 - groupBits));
    };
    std::size_t largest = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= partitionOf(UINT64_MAX); ++i) {
        largest = std::max(largest, partitions_[i] - start);
        start = partitions_[i];
    }
    const Block<std::size_t> places = allocate<std::size_t>(groups);
    const Block<std::uint64_t> sorted = allocate<std::uint64_t>(largest);
    if (places == nullptr || sorted == nullptr) {
        return ASN1S_NO_MEMORY;
    }
    start = 0;
    for (std::size_t i = 0; i <= partitionOf(UINT64_MAX); ++i) {
        unsigned char* const partition = records + start * RecordSize;
        const std::size_t size = partitions_[i] - start;
        std::fill_n(places.get(), groups, std::size_t{0});
        for (std::size_t k = 0; k < size; ++k) {
            ++places[groupOf(loadNumber(partition + k * RecordSize))];
        }
        accumulate(places.get(), groups);
        for (std::size_t k = 0; k < size; ++k) {
            const std::uint64_t record = loadNumber(partition + k * RecordSize);
            sorted[places[groupOf(record)]++] = record;
        }
        for (std::size_t k = 0; k < size; ++k) {
            storeNumber(partition + k * RecordSize, sorted[k]);
        }
        start += size;
        digest.advance(records, start * RecordSize);
    }
    return ASN1S_SUCCESS;
}

int IndexBuilder::finish(Block<unsigned char>& index, std::size_t& size) noexcept {
    const OctetSpan checkpoints = checkpoints_.octets();
    const std::size_t count = records_.count();
    size = HeaderSize + count * RecordSize + checkpoints.size;
    index = allocate<unsigned char>(size);
    if (index == nullptr) {
        return ASN1S_NO_MEMORY;
    }
    unsigned char* const header = index.get();
    unsigned char* const rest = header + HeaderSize;
    // About as many groups as records.
    unsigned groupBits = 1;
    while (groupBits < LargestGroupBits && count >> partitionBits_ >> groupBits > 1) {
        ++groupBits;
    }
    OctetDigest digest;
    distribute(rest);
    if (const int status = sort(rest, groupBits, digest)) {
        return status;
    }
    if (checkpoints.size != 0) {
        std::memcpy(rest + count * RecordSize, checkpoints.data, checkpoints.size);
    }
    std::memset(header, 0, HeaderSize);
    storeNumber(header + MarkPlace, Mark);
    storeNumber(header + SortedBitsPlace, partitionBits_ + groupBits);
    storeNumber(header + ListSizePlace, list_.octets().size);
    storeNumber(header + ListDigestPlace, listDigest_);
    storeNumber(header + CountPlace, count);
    storeNumber(header + CheckpointCountPlace, checkpoints_.count());
    OctetDigest headerDigest;
    storeNumber(header + DigestPlace, mixed(headerDigest.finish(header, DigestPlace)) ^
                                          digest.finish(rest, size - HeaderSize));
    return ASN1S_SUCCESS;
}

} // namespace

int RevocationIndex::build(const RevocationList& list) noexcept {
    clear();
    if (offsetBitsFor(list.octets().size) > LargestOffsetBits) {
        return ASN1S_VALUE_TOO_BIG;
    }
    IndexBuilder builder(list);
    Block<unsigned char> index;
    std::size_t size = 0;
    int status = builder.gather();
    if (status == ASN1S_SUCCESS) {
        status = builder.finish(index, size);
    }
    if (status == ASN1S_SUCCESS) {
        owned_.reset(index.release());
        view(list, {owned_.get(), size});
    }
    return status;
}

} // namespace asn1data
