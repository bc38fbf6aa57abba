#include <brevantis/asn1/text/inner_types.h>

#include <cstring>
#include <optional>
#include <string_view>

#include <brevantis/asn1/text/elements.h>
#include <brevantis/asn1/text/names.h>
#include <brevantis/asn1/text/types.h>
#include <brevantis/asn1/text/value.h>

#include "names/encoded_identifier.h"

namespace asn1text {

namespace {

using asn1data::TypeDescription;
using asn1data::WalkElement;

/// What an element of a record holds.
struct Row {
    const char* element;
    const char* container; ///< the record; null where that does not matter
    const char* algorithm; ///< that stands beside it; null where that does not matter
    const char* begins;    ///< arcs of the first identifier in it; null where they do not matter
    const char* type;
};

/// Of several rows the first is taken whose type the octets are. A type that the program does not
/// have is passed over.
constexpr Row Rows[] = {
    {"toBeSigned", "SignedOpenType", nullptr, nullptr, "TBSCertificate"},
    {"toBeSigned", "SignedOpenType", nullptr, nullptr, "TBSCertList"},
    {"toBeSigned", "SignedOpenType", nullptr, nullptr, "AttributeCertificateInfo"},
    {"toBeSigned", "SignedOpenType", nullptr, nullptr, "PublishedX509.TBSCertificate"},
    {"subjectPublicKey", nullptr, "rsaEncryption", nullptr, "RsaPubKey"},
    {"subjectPublicKey", nullptr, "rsaEncryption", nullptr, "RSAPublicKey"},
    {"subjectPublicKey", nullptr, "id_RSASSA_PSS", nullptr, "RsaPubKey"},
    {"subjectPublicKey", nullptr, "id_RSASSA_PSS", nullptr, "RSAPublicKey"},
    {"subjectPublicKey", nullptr, "id_dsa", nullptr, "DSAPublicKey"},
    {"subjectPublicKey", nullptr, "dhpublicnumber", nullptr, "DHPublicKey"},
    {"privateKey", nullptr, "rsaEncryption", nullptr, "RSAPrivateKey"},
    {"privateKey", nullptr, "id_RSASSA_PSS", nullptr, "RSAPrivateKey"},
    {"privateKey", nullptr, "id_ecPublicKey", nullptr, "ECPrivateKey"},
    {"privateKey", nullptr, "id_dsa", nullptr, "DSAPublicKey"},
    {"parameters", nullptr, "id_PBES2", nullptr, "PBES2_params"},
    {"parameters", nullptr, "id_PBKDF2", nullptr, "PBKDF2_params"},
    {"content", nullptr, nullptr, "1.2.840.113549.1.7.", "AuthenticatedSafe"},
    {"content", nullptr, nullptr, "1.2.840.113549.1.12.10.1.", "SafeContents"},
    {"eContent", nullptr, nullptr, nullptr, "TSTInfo"},
    {"certValue", "CertBag", nullptr, nullptr, "Certificate"},
    {"crlValue", "CRLBag", nullptr, nullptr, "CertificateList"},
};

/// The identifier that octets begin with.
std::optional<ASN1OBJID> identifierIn(Octets octets) {
    ASN1OBJID identifier{};
    return readEncoded(octets, identifier) != 0 ? std::optional(identifier) : std::nullopt;
}

/// Whether the first identifier in octets, however deep, has arcs as a row tells.
bool begins(Octets octets, std::string_view arcs) {
    for (auto element = firstElement(octets); element && element->constructed;) {
        octets = element->contents;
        element = firstElement(octets);
    }
    const auto identifier = identifierIn(octets);
    return identifier && std::string_view(dottedText(*identifier)).substr(0, arcs.size()) == arcs;
}

bool isWhole(const TypeDescription& type, Octets octets) {
    asn1data::WalkVisitor nothing;
    const asn1data::WalkResult result = asn1data::walk(type, octets.data(), octets.size(), nothing);
    return result.status == 0 && result.consumed == octets.size();
}

/// Bits of the first INTEGER in a SEQUENCE: those of a modulus.
std::size_t modulusBits(const TypeDescription& type, Octets octets) {
    class Bits : public asn1data::WalkVisitor {
    public:
        asn1data::WalkAction primitive(const WalkElement& element) override {
            const Magnitude number({element.value.octets, element.value.octetCount}, false);
            if (number.size() <= 1 && isPrivate) { // the version
                return asn1data::WalkAction::Continue;
            }
            bits = number.size() * 8;
            for (unsigned first = bits != 0 ? number[0] : 0x80; first < 0x80; first <<= 1) {
                --bits;
            }
            return asn1data::WalkAction::Stop;
        }
        bool isPrivate = false;
        std::size_t bits = 0;
    };
    Bits visitor;
    visitor.isPrivate = std::string_view(type.name).find("Private") != std::string_view::npos;
    asn1data::walk(type, octets.data(), octets.size(), visitor);
    return visitor.bits;
}

/// The size of a curve, which its name tells.
std::string curveBits(std::string_view curve) {
    constexpr std::string_view digits = "0123456789";
    for (std::size_t place = 0; place < curve.size();) {
        const std::size_t first = curve.find_first_of(digits, place);
        if (first == std::string_view::npos) {
            break;
        }
        const std::size_t end = std::min(curve.find_first_not_of(digits, first), curve.size());
        if (end - first == 3) {
            return std::string(curve.substr(first, 3)) + " bits ";
        }
        place = end;
    }
    return "";
}

std::string_view ownName(const char* name) {
    constexpr std::string_view prefix = "id_";
    const std::string_view whole = name;
    return whole.substr(0, 3) == prefix ? whole.substr(3) : whole;
}

} // namespace

void InnerTypes::enter(const WalkElement& /*element*/) {
    entered_.emplace_back();
}

void InnerTypes::leave() {
    const Algorithm told = entered_.back().own;
    entered_.pop_back();
    if (!entered_.empty() && told.name != nullptr) {
        entered_.back().inner = told;
    }
}

void InnerTypes::primitive(const WalkElement& element) {
    if (entered_.empty()) {
        return;
    }
    Algorithm& told = entered_.back().own;
    const bool isIdentifier =
        element.type != nullptr && valueKind(*element.type) == ValueKind::Identifier;
    if (isIdentifier && element.element != nullptr &&
        std::strcmp(element.element->name, "algorithm") == 0) {
        told = {identifierName(*element.value.identifier), nullptr};
    } else if (told.name != nullptr && isIdentifier) {
        told.parameter = identifierName(*element.value.identifier);
    } else if (told.name != nullptr && valueKind(element) == ValueKind::Raw) {
        const auto identifier = identifierIn({element.value.octets, element.value.octetCount});
        told.parameter = identifier ? identifierName(*identifier) : nullptr;
    }
}

InnerType InnerTypes::find(const WalkElement& element, Octets contents) const {
    InnerType inner;
    // An alternative or a typed open value stands in the member of a record.
    const asn1data::WalkStep* step = element.step;
    while (step->kind == asn1data::StepKind::Alternative ||
           step->kind == asn1data::StepKind::Object) {
        step = step->outer;
    }
    if (entered_.empty() || step->kind != asn1data::StepKind::Member) {
        return inner;
    }
    // Parameters stand beside their algorithm, keys beside the element that tells it.
    const Algorithm& algorithm =
        entered_.back().own.name != nullptr ? entered_.back().own : entered_.back().inner;
    for (const Row& row : Rows) {
        if (std::strcmp(row.element, step->name) != 0 ||
            (row.container != nullptr && element.container != nullptr && step == element.step &&
             std::strcmp(row.container, element.container->name) != 0) ||
            (row.algorithm != nullptr &&
             (algorithm.name == nullptr || std::strcmp(row.algorithm, algorithm.name) != 0))) {
            continue;
        }
        const TypeDescription* const type = findType(row.type);
        if (type != nullptr && (row.begins == nullptr || begins(contents, row.begins)) &&
            isWhole(*type, contents)) {
            inner.type = type;
            break;
        }
    }
    const bool isKey = std::strcmp(step->name, "subjectPublicKey") == 0 ||
                       std::strcmp(step->name, "privateKey") == 0;
    if (isKey && algorithm.name != nullptr) {
        const std::string_view name = ownName(algorithm.name);
        const bool rsa = name == "rsaEncryption" || name == "RSASSA_PSS" || name == "RSAES_OAEP";
        const std::size_t bits =
            rsa && inner.type != nullptr ? modulusBits(*inner.type, contents) : 0;
        if (bits != 0) {
            inner.key = "RSA " + std::to_string(bits) + " bits";
        } else if (name == "ecPublicKey" && algorithm.parameter != nullptr) {
            inner.key = "EC " + curveBits(algorithm.parameter) + "(" + algorithm.parameter + ")";
        } else if (name == "Ed25519" || name == "X25519" || name == "Ed448" || name == "X448") {
            inner.key = name; // which tells the size
        }
    }
    return inner;
}

} // namespace asn1text
