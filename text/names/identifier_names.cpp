#include <brevantis/asn1/text/names.h>

#include <climits>
#include <optional>
#include <utility>

#include <brevantis/asn1/text/octets.h>

#include "encoded_identifier.h"
#include "value/blanks.h"

namespace asn1text {

namespace {

bool isEncoded(const OctetStore& octets, ASN1OBJID& identifier) {
    return !octets.empty() && readEncoded(octets, identifier) == octets.size();
}

/// Reads "2 5 29 14", "2.5.29.14" or "06 03 55 1D 0E".
bool readArcs(std::string_view text, ASN1OBJID& identifier) {
    const bool encoded = text.substr(0, 2) == "06";
    std::string dots;
    OctetStore octets;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(Blanks), text.size());
        const std::string_view word = text.substr(0, end);
        if (encoded) {
            const int high = word.size() == 2 ? hexDigit(static_cast<unsigned char>(word[0])) : -1;
            const int low = high >= 0 ? hexDigit(static_cast<unsigned char>(word[1])) : -1;
            if (low < 0) {
                return false;
            }
            octets.push_back(static_cast<unsigned char>(high << 4 | low));
        } else {
            dots += (dots.empty() ? "" : ".") + std::string(word);
        }
        text = trimmed(text.substr(end));
    }
    return encoded ? isEncoded(octets, identifier) : readDotted(dots, identifier);
}

/// A name without the arcs that may stand behind it, "subjectKeyIdentifier (2 5 29 14)".
std::string_view withoutArcs(std::string_view name) {
    const std::size_t open = name.rfind('(');
    const bool arcs = open != std::string_view::npos && open != 0 && name.back() == ')' &&
                      name.find_first_not_of("0123456789 .", open + 1) == name.size() - 1;
    return arcs ? trimmed(name.substr(0, open)) : name;
}

} // namespace

const IdentifierNames& IdentifierNames::ofLibrary() noexcept {
    static const IdentifierNames none;
    return none;
}

void IdentifierNames::add(const ASN1OBJID& identifier, std::string_view name) {
    std::string dots = dottedText(identifier);
    names_[dots] = name;
    dots_[std::string(name)] = std::move(dots);
}

std::string IdentifierNames::read(std::string_view configuration) {
    std::optional<ASN1OBJID> identifier;
    for (std::size_t number = 1; !configuration.empty(); ++number) {
        const std::size_t end = std::min(configuration.find('\n'), configuration.size());
        const std::string_view line = trimmed(configuration.substr(0, end));
        configuration.remove_prefix(std::min(end + 1, configuration.size()));
        const std::size_t equals = line.find('=');
        const std::string_view key = trimmed(line.substr(0, equals));
        const std::string_view value =
            equals != std::string_view::npos ? trimmed(line.substr(equals + 1)) : "";
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (key == "OID") {
            identifier.emplace();
            if (!readArcs(value, *identifier)) {
                return "line " + std::to_string(number) + ": no object identifier";
            }
        } else if (key == "Description") {
            if (!identifier || value.empty()) {
                return "line " + std::to_string(number) + ": a description without its " +
                       (identifier ? "text" : "identifier");
            }
            add(*identifier, withoutArcs(value));
            identifier.reset();
        } else if (key != "Comment" && key != "Warning") {
            return "line " + std::to_string(number) +
                   ": none of OID, Description, Comment and Warning";
        }
    }
    return "";
}

const char* IdentifierNames::nameOf(const ASN1OBJID& identifier) const {
    if (!names_.empty()) {
        const auto own = names_.find(dottedText(identifier));
        if (own != names_.end()) {
            return own->second.c_str();
        }
    }
    return identifierName(identifier);
}

bool IdentifierNames::find(std::string_view name, ASN1OBJID& identifier) const {
    const auto own = dots_.find(name);
    return own != dots_.end() ? readDotted(own->second, identifier)
                              : findIdentifier(name, identifier);
}

} // namespace asn1text
