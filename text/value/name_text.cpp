#include <brevantis/asn1/text/name_text.h>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/text/elements.h>
#include <brevantis/asn1/text/value.h>

namespace asn1text {

namespace {

using asn1data::WalkElement;

constexpr std::size_t LongestName = std::size_t{1} << 16;

struct ShortName {
    const char* name;
    const char* shortName;
};

/// Names as RFC 4514 and RFC 4519 have them, and those that are customary.
constexpr ShortName ShortNames[] = {
    {"id_at_commonName", "CN"},
    {"id_at_countryName", "C"},
    {"id_at_organizationName", "O"},
    {"id_at_organizationalUnitName", "OU"},
    {"id_at_localityName", "L"},
    {"id_at_stateOrProvinceName", "ST"},
    {"id_at_streetAddress", "STREET"},
    {"id_at_domainComponent", "DC"},
    {"userId", "UID"},
    {"id_at_surname", "SN"},
    {"id_at_givenName", "GN"},
    {"emailAddress", "emailAddress"},
};

/// The only value in an element of a built-in type.
class OneValue : public asn1data::WalkVisitor {
public:
    explicit OneValue(const IdentifierNames& names) : names_(names) {}

    asn1data::WalkAction primitive(const WalkElement& element) override {
        const ValueKind kind = valueKind(element);
        isText = kind == ValueKind::Text;
        if (isText) {
            isText =
                forEachCharacter(element, [this](std::uint32_t code) { appendUtf8(text, code); });
        } else if (kind == ValueKind::Identifier) {
            text = typeName(*element.value.identifier);
        }
        return asn1data::WalkAction::Continue;
    }

    std::string text;
    bool isText = false;

private:
    std::string typeName(const ASN1OBJID& identifier) const {
        const char* const name = names_.nameOf(identifier);
        if (name == nullptr) {
            return dottedText(identifier);
        }
        for (const ShortName& row : ShortNames) {
            if (std::string_view(row.name) == name) {
                return row.shortName;
            }
        }
        constexpr std::string_view prefix = "id_at_";
        const std::string_view whole = name;
        return std::string(whole.substr(0, prefix.size()) == prefix ? whole.substr(prefix.size())
                                                                    : whole);
    }

    const IdentifierNames& names_;
};

bool read(Octets octets, OneValue& value) {
    const std::optional<PlainElement> element = firstElement(octets);
    const auto* const type = element ? builtinType(*element) : nullptr;
    if (type == nullptr) {
        return false;
    }
    const asn1data::WalkResult result =
        asn1data::walk(*type, octets.data(), element->octets.size(), value);
    return result.status == 0 && result.consumed == element->octets.size();
}

/// RFC 4514, 2.4.
std::string escaped(const std::string& text) {
    std::string result;
    for (std::size_t place = 0; place < text.size(); ++place) {
        const char character = text[place];
        const bool edge = (character == ' ' && (place == 0 || place + 1 == text.size())) ||
                          (character == '#' && place == 0);
        if (edge || std::string_view("\"+,;<>\\").find(character) != std::string_view::npos) {
            result += '\\';
        }
        result += character;
    }
    return result;
}

/// Takes the next element, of a tag, off octets.
std::optional<PlainElement> take(Octets& octets, unsigned char identifier) {
    std::optional<PlainElement> element = firstElement(octets);
    if (!element || octets[0] != identifier) {
        return std::nullopt;
    }
    octets = octets.subspan(element->octets.size());
    return element;
}

} // namespace

std::optional<std::string> nameText(Octets name, const IdentifierNames& names) {
    constexpr unsigned char sequence = 0x30;
    constexpr unsigned char set = 0x31;
    std::string text;
    const auto whole = name.size() <= LongestName ? take(name, sequence) : std::nullopt;
    if (!whole) {
        return std::nullopt;
    }
    for (Octets parts = whole->contents; !parts.empty();) {
        const auto part = take(parts, set);
        if (!part || part->contents.empty()) {
            return std::nullopt;
        }
        const char* join = text.empty() ? "" : ",";
        for (Octets attributes = part->contents; !attributes.empty(); join = "+") {
            const auto attribute = take(attributes, sequence);
            OneValue type(names);
            const auto identifier = attribute ? firstElement(attribute->contents) : std::nullopt;
            if (!identifier || !read(identifier->octets, type) || type.text.empty()) {
                return std::nullopt;
            }
            const Octets encoded = attribute->contents.subspan(identifier->octets.size());
            const auto only = firstElement(encoded);
            if (!only || only->octets.size() != encoded.size()) {
                return std::nullopt;
            }
            OneValue value(names);
            const bool isText = read(encoded, value) && value.isText;
            text +=
                join + type.text + "=" + (isText ? escaped(value.text) : "#" + hexText(encoded));
        }
    }
    return text;
}

} // namespace asn1text
