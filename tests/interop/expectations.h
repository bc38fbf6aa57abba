#ifndef TESTS_INTEROP_EXPECTATIONS_H
#define TESTS_INTEROP_EXPECTATIONS_H

#include <set>
#include <string>
#include <vector>

#include <brevantis/asn1/runtime/status.h>

// What is known beforehand about the messages of make_messages.sh. Messages are patterns of the
// shell over "TYPE/NAME"; a row that no message needs is a failure of the test.

namespace interop {

/// Messages that do not come back as they were, and why that is right.
const struct Exception {
    const char* messages;
    int status; ///< of the decoder; 0: the value comes back in other octets or not in DER
    const char* reason;
} exceptions[] = {
    {"PKIMessage/*-certConf", ASN1S_INVALID_CHOICE,
     "the catalogue has the bodies [0] to [23] of the first edition; this is [24] of the second"},
    {"PKIMessage/waiting-poll*", ASN1S_INVALID_CHOICE,
     "the catalogue has the bodies [0] to [23] of the first edition; these are [25] and [26]"},
    {"*/dsa", ASN1S_VALUE_TOO_BIG, "the catalogue holds DSA domain parameters of 32 bits"},
    {"*/dhx", ASN1S_VALUE_TOO_BIG,
     "the catalogue holds Diffie-Hellman domain parameters of 32 bits"},
    {"Certificate/country-address", ASN1S_CONSTRAINT_VIOLATION,
     "the catalogue has a country of 32768 characters in an X.400 address"},
    {"Certificate/person-address", ASN1S_TAG_NOT_FOUND,
     "the catalogue has EXPLICIT tags in the name of a person in an X.400 address"},
    {"CertificateList/attribute-certificates", ASN1S_EXTRA_ELEMENT,
     "the catalogue has no flag [5] in the scope of a revocation list"},
    {"ContentInfo/streamed-authenticated-enveloped", 0,
     "the content is of a type that the catalogue has not, so it stays as it came"},
    {"Certificate/odd-text", 0,
     "a BMPString of an odd number of octets, which the command makes, loses the last one"},
};

/// Open values that have to come out typed, by the names of their objects.
const struct Expectation {
    const char* messages;
    std::set<std::string> objects;
} expectations[] = {
    {"Certificate/*-every-extension",
     {"basicConstraints",
      "keyUsage",
      "extKeyUsage",
      "subjectKeyIdentifier",
      "authorityKeyIdentifier",
      "subjectAltName",
      "issuerAltName",
      "subjectDirectoryAttributes",
      "privateKeyUsagePeriod",
      "certificatePolicies",
      "cRLDistributionPoints",
      "freshestCrl",
      "authorityInfoAccess",
      "subjectInfoAccess",
      "qtCpsQualifier",
      "qtUnoticeQualifier",
      "name",
      "countryName",
      "organizationName",
      "commonName"}},
    {"Certificate/sub-authority",
     {"basicConstraints", "policyConstraints", "policyMappings", "certificatePolicies",
      "subjectInfoAccess", "rsaPublicKey"}},
    {"Certificate/rare-names", {"subjectAltName"}},
    {"Certificate/version-1",
     {"countryName", "stateOrProvinceName", "localityName", "streetAddress", "postalCode",
      "organizationName", "organizationalUnitName", "title", "surname", "givenName", "initials",
      "generationQualifier", "dnQualifier", "name", "x520Pseudonym", "commonName",
      "domainComponent", "unstructuredName", "pkcs9email"}},
    {"CertificationRequest/every-attribute",
     {"extensionRequest", "subjectAltName", "keyUsage", "basicConstraints", "unstructuredName"}},
    {"CertificateList/entries", {"cRLNumber", "reasonCode", "instructionCode", "invalidityDate"}},
    {"CertificateList/every-extension",
     {"authorityKeyIdentifier", "issuerAltName", "issuingDistributionPoint", "freshestCrl",
      "authorityInfoAccess"}},
    {"CertificateList/delta", {"deltaCRLIndicator", "cRLNumber", "reasonCode"}},
    {"ContentInfo/signed-no-attributes", {"signedData"}},
    {"ContentInfo/signed-[acdkrt]*", {"signedData", "contentType", "messageDigest", "signingTime"}},
    {"ContentInfo/signed-streamed*", {"signedData"}},
    {"ContentInfo/signed-cades", {"signingCertificateV2"}},
    {"ContentInfo/signed-cades-sha1", {"signingCertificate"}},
    {"ContentInfo/signed-streamed-two-signers", {"signingCertificateV2"}},
    {"ContentInfo/nested-*signed",
     {"signedData", "e_signedData", "signingCertificateV2", "messageDigest"}},
    {"ContentInfo/nested-*enveloped", {"signedData", "e_envelopedData", "rsaPublicKey"}},
    {"ContentInfo/nested-*digested", {"signedData", "e_digestedData"}},
    {"ContentInfo/*enveloped-[ekop]*", {"envelopedData"}},
    {"ContentInfo/digested", {"digestedData"}},
    {"ContentInfo/streamed-digested", {"digestedData"}},
    {"ContentInfo/encrypted", {"encryptedData"}},
    {"ContentInfo/streamed-encrypted", {"encryptedData"}},
    {"ContentInfo/*data", {"simpleData"}},
    {"OCSPResponse/[gurb]*", {"ocspBasicResponse"}},
    {"TimeStampResp/[fs]*", {"signedData", "e_tstInfo", "messageDigest"}},
    {"TimeStampToken/full", {"signedData", "e_tstInfo", "signingCertificate"}},
    {"TimeStampToken/short", {"signedData", "e_tstInfo", "signingCertificateV2"}},
    {"PFX/*", {"simpleData"}},
    {"SafeContents/plain.1.1", {"certBag", "x509Certificate", "friendlyName", "localKeyId"}},
    {"SafeContents/plain.1.2", {"keyBag", "friendlyName", "localKeyId", "providerName"}},
    {"SafeContents/chain.1.1", {"certBag", "x509Certificate", "friendlyName", "localKeyId"}},
    {"SafeContents/chain.1.2", {"pkcs8ShroudedKeyBag", "friendlyName", "localKeyId"}},
    {"SafeContents/encrypted.*", {"pkcs8ShroudedKeyBag"}},
    {"NameConstraintsSyntax/sub-authority.*", {"countryName"}},
};

/// What the library leaves as octets although it has the type, by the identifier beside it.
const struct FurtherType {
    std::vector<unsigned> identifier;
    const char* type;
} furtherTypes[] = {
    {{2, 5, 29, 30}, "NameConstraintsSyntax"},
    {{2, 5, 29, 54}, "SkipCerts"},
    {{1, 2, 840, 113549, 1, 1, 7}, "RSAES_OAEP_params"},
    {{1, 2, 840, 113549, 1, 5, 12}, "PBKDF2_params"},
    {{1, 2, 840, 113549, 1, 5, 13}, "PBES2_params"},
    {{1, 2, 840, 113549, 1, 9, 15}, "SMIMECapabilities"},
    {{1, 2, 840, 113549, 1, 12, 1, 3}, "PbeParams"},
    {{1, 2, 840, 113533, 7, 66, 13}, "PBMParameter"},
};

} // namespace interop

#endif
