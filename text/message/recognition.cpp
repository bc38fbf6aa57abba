#include <brevantis/asn1/text/recognition.h>

#include <algorithm>
#include <cctype>
#include <string_view>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/text/types.h>

namespace asn1text {

using asn1data::TypeDescription;
using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

struct LabelledType {
    std::string_view label;
    const char* type;
};

/// Labels of RFC 7468 and those that other software writes.
constexpr LabelledType LabelledTypes[] = {
    {"CERTIFICATE", "Certificate"},
    {"X509 CERTIFICATE", "Certificate"},
    {"X.509 CERTIFICATE", "Certificate"},
    {"TRUSTED CERTIFICATE", "Certificate"},
    {"X509 CRL", "CertificateList"},
    {"CRL", "CertificateList"},
    {"CERTIFICATE REQUEST", "CertificationRequest"},
    {"NEW CERTIFICATE REQUEST", "CertificationRequest"},
    {"PKCS7", "ContentInfo"},
    {"PKCS #7 SIGNED DATA", "ContentInfo"},
    {"CMS", "ContentInfo"},
    {"PKCS12", "PFX"},
    {"PRIVATE KEY", "PrivateKeyInfo"},
    {"ENCRYPTED PRIVATE KEY", "EncryptedPrivateKeyInfo"},
    {"PUBLIC KEY", "SubjectPublicKeyInfo"},
    {"RSA PUBLIC KEY", "RsaPubKey"},
    {"RSA PRIVATE KEY", "PublishedKeys.RSAPrivateKey"},
    {"EC PRIVATE KEY", "PublishedKeys.ECPrivateKey"},
    {"EC PARAMETERS", "PublishedKeys.ECParameters"},
    {"DSA PRIVATE KEY", "PublishedKeys.DSAPrivateKey"},
    {"DH PARAMETERS", "PublishedKeys.DHParameter"},
    {"ATTRIBUTE CERTIFICATE", "AttributeCertificate"},
    {"DSA PARAMETERS", "Dss_Parms"},
    {"X9.42 DH PARAMETERS", "DomainParameters"},
    {"OCSP REQUEST", "OCSPRequest"},
    {"OCSP RESPONSE", "OCSPResponse"},
};

/// Top-level types as they are met. Of several that a message fits, the first one is taken: those
/// that say more about a message stand in front.
constexpr const char* UsualTypes[] = {
    "Certificate",
    "CertificateList",
    "CertificationRequest",
    "ContentInfo",
    "PFX",
    "PrivateKeyInfo",
    "SubjectPublicKeyInfo",
    "EncryptedPrivateKeyInfo",
    "OCSPRequest",
    "OCSPResponse",
    "BasicOCSPResponse",
    "TimeStampReq",
    "TimeStampResp",
    "TSTInfo",
    "PKIMessage",
    "CertReqMessages",
    "DVCSRequest",
    "DVCSResponse",
    "AttributeCertificate",
    "CertificatePair",
    "SignedData",
    "TimeStampAuthenticodeRequest",
    "Extensions",
    "Name",
    "GeneralNames",
    "AlgorithmIdentifier",
    "RsaPubKey",
    "Dss_Parms",
    "DomainParameters",
    "PublishedKeys.RSAPrivateKey",
    "PublishedKeys.ECPrivateKey",
    "PublishedKeys.DSAPrivateKey",
};

/// Ends a walk that has agreed for long enough.
class Trial : public asn1data::WalkVisitor {
public:
    WalkAction enter(const WalkElement& /*element*/) override { return count(); }
    WalkAction primitive(const WalkElement& /*element*/) override { return count(); }

    unsigned elements = 0;

private:
    WalkAction count() {
        constexpr unsigned enough = 2000;
        return ++elements < enough ? WalkAction::Continue : WalkAction::Stop;
    }
};

/// How far a message agrees with a type.
struct Agreement {
    bool whole = false;
    unsigned elements = 0; ///< that it shares with the type
    unsigned offset = 0;   ///< where that ends

    /// Whether this says more than another. Where the start of a message is damaged an element more
    /// or less is chance, and the more usual type, which comes first, the better guess.
    bool clearlyBeats(const Agreement& other) const {
        return elements > other.elements + 2 ||
               (elements > other.elements && offset >= other.offset + 4);
    }
};

Agreement compare(Octets message, const TypeDescription& type) {
    Trial trial;
    const asn1data::WalkResult result = asn1data::walk(type, message.data(), message.size(), trial);
    return {result.status == 0 && (result.stopped || result.consumed == message.size()),
            trial.elements, result.status == 0 ? result.consumed : result.failure.offset};
}

/// Whether a message begins as a ContentInfo does, with the identifier of a known content: the
/// surest sign that it is one, however damaged the content may be.
bool isKnownContent(Octets message) {
    class FirstIdentifier : public asn1data::WalkVisitor {
    public:
        explicit FirstIdentifier(const TypeDescription& type) : type_(type) {}

        WalkAction primitive(const WalkElement& element) override {
            const asn1data::ObjectSetDescription& set = *type_.table->objects;
            const ASN1OBJID* const identifier = element.value.identifier;
            for (unsigned i = 0; identifier != nullptr && i < set.count; ++i) {
                const asn1data::ObjectDescription& object = set.objects[i];
                known =
                    known || std::equal(object.arcs, object.arcs + object.arcCount,
                                        identifier->subid, identifier->subid + identifier->numids);
            }
            return WalkAction::Stop;
        }

        bool known = false;

    private:
        const TypeDescription& type_;
    };
    const TypeDescription* const type = findType("ContentInfo");
    FirstIdentifier visitor(*type);
    asn1data::walk(*type, message.data(), message.size(), visitor);
    return visitor.known;
}

const TypeDescription* typeOfLabel(std::string_view label) {
    for (const LabelledType& labelled : LabelledTypes) {
        if (label == labelled.label) {
            return findType(labelled.type);
        }
    }
    return nullptr;
}

/// The usual type that a message is; if it is none, the one that it agrees with for longest.
/// @param whole only a type that it is will do
/// @param cut octets at its end are missing
const TypeDescription* bestMatch(Octets message, bool whole, bool cut) {
    const TypeDescription* best = nullptr;
    Agreement most;
    // A SEQUENCE alone says nothing, and little with a number in it, unless that is all there is.
    most.elements = cut ? 1 : 2;
    for (const char* const name : UsualTypes) {
        const TypeDescription* const type = findType(name);
        const Agreement agreement = compare(message, *type);
        if (agreement.whole) {
            return type;
        }
        if (whole) {
            continue;
        }
        if (best != nullptr ? agreement.clearlyBeats(most) : agreement.elements > most.elements) {
            best = type;
            most = agreement;
        }
    }
    return best;
}

bool isWhole(Octets message, const TypeDescription& type) {
    asn1data::WalkVisitor nothing;
    const asn1data::WalkResult result =
        asn1data::walk(type, message.data(), message.size(), nothing);
    return result.status == 0 && result.consumed == message.size();
}

Recognition recogniseInCatalogue(Octets message, std::string_view label, bool cut) {
    if (const TypeDescription* const type = typeOfLabel(label)) {
        // A label may lie; what it names is taken if the message agrees with it beyond its start.
        const Agreement agreement = compare(message, *type);
        if (agreement.whole || agreement.elements > 2) {
            return {type, "by its PEM label"};
        }
        if (const TypeDescription* const other = bestMatch(message, false, cut)) {
            return {other, "best match, in spite of its PEM label"};
        }
        return {type, "by its PEM label"};
    }
    if (isKnownContent(message)) {
        return {findType("ContentInfo"), "by its content type"};
    }
    // What the label names is a better guess than a type that the message does not even fit.
    const bool labelled = !label.empty();
    const TypeDescription* const type = bestMatch(message, labelled, cut);
    if (type == nullptr) {
        return {nullptr, labelled ? "the label " + std::string(label) + " names no known type"
                                  : "none of the usual types"};
    }
    return {type, "best match"};
}

} // namespace

Recognition recognise(Octets message, std::string_view label, bool cut) {
    Recognition recognition = recogniseInCatalogue(message, label, cut);
    // A message is gone through once more for this: with a revocation list of gigabytes that would
    // be felt, and the catalogue reads these.
    constexpr std::size_t largest = std::size_t{16} << 20;
    if (recognition.type == nullptr || cut || message.size() > largest) {
        return recognition;
    }
    const TypeDescription* const published = publishedForm(*recognition.type);
    if (published != nullptr && !isWhole(message, *recognition.type) &&
        isWhole(message, *published)) {
        recognition.reason += "; only its published form fits";
        recognition.type = published;
    }
    return recognition;
}

std::string labelOf(const TypeDescription& type) {
    std::string label = type.name;
    label.erase(0, label.find('.') + 1); // of a published type as of the catalogue's
    for (const LabelledType& labelled : LabelledTypes) {
        if (label == labelled.type || std::string_view(type.name) == labelled.type) {
            return std::string(labelled.label);
        }
    }
    std::transform(label.begin(), label.end(), label.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    return label;
}

} // namespace asn1text
