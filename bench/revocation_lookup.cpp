#include "revocation_lookup.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <ctime>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <brevantis/asn1/asn1data/revocation_list.h>

#if defined(BENCH_WITH_OPENSSL)
#include <openssl/x509.h>

#include "holder.h"
#endif

#include "allocations.h"
#include "number_text.h"

namespace bench {

namespace {

using asn1data::RevocationIndex;
using asn1data::RevocationList;
using asn1data::RevokedEntries;
using asn1data::RevokedEntry;
using Encoding = std::vector<unsigned char>;

constexpr std::array<std::size_t, 3> Counts = {10'000, 1'000'000, 5'000'000};
constexpr std::size_t SerialSize = 8;

void require(bool holds, const char* what) {
    if (!holds) {
        throw std::runtime_error(what);
    }
}

void append(Encoding& target, std::initializer_list<unsigned char> octets) {
    target.insert(target.end(), octets);
}

/// Puts an identifier octet and a length in four octets around what there is.
Encoding wrapped(const Encoding& front, const Encoding& contents, const Encoding& behind) {
    Encoding octets = front;
    append(octets, {0x30, 0x84});
    for (int shift = 24; shift >= 0; shift -= 8) {
        octets.push_back(static_cast<unsigned char>(contents.size() >> shift));
    }
    octets.insert(octets.end(), contents.begin(), contents.end());
    octets.insert(octets.end(), behind.begin(), behind.end());
    return octets;
}

/// A list with random serial numbers and, in one of nine entries, a reason: 28.6 octets an entry.
Encoding makeList(std::size_t entries) {
    std::mt19937_64 random(entries);
    Encoding contents;
    contents.reserve(entries * 29);
    for (std::size_t i = 0; i < entries; ++i) {
        const bool withReason = random() % 9 == 0;
        append(contents,
               {0x30, static_cast<unsigned char>(withReason ? 39 : 25), 0x02, SerialSize});
        // Positive, and of the full length.
        std::uint64_t serial = (random() >> 1) | UINT64_C(1) << 62;
        for (int shift = 56; shift >= 0; shift -= 8) {
            contents.push_back(static_cast<unsigned char>(serial >> shift));
        }
        append(contents,
               {0x17, 13, '2', '6', '0', '1', '0', '1', '1', '2', '0', '0', '0', '0', 'Z'});
        if (withReason) {
            append(contents, {0x30, 12, 0x30, 10, 0x06, 3, 0x55, 0x1D, 0x15, 0x04, 3, 0x0A, 1, 1});
        }
    }
    const Encoding algorithm = {0x30, 5, 0x06, 3, 0x2A, 3, 4};
    Encoding head = {0x02, 1, 1};
    head.insert(head.end(), algorithm.begin(), algorithm.end());
    append(head, {0x30, 0}); // the issuer
    append(head, {0x17, 13, '2', '6', '0', '1', '0', '1', '1', '2', '0', '0', '0', '0', 'Z'});
    Encoding tail = algorithm;
    append(tail, {0x03, 2, 0, 0});
    return wrapped({}, wrapped({}, wrapped(head, contents, {}), tail), {});
}

double processorTime() {
    std::timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

/// The median of several runs.
double timeOf(int runs, const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const double start = processorTime();
        work();
        times.push_back(processorTime() - start);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

/// Serial numbers that the list has, in no order, apart from it as those of certificates are.
std::vector<std::array<unsigned char, SerialSize>> pickSerials(const RevocationList& list,
                                                               std::size_t entries) {
    const std::size_t step = std::max<std::size_t>(entries / 100'000, 1);
    std::vector<std::array<unsigned char, SerialSize>> serials;
    std::size_t number = 0;
    RevokedEntries all(list);
    for (RevokedEntry entry; all.next(entry); ++number) {
        if (number % step == 0) {
            serials.emplace_back();
            std::copy_n(entry.serialNumber.data, SerialSize, serials.back().begin());
        }
    }
    std::shuffle(serials.begin(), serials.end(), std::mt19937_64(1));
    return serials;
}

struct Row {
    const char* library;
    const char* what;
    const char* calls;
    std::vector<double> nanoseconds; ///< one a list
};

enum Place : std::size_t { Walk, Build, Load, Find, Decode, First, Get };

std::vector<Row> emptyRows() {
    return {
        {"brevantis-asn1", "go through, an entry", "RevokedEntries::next", {}},
            {"brevantis-asn1", "make the index, an entry", "RevocationIndex::build", {}},
            {"brevantis-asn1", "take a kept index, an entry", "RevocationIndex::load", {}},
            {"brevantis-asn1", "a look-up", "RevocationIndex::find", {}},
#if defined(BENCH_WITH_OPENSSL)
            {"OpenSSL", "decode, an entry", "d2i_X509_CRL", {}},
            {"OpenSSL", "the first look-up, an entry", "X509_CRL_get0_by_serial", {}},
            {"OpenSSL", "a look-up", "X509_CRL_get0_by_serial", {}},
#endif
    };
}

void measureInPlace(const Encoding& message, std::size_t entries, std::vector<Row>& rows) {
    constexpr int runs = 9;
    RevocationList list;
    require(list.open(message.data(), message.size()) == 0, "a list is refused");
    const auto count = static_cast<double>(entries);
    rows[Walk].nanoseconds.push_back(
        timeOf(runs,
               [&] {
                   RevokedEntries all(list);
                   std::size_t reasons = 0;
                   for (RevokedEntry entry; all.next(entry);) {
                       reasons += entry.reason == RevokedEntry::NoReason ? 0 : 1;
                   }
                   require(all.status() == 0 && reasons != 0, "an entry is refused");
               }) /
        count);
    rows[Build].nanoseconds.push_back(timeOf(runs,
                                             [&] {
                                                 RevocationIndex index;
                                                 require(index.build(list) == 0,
                                                         "no index can be made");
                                             }) /
                                      count);

    RevocationIndex index;
    require(index.build(list) == 0, "no index can be made");
    rows[Load].nanoseconds.push_back(
        timeOf(runs,
               [&] {
                   RevocationIndex kept;
                   require(kept.load(list, index.octets().data, index.octets().size) == 0,
                           "an index does not fit");
               }) /
        count);
    const auto serials = pickSerials(list, entries);
    rows[Find].nanoseconds.push_back(
        timeOf(runs,
               [&] {
                   for (const auto& serial : serials) {
                       RevokedEntry entry;
                       require(index.find(serial.data(), serial.size(), entry) == 0,
                               "an entry is missed");
                   }
               }) /
        static_cast<double>(serials.size()));
}

#if defined(BENCH_WITH_OPENSSL)

/// Decoding takes the memory that every entry's record needs, so it is done once.
void measureOpenSsl(const Encoding& message, std::size_t entries, std::vector<Row>& rows) {
    RevocationList list;
    require(list.open(message.data(), message.size()) == 0, "a list is refused");
    std::vector<Holder<ASN1_INTEGER, ASN1_INTEGER_free>> serials;
    for (const auto& octets : pickSerials(list, entries)) {
        std::array<unsigned char, 2 + SerialSize> element = {0x02, SerialSize};
        std::copy(octets.begin(), octets.end(), element.begin() + 2);
        const unsigned char* next = element.data();
        serials.emplace_back(d2i_ASN1_INTEGER(nullptr, &next, element.size()));
    }
    const auto count = static_cast<double>(entries);
    Holder<X509_CRL, X509_CRL_free> crl;
    rows[Decode].nanoseconds.push_back(
        timeOf(1,
               [&] {
                   const unsigned char* next = message.data();
                   crl.reset(d2i_X509_CRL(nullptr, &next, static_cast<long>(message.size())));
                   require(crl != nullptr, "OpenSSL refuses a list");
               }) /
        count);
    const auto find = [&](const ASN1_INTEGER* serial) {
        X509_REVOKED* entry = nullptr;
        require(X509_CRL_get0_by_serial(crl.get(), &entry, serial) == 1, "OpenSSL misses an entry");
    };
    rows[First].nanoseconds.push_back(timeOf(1, [&] { find(serials.front().get()); }) / count);
    rows[Get].nanoseconds.push_back(timeOf(9,
                                           [&] {
                                               for (const auto& serial : serials) {
                                                   find(serial.get());
                                               }
                                           }) /
                                    static_cast<double>(serials.size()));
}

#endif

} // namespace

void writeRevocationLookup(std::ostream& out) {
    std::vector<Row> rows = emptyRows();
    out << "### Revocation list, in place and looked up\n\n| library | what | calls |";
    for (const std::size_t entries : Counts) {
        giveBackFreeMemory();
        const Encoding message = makeList(entries);
        measureInPlace(message, entries, rows);
#if defined(BENCH_WITH_OPENSSL)
        measureOpenSsl(message, entries, rows);
#endif
        out << ' ' << entries << " entries, " << octetText(static_cast<double>(message.size()))
            << " |";
    }
    out << "\n| --- | --- | --- |";
    for (std::size_t i = 0; i < Counts.size(); ++i) {
        out << " ---: |";
    }
    out << '\n';
    for (const Row& row : rows) {
        out << "| " << row.library << " | " << row.what << " | " << row.calls << " |";
        for (const double time : row.nanoseconds) {
            out << ' ' << timeText(time) << " |";
        }
        out << '\n';
    }
    out << std::endl;
}

} // namespace bench
