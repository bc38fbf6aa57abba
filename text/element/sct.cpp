#include <brevantis/asn1/text/sct.h>

#include <cstdio>
#include <ctime>
#include <iterator>

namespace asn1text {

namespace {

/// Takes what a TLS structure consists of off octets (RFC 5246, 4).
class Reader {
public:
    explicit Reader(Octets octets) : rest_(octets) {}

    bool atEnd() const { return rest_.empty(); }
    bool number(std::size_t size, std::uint64_t& number) {
        Octets octets;
        if (!take(size, octets)) {
            return false;
        }
        number = 0;
        for (const unsigned char octet : octets) {
            number = number << 8 | octet;
        }
        return true;
    }
    bool take(std::size_t size, Octets& octets) {
        if (size > rest_.size()) {
            return false;
        }
        octets = rest_.first(size);
        rest_ = rest_.subspan(size);
        return true;
    }
    /// Octets behind a length of two octets.
    bool vector(Octets& octets) {
        std::uint64_t size = 0;
        return number(2, size) && take(size, octets);
    }

private:
    Octets rest_;
};

bool readTimestamp(Octets octets, SignedTimestamp& timestamp) {
    constexpr std::size_t logSize = 32;
    Reader reader(octets);
    std::uint64_t version = 0;
    std::uint64_t hash = 0;
    std::uint64_t signature = 0;
    if (!reader.number(1, version) || version != 0 || !reader.take(logSize, timestamp.log) ||
        !reader.number(8, timestamp.time) || !reader.vector(timestamp.extensions) ||
        !reader.number(1, hash) || !reader.number(1, signature) ||
        !reader.vector(timestamp.value) || !reader.atEnd()) {
        return false;
    }
    timestamp.hash = static_cast<unsigned char>(hash);
    timestamp.signature = static_cast<unsigned char>(signature);
    return true;
}

template <std::size_t Count>
std::string nameOf(const char* const (&names)[Count], unsigned number) {
    return number < Count ? names[number] : std::to_string(number);
}

} // namespace

std::optional<std::vector<SignedTimestamp>> readTimestamps(Octets octets) {
    Reader outer(octets);
    Octets list;
    if (!outer.vector(list) || !outer.atEnd() || list.empty()) {
        return std::nullopt;
    }
    std::vector<SignedTimestamp> timestamps;
    for (Reader reader(list); !reader.atEnd();) {
        Octets one;
        SignedTimestamp timestamp;
        if (!reader.vector(one) || !readTimestamp(one, timestamp)) {
            return std::nullopt;
        }
        timestamps.push_back(timestamp);
    }
    return timestamps;
}

std::string timeText(const SignedTimestamp& timestamp) {
    constexpr std::uint64_t endOfYears = 253402300800; // 10000-01-01, in seconds
    const std::uint64_t seconds = timestamp.time / 1000;
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    char text[40];
    if (seconds >= endOfYears || gmtime_r(&time, &parts) == nullptr) {
        return "";
    }
    const std::size_t size = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text + size, sizeof text - size, ".%03uZ",
                  static_cast<unsigned>(timestamp.time % 1000));
    return text;
}

std::string algorithmText(const SignedTimestamp& timestamp) {
    constexpr const char* hashes[] = {"none",   "md5",    "sha1",  "sha224",
                                      "sha256", "sha384", "sha512"};
    constexpr const char* signatures[] = {"anonymous", "rsa", "dsa", "ecdsa"};
    return nameOf(signatures, timestamp.signature) + " with " + nameOf(hashes, timestamp.hash);
}

} // namespace asn1text
