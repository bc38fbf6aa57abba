#include <brevantis/asn1/text/names.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>
#include <limits>

#include <brevantis/asn1/asn1data/describe.h>

namespace asn1text {

namespace {

struct NamedIdentifier {
    std::string_view dots;
    const char* name;
    const char* source;
};

constexpr NamedIdentifier WellKnown[] = {
#include "names.inc"
};

constexpr bool isSorted() {
    for (std::size_t i = 1; i < std::size(WellKnown); ++i) {
        if (!(WellKnown[i - 1].dots < WellKnown[i].dots)) {
            return false;
        }
    }
    return true;
}
static_assert(isSorted(), "the lines of names.txt are sorted by their octets");

/// Room for the dotted form of any identifier in the table.
constexpr std::size_t LongestDots = 64;

/// Writes the dotted form.
/// @return its length; 0 where the room does not take it
std::size_t writeDotted(const ASN1OBJID& identifier, char* text, std::size_t size) {
    char* place = text;
    char* const end = text + size;
    const unsigned count = std::min<unsigned>(identifier.numids, ASN1MaxSubIds);
    for (unsigned i = 0; i < count; ++i) {
        if (i != 0) {
            if (place == end) {
                return 0;
            }
            *place++ = '.';
        }
        const std::to_chars_result result = std::to_chars(place, end, identifier.subid[i]);
        if (result.ec != std::errc()) {
            return 0;
        }
        place = result.ptr;
    }
    return static_cast<std::size_t>(place - text);
}

const NamedIdentifier* findWellKnown(const ASN1OBJID& identifier) {
    char text[LongestDots];
    const std::string_view dots(text, writeDotted(identifier, text, sizeof text));
    const auto* const found = std::lower_bound(
        std::begin(WellKnown), std::end(WellKnown), dots,
        [](const NamedIdentifier& row, std::string_view wanted) { return row.dots < wanted; });
    return found != std::end(WellKnown) && found->dots == dots ? found : nullptr;
}

} // namespace

std::string dottedText(const ASN1OBJID& identifier) {
    constexpr std::size_t longestArc = std::numeric_limits<unsigned>::digits10 + 2;
    std::string text(std::min<std::size_t>(identifier.numids, ASN1MaxSubIds) * longestArc, '\0');
    text.resize(writeDotted(identifier, text.data(), text.size()));
    return text;
}

bool readDotted(std::string_view text, ASN1OBJID& identifier) noexcept {
    const char* place = text.data();
    const char* const end = place + text.size();
    identifier.numids = 0;
    for (;;) {
        unsigned arc = 0;
        const std::from_chars_result result = std::from_chars(place, end, arc);
        const bool padded = result.ptr - place > 1 && *place == '0';
        if (result.ec != std::errc() || padded || identifier.numids == ASN1MaxSubIds) {
            return false;
        }
        identifier.subid[identifier.numids++] = arc;
        place = result.ptr;
        if (place == end) {
            break;
        }
        if (*place++ != '.') {
            return false;
        }
    }
    constexpr unsigned perRoot = 40; // X.660, A.2
    return identifier.numids >= 2 && identifier.subid[0] <= 2 &&
           (identifier.subid[0] == 2
                ? identifier.subid[1] <= std::numeric_limits<unsigned>::max() - 2 * perRoot
                : identifier.subid[1] < perRoot);
}

const char* identifierName(const ASN1OBJID& identifier) noexcept {
    const char* const name = asn1data::identifierName(identifier);
    if (name != nullptr) {
        return name;
    }
    const NamedIdentifier* const found = findWellKnown(identifier);
    return found != nullptr ? found->name : nullptr;
}

const char* identifierSource(const ASN1OBJID& identifier) noexcept {
    const NamedIdentifier* const found = findWellKnown(identifier);
    return found != nullptr ? found->source : nullptr;
}

bool findIdentifier(std::string_view name, ASN1OBJID& identifier) noexcept {
    for (const asn1data::IdentifierDescription& constant : asn1data::allIdentifiers()) {
        if (name == constant.name) {
            identifier = *constant.identifier;
            return true;
        }
    }
    const auto* const found =
        std::find_if(std::begin(WellKnown), std::end(WellKnown),
                     [&](const NamedIdentifier& row) { return name == row.name; });
    return found != std::end(WellKnown) && readDotted(found->dots, identifier);
}

} // namespace asn1text
