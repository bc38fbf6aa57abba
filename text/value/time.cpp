#include <brevantis/asn1/text/value.h>

namespace asn1text {

using asn1data::WalkElement;

namespace {

std::optional<int> digitsAt(std::string_view text, std::size_t place, std::size_t count) {
    if (text.size() < place + count) {
        return std::nullopt;
    }
    int number = 0;
    for (const char digit : text.substr(place, count)) {
        if (digit < '0' || digit > '9') {
            return std::nullopt;
        }
        number = number * 10 + (digit - '0');
    }
    return number;
}

/// "Z" or "+0200" as "Z" or "+02:00"; nothing for anything else.
std::optional<std::string> isoZone(std::string_view zone) {
    if (zone.empty() || zone == "Z") {
        return std::string(zone);
    }
    const bool known = (zone[0] == '+' || zone[0] == '-') &&
                       (zone.size() == 3 || zone.size() == 5) && digitsAt(zone, 1, zone.size() - 1);
    if (!known) {
        return std::nullopt;
    }
    return std::string(zone.substr(0, 3)) + ":" +
           std::string(zone.size() == 5 ? zone.substr(3) : "00");
}

} // namespace

std::optional<std::string> isoTime(std::string_view text, bool generalized) {
    const std::size_t yearDigits = generalized ? 4 : 2;
    std::string iso;
    const auto year = digitsAt(text, 0, yearDigits);
    if (!year) {
        return std::nullopt;
    }
    iso = generalized ? std::string(text.substr(0, 4))
                      : (*year < 50 ? "20" : "19") + std::string(text.substr(0, 2));
    struct Field {
        char separator;
        int lower;
        int upper;
        bool optional;
    };
    const Field fields[] = {{'-', 1, 12, false},
                            {'-', 1, 31, false},
                            {'T', 0, 23, false},
                            {':', 0, 59, generalized},
                            {':', 0, 60, true}};
    std::size_t place = yearDigits;
    for (const Field& field : fields) {
        const auto number = digitsAt(text, place, 2);
        if (!number && field.optional) {
            iso += field.separator + std::string("00");
            continue;
        }
        if (!number || *number < field.lower || *number > field.upper) {
            return std::nullopt;
        }
        iso += field.separator;
        iso += text.substr(place, 2);
        place += 2;
    }
    if (generalized && place < text.size() && (text[place] == '.' || text[place] == ',')) {
        std::size_t end = place + 1;
        while (digitsAt(text, end, 1)) {
            ++end;
        }
        if (end == place + 1 || place != yearDigits + 10) {
            return std::nullopt;
        }
        iso += '.';
        iso += text.substr(place + 1, end - place - 1);
        place = end;
    }
    const auto zone = isoZone(text.substr(place));
    return zone ? std::optional(iso + *zone) : std::nullopt;
}

std::optional<std::string> isoTime(const WalkElement& element) {
    constexpr std::size_t longest = 64;
    if (element.value.octetCount > longest) {
        return std::nullopt;
    }
    OctetStore store;
    const Octets octets = valueOctets(element, longest, store);
    return isoTime(std::string(octets.begin(), octets.end()), isGeneralizedTime(*element.type));
}

std::optional<std::string> encodedTime(std::string_view iso, bool generalized) {
    if (isoTime(iso, generalized)) {
        return std::string(iso);
    }
    // The places of YYYY-MM-DDThh:mm:ss.
    constexpr std::string_view marks = "    -  -  T  :  :  ";
    if (iso.size() < marks.size()) {
        return std::nullopt;
    }
    std::string text;
    for (std::size_t place = 0; place < marks.size(); ++place) {
        if (marks[place] == ' ') {
            text += iso[place];
        } else if (iso[place] != marks[place]) {
            return std::nullopt;
        }
    }
    const auto year = digitsAt(iso, 0, 4);
    if (!generalized && (!year || *year < 1950 || *year > 2049)) {
        return std::nullopt;
    }
    text.erase(0, generalized ? 0 : 2);
    for (const char character : iso.substr(marks.size())) {
        if (character != ':') {
            text += character;
        }
    }
    // What reads back as something else was no such time.
    const auto again = isoTime(text, generalized);
    return again && *again == iso ? std::optional(text) : std::nullopt;
}

} // namespace asn1text
