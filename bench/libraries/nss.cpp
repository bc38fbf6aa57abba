// NSS. Its templates describe a message to two decoders: the quick one keeps to DER and leaves
// views of the message, the streaming one takes BER and copies. Either way a name is an array of
// attributes, while times, attribute values and extension values stay raw.

#include <cstddef>

#include <cert.h>
#include <certdb.h>
#include <cms.h>
#include <nss.h>
#include <ocsp.h>
#include <secasn1.h>
#include <secder.h>
#include <secoid.h>

#include "holder.h"
#include "operation.h"

/// The name that the shared library exports for CERT_DecodeDERCertificate.
extern "C" CERTCertificate* __CERT_DecodeDERCertificate(SECItem* octets, PRBool copy, char* name);

namespace {

using bench::Holder;
using bench::Kind;
using bench::Octets;
using bench::Task;

void freeArena(PLArenaPool* arena) {
    PORT_FreeArena(arena, PR_FALSE);
}

using Arena = Holder<PLArenaPool, freeArena>;

/// Whether there is a value; gives it back.
template <auto destroy, typename Value>
bool decoded(Value* value) {
    return Holder<Value, destroy>(value) != nullptr;
}

/// A message as the library takes it. It needs its tables of identifiers before it sees the first
/// one, and the digests of its signed messages need its tokens.
struct Input : SECItem {
    explicit Input(Octets message)
        : SECItem{siBuffer, const_cast<unsigned char*>(message.data),
                  static_cast<unsigned>(message.size)} {
        static const bool ready = NSS_NoDB_Init(nullptr) == SECSuccess;
        if (!ready) {
            len = 0;
        }
    }
};

/// Whether it holds for each element of one of the library's lists, which end with a null pointer
/// and may be one.
template <typename Element, typename Predicate>
bool every(Element* const* list, Predicate holds) {
    for (; list != nullptr && *list != nullptr; ++list) {
        if (!holds(**list)) {
            return false;
        }
    }
    return true;
}

// ---- extensions ---------------------------------------------------------------------------------

bool decodeItem(PLArenaPool* arena, const SECItem& octets, const SEC_ASN1Template* form) {
    SECItem value = {};
    return SEC_QuickDERDecodeItem(arena, &value, form, &octets) == SECSuccess;
}

bool decodeQualifier(PLArenaPool* arena, CERTPolicyQualifier& qualifier) {
    switch (qualifier.oid) {
    case SEC_OID_PKIX_CPS_POINTER_QUALIFIER:
        return decodeItem(arena, qualifier.qualifierValue, SEC_IA5StringTemplate);
    case SEC_OID_PKIX_USER_NOTICE_QUALIFIER:
        return decoded<CERT_DestroyUserNotice>(CERT_DecodeUserNotice(&qualifier.qualifierValue));
    default:
        return true;
    }
}

bool decodePolicies(PLArenaPool* arena, const SECItem& octets) {
    const Holder<CERTCertificatePolicies, CERT_DestroyCertificatePoliciesExtension> policies(
        CERT_DecodeCertificatePoliciesExtension(&octets));
    return policies && every(policies->policyInfos, [arena](const CERTPolicyInfo& policy) {
               return every(policy.policyQualifiers, [arena](CERTPolicyQualifier& qualifier) {
                   return decodeQualifier(arena, qualifier);
               });
           });
}

/// The decoders that the library exports. It has none for policy mappings and constraints, issuing
/// distribution points, directory attributes and certificate transparency.
bool decodeExtension(PLArenaPool* arena, CERTCertExtension& extension) {
    SECItem& octets = extension.value;
    switch (SECOID_FindOIDTag(&extension.id)) {
    case SEC_OID_X509_BASIC_CONSTRAINTS: {
        CERTBasicConstraints constraints = {};
        return CERT_DecodeBasicConstraintValue(&constraints, &octets) == SECSuccess;
    }
    case SEC_OID_X509_AUTH_KEY_ID:
        return CERT_DecodeAuthKeyID(arena, &octets) != nullptr;
    case SEC_OID_X509_CRL_DIST_POINTS:
    case SEC_OID_X509_FRESHEST_CRL:
        return CERT_DecodeCRLDistributionPoints(arena, &octets) != nullptr;
    case SEC_OID_X509_SUBJECT_ALT_NAME:
    case SEC_OID_X509_ISSUER_ALT_NAME:
    case SEC_OID_X509_CERT_ISSUER:
        return CERT_DecodeAltNameExtension(arena, &octets) != nullptr;
    case SEC_OID_X509_NAME_CONSTRAINTS:
        return CERT_DecodeNameConstraintsExtension(arena, &octets) != nullptr;
    case SEC_OID_X509_AUTH_INFO_ACCESS:
    case SEC_OID_X509_SUBJECT_INFO_ACCESS:
        return CERT_DecodeAuthInfoAccessExtension(arena, &octets) != nullptr;
    case SEC_OID_X509_PRIVATE_KEY_USAGE_PERIOD:
        return CERT_DecodePrivKeyUsagePeriodExtension(arena, &octets) != nullptr;
    case SEC_OID_X509_EXT_KEY_USAGE:
        return decoded<CERT_DestroyOidSequence>(CERT_DecodeOidSequence(&octets));
    case SEC_OID_X509_CERTIFICATE_POLICIES:
        return decodePolicies(arena, octets);
    case SEC_OID_X509_SUBJECT_KEY_ID:
        return decodeItem(arena, octets, SEC_OctetStringTemplate);
    case SEC_OID_X509_KEY_USAGE:
    case SEC_OID_NS_CERT_EXT_CERT_TYPE:
        return decodeItem(arena, octets, SEC_BitStringTemplate);
    case SEC_OID_X509_CRL_NUMBER:
    case SEC_OID_X509_DELTA_CRL_INDICATOR:
    case SEC_OID_X509_INHIBIT_ANY_POLICY:
        return decodeItem(arena, octets, SEC_IntegerTemplate);
    case SEC_OID_X509_REASON_CODE:
        return decodeItem(arena, octets, SEC_EnumeratedTemplate);
    case SEC_OID_X509_INVALID_DATE:
        return decodeItem(arena, octets, SEC_GeneralizedTimeTemplate);
    case SEC_OID_X509_HOLD_INSTRUCTION_CODE:
        return decodeItem(arena, octets, SEC_ObjectIDTemplate);
    case SEC_OID_NS_CERT_EXT_COMMENT:
        return decodeItem(arena, octets, SEC_IA5StringTemplate);
    case SEC_OID_PKIX_OCSP_NO_CHECK:
        return decodeItem(arena, octets, SEC_NullTemplate);
    default:
        return true;
    }
}

bool decodeExtensions(PLArenaPool* arena, CERTCertExtension* const* extensions) {
    return every(extensions, [arena](CERTCertExtension& extension) {
        return decodeExtension(arena, extension);
    });
}

bool decodeExtensions(PLArenaPool* arena, const CERTCertificate& certificate) {
    return decodeExtensions(arena, certificate.extensions);
}

bool decodeExtensions(PLArenaPool* arena, const CERTSignedCrl& list) {
    return decodeExtensions(arena, list.crl.extensions) &&
           every(list.crl.entries, [arena](const CERTCrlEntry& entry) {
               return decodeExtensions(arena, entry.extensions);
           });
}

// ---- messages with a template -------------------------------------------------------------------

struct SignedRequest {
    CERTCertificateRequest request;
    CERTSignedData signature;
};

/// The library has templates for the parts only.
constexpr SEC_ASN1Template signedRequestTemplate[] = {
    {SEC_ASN1_SEQUENCE, 0, nullptr, sizeof(SignedRequest)},
    {SEC_ASN1_INLINE, offsetof(SignedRequest, request), CERT_CertificateRequestTemplate, 0},
    {SEC_ASN1_INLINE, offsetof(SignedRequest, signature.signatureAlgorithm),
     SECOID_AlgorithmIDTemplate, 0},
    {SEC_ASN1_BIT_STRING, offsetof(SignedRequest, signature.signature), nullptr, 0},
    {0, 0, nullptr, 0}};

bool decodeExtensions(PLArenaPool* arena, const SignedRequest& value) {
    return every(value.request.attributes, [arena](const CERTAttribute& attribute) {
        if (SECOID_FindOIDTag(&attribute.attrType) != SEC_OID_PKCS9_EXTENSION_REQUEST) {
            return true;
        }
        return every(attribute.attrValue, [arena](const SECItem& octets) {
            CERTCertExtension** extensions = nullptr;
            return SEC_QuickDERDecodeItem(arena, &extensions, CERT_SequenceOfCertExtensionTemplate,
                                          &octets) == SECSuccess &&
                   decodeExtensions(arena, extensions);
        });
    });
}

using Decoder = decltype(&SEC_QuickDERDecodeItem);
constexpr Decoder quick = SEC_QuickDERDecodeItem;
constexpr Decoder streaming = SEC_ASN1DecodeItem;

/// Encoding goes through every part of the value; what was left raw is copied.
template <typename Value, const SEC_ASN1Template* form, Decoder decoder, Task task>
bool run(Octets message) {
    const Input input(message);
    const Arena arena(PORT_NewArena(DER_DEFAULT_CHUNKSIZE));
    Value value = {};
    if (!arena || decoder(arena.get(), &value, form, &input) != SECSuccess) {
        return false;
    }
    if constexpr (task == Task::DecodeAll) {
        return decodeExtensions(arena.get(), value);
    }
    if constexpr (task == Task::Recode) {
        SECItem output = {};
        return SEC_ASN1EncodeItem(arena.get(), &output, &value, form) != nullptr;
    }
    return true;
}

template <typename Value, const SEC_ASN1Template* form>
void add(std::vector<bench::Operation>& operations, Kind kind) {
    operations.insert(
        operations.end(),
        {{kind, Task::Decode, "SEC_QuickDERDecodeItem", run<Value, form, quick, Task::Decode>},
         {kind, Task::Decode, "SEC_ASN1DecodeItem", run<Value, form, streaming, Task::Decode>},
         {kind, Task::DecodeAll, "SEC_QuickDERDecodeItem, CERT_Decode...",
          run<Value, form, quick, Task::DecodeAll>},
         {kind, Task::Recode, "SEC_QuickDERDecodeItem, SEC_ASN1EncodeItem",
          run<Value, form, quick, Task::Recode>},
         {kind, Task::Recode, "SEC_ASN1DecodeItem, SEC_ASN1EncodeItem",
          run<Value, form, streaming, Task::Recode>}});
}

// ---- functions for one kind of message ----------------------------------------------------------

/// Adds what the library derives from the certificate: key usages, key identifier, names as text,
/// e-mail addresses.
template <Task task>
bool decodeCertificate(Octets message) {
    Input input(message);
    const Holder<CERTCertificate, CERT_DestroyCertificate> certificate(
        __CERT_DecodeDERCertificate(&input, PR_FALSE, nullptr));
    return certificate &&
           (task == Task::Decode || decodeExtensions(certificate->arena, *certificate));
}

/// Refuses a list with a critical extension that the library does not know, in an entry as well.
bool decodeRevocationList(Octets message) {
    Input input(message);
    return decoded<SEC_DestroyCrl>(
        CERT_DecodeDERCrlWithFlags(nullptr, &input, SEC_CRL_TYPE, CRL_DECODE_DONT_COPY_DER));
}

bool decodeCertificatesAndLists(PLArenaPool* arena, const NSSCMSSignedData& data) {
    return every(data.rawCerts,
                 [](const SECItem& octets) {
                     return run<CERTCertificate, SEC_SignedCertificateTemplate, quick,
                                Task::DecodeAll>({octets.data, octets.len});
                 }) &&
           every(data.crls,
                 [arena](const CERTSignedCrl& list) { return decodeExtensions(arena, list); });
}

/// By the streaming decoder, which copies the content and takes its digests on the way; there is no
/// form without. Lists are decoded by template, certificates only where all is. To encode what was
/// decoded would take the signer's key.
template <Task task>
bool decodeSignedData(Octets message) {
    Input input(message);
    const Holder<NSSCMSMessage, NSS_CMSMessage_Destroy> value(
        NSS_CMSMessage_CreateFromDER(&input, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    if (!value) {
        return false;
    }
    const int levels = task == Task::DecodeAll ? NSS_CMSMessage_ContentLevelCount(value.get()) : 0;
    for (int level = 0; level < levels; ++level) {
        NSSCMSContentInfo* const content = NSS_CMSMessage_ContentLevel(value.get(), level);
        if (NSS_CMSContentInfo_GetContentTypeTag(content) != SEC_OID_PKCS7_SIGNED_DATA) {
            continue;
        }
        const void* const data = NSS_CMSContentInfo_GetContent(content);
        if (data != nullptr && !decodeCertificatesAndLists(
                                   value->poolp, *static_cast<const NSSCMSSignedData*>(data))) {
            return false;
        }
    }
    return true;
}

/// The octets are copied first. Extensions cannot be got at afterwards, here and in a response.
template <Task task>
bool runOcspRequest(Octets message) {
    const Input input(message);
    const Holder<CERTOCSPRequest, CERT_DestroyOCSPRequest> request(CERT_DecodeOCSPRequest(&input));
    if constexpr (task == Task::Recode) {
        const Arena arena(PORT_NewArena(DER_DEFAULT_CHUNKSIZE));
        return request && arena &&
               CERT_EncodeOCSPRequest(arena.get(), request.get(), nullptr) != nullptr;
    }
    return request != nullptr;
}

/// With the basic response inside, whose certificates stay raw. The octets are copied first.
bool decodeOcspResponse(Octets message) {
    const Input input(message);
    return decoded<CERT_DestroyOCSPResponse>(CERT_DecodeOCSPResponse(&input));
}

std::vector<bench::Operation> operations() {
    std::vector<bench::Operation> all = {
        {Kind::Certificate, Task::Decode, "CERT_DecodeDERCertificate",
         decodeCertificate<Task::Decode>},
        {Kind::Certificate, Task::DecodeAll, "CERT_DecodeDERCertificate, CERT_Decode...",
         decodeCertificate<Task::DecodeAll>},
        {Kind::RevocationList, Task::Decode, "CERT_DecodeDERCrlWithFlags", decodeRevocationList},
        {Kind::SignedData, Task::Decode, "NSS_CMSMessage_CreateFromDER",
         decodeSignedData<Task::Decode>},
        {Kind::SignedData, Task::DecodeAll,
         "NSS_CMSMessage_CreateFromDER, SEC_QuickDERDecodeItem, CERT_Decode...",
         decodeSignedData<Task::DecodeAll>},
        {Kind::OcspRequest, Task::Decode, "CERT_DecodeOCSPRequest", runOcspRequest<Task::Decode>},
        {Kind::OcspRequest, Task::Recode, "CERT_DecodeOCSPRequest, CERT_EncodeOCSPRequest",
         runOcspRequest<Task::Recode>},
        {Kind::OcspResponse, Task::Decode, "CERT_DecodeOCSPResponse", decodeOcspResponse}};
    add<CERTCertificate, SEC_SignedCertificateTemplate>(all, Kind::Certificate);
    add<CERTSignedCrl, CERT_SignedCrlTemplate>(all, Kind::RevocationList);
    add<SignedRequest, signedRequestTemplate>(all, Kind::CertificationRequest);
    return all;
}

const bench::Library nssLibrary("NSS", NSS_GetVersion(), operations());

} // namespace
