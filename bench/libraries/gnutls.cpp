// GnuTLS keeps the tree that libtasn1 makes of a message and hands out what is asked for; of a
// certificate it decodes alternative names at once. It has nothing for time-stamp responses.

#include <algorithm>
#include <cstring>
#include <ctime>
#include <memory>

#include <gnutls/gnutls.h>
#include <gnutls/ocsp.h>
#include <gnutls/pkcs12.h>
#include <gnutls/pkcs7.h>
#include <gnutls/x509-ext.h>
#include <gnutls/x509.h>

#include "operation.h"

namespace {

using bench::Kind;
using bench::Octets;
using bench::Task;

template <typename Struct>
using Owned = std::unique_ptr<Struct, void (*)(Struct*)>;

template <typename Struct>
Owned<Struct> make(int (*init)(Struct**), void (*deinit)(Struct*)) {
    Struct* made = nullptr;
    init(&made);
    return {made, deinit};
}

bool doneOrAbsent(int status) {
    return status >= 0 || status == GNUTLS_E_REQUESTED_DATA_NOT_AVAILABLE;
}

/// Octets that the library allocated.
struct OwnedDatum : gnutls_datum_t {
    OwnedDatum() : gnutls_datum_t{nullptr, 0} {}
    OwnedDatum(const OwnedDatum&) = delete;
    OwnedDatum& operator=(const OwnedDatum&) = delete;
    ~OwnedDatum() { gnutls_free(data); }
};

// ---- extension values --------------------------------------------------------------------------

template <auto init, auto deinit, auto importer>
bool importObject(const gnutls_datum_t& value) {
    const auto object = make(init, deinit);
    return importer(&value, object.get(), 0) >= 0;
}

template <int (*importer)(const gnutls_datum_t*, unsigned*)>
bool importNumber(const gnutls_datum_t& value) {
    unsigned number = 0;
    return importer(&value, &number) >= 0;
}

bool importBasicConstraints(const gnutls_datum_t& value) {
    unsigned authority = 0;
    int length = 0;
    return gnutls_x509_ext_import_basic_constraints(&value, &authority, &length) >= 0;
}

bool importPrivateKeyUsagePeriod(const gnutls_datum_t& value) {
    std::time_t begin = 0;
    std::time_t end = 0;
    return gnutls_x509_ext_import_private_key_usage_period(&value, &begin, &end) >= 0;
}

bool importSubjectKeyIdentifier(const gnutls_datum_t& value) {
    OwnedDatum identifier;
    return gnutls_x509_ext_import_subject_key_id(&value, &identifier) >= 0;
}

bool importProxyInformation(const gnutls_datum_t& value) {
    int length = 0;
    char* language = nullptr;
    char* policy = nullptr;
    std::size_t size = 0;
    const int status = gnutls_x509_ext_import_proxy(&value, &length, &language, &policy, &size);
    gnutls_free(language);
    gnutls_free(policy);
    return status >= 0;
}

constexpr auto importNames =
    importObject<gnutls_subject_alt_names_init, gnutls_subject_alt_names_deinit,
                 gnutls_x509_ext_import_subject_alt_names>;
constexpr auto importDistributionPoints =
    importObject<gnutls_x509_crl_dist_points_init, gnutls_x509_crl_dist_points_deinit,
                 gnutls_x509_ext_import_crl_dist_points>;
constexpr auto importInformationAccess =
    importObject<gnutls_x509_aia_init, gnutls_x509_aia_deinit, gnutls_x509_ext_import_aia>;

using ImportExtension = bool (*)(const gnutls_datum_t& value);

constexpr struct {
    const char* identifier;
    ImportExtension importer;
} extensionTypes[] = {
    {"2.5.29.14", importSubjectKeyIdentifier},
    {"2.5.29.15", importNumber<gnutls_x509_ext_import_key_usage>},
    {"2.5.29.16", importPrivateKeyUsagePeriod},
    {"2.5.29.17", importNames},
    {"2.5.29.18", importNames},
    {"2.5.29.19", importBasicConstraints},
    {"2.5.29.30",
     importObject<gnutls_x509_name_constraints_init, gnutls_x509_name_constraints_deinit,
                  gnutls_x509_ext_import_name_constraints>},
    {"2.5.29.31", importDistributionPoints},
    {"2.5.29.32", importObject<gnutls_x509_policies_init, gnutls_x509_policies_deinit,
                               gnutls_x509_ext_import_policies>},
    {"2.5.29.35", importObject<gnutls_x509_aki_init, gnutls_x509_aki_deinit,
                               gnutls_x509_ext_import_authority_key_id>},
    {"2.5.29.37", importObject<gnutls_x509_key_purpose_init, gnutls_x509_key_purpose_deinit,
                               gnutls_x509_ext_import_key_purposes>},
    {"2.5.29.46", importDistributionPoints},
    {"2.5.29.54", importNumber<gnutls_x509_ext_import_inhibit_anypolicy>},
    {"1.3.6.1.5.5.7.1.1", importInformationAccess},
    {"1.3.6.1.5.5.7.1.11", importInformationAccess},
    {"1.3.6.1.5.5.7.1.14", importProxyInformation},
    {"1.3.6.1.5.5.7.1.24",
     importObject<gnutls_x509_tlsfeatures_init, gnutls_x509_tlsfeatures_deinit,
                  gnutls_x509_ext_import_tlsfeatures>},
    {"1.3.6.1.4.1.11129.2.4.2",
     importObject<gnutls_x509_ext_ct_scts_init, gnutls_x509_ext_ct_scts_deinit,
                  gnutls_x509_ext_ct_import_scts>},
};

ImportExtension importerOf(const char* identifier) {
    for (const auto& extension : extensionTypes) {
        if (std::strcmp(extension.identifier, identifier) == 0) {
            return extension.importer;
        }
    }
    return nullptr;
}

template <typename Struct>
bool importExtensions(Struct* message,
                      int (*information)(Struct*, unsigned, void*, std::size_t*, unsigned*),
                      int (*data)(Struct*, unsigned, gnutls_datum_t*)) {
    for (unsigned index = 0;; ++index) {
        char identifier[128];
        std::size_t size = sizeof(identifier);
        const int status = information(message, index, identifier, &size, nullptr);
        if (status < 0) {
            return doneOrAbsent(status);
        }
        if (const ImportExtension importer = importerOf(identifier)) {
            OwnedDatum value;
            if (data(message, index, &value) < 0 || !importer(value)) {
                return false;
            }
        }
    }
}

// ---- messages ----------------------------------------------------------------------------------

/// The imported message, none where it is refused.
template <auto init, auto deinit, auto importer, auto... form>
auto importMessage(Octets octets) {
    auto message = make(init, deinit);
    const gnutls_datum_t datum{const_cast<unsigned char*>(octets.data),
                               static_cast<unsigned>(octets.size)};
    if (importer(message.get(), &datum, form...) < 0) {
        message.reset();
    }
    return message;
}

constexpr auto importCertificate = importMessage<gnutls_x509_crt_init, gnutls_x509_crt_deinit,
                                                 gnutls_x509_crt_import, GNUTLS_X509_FMT_DER>;
constexpr auto importList = importMessage<gnutls_x509_crl_init, gnutls_x509_crl_deinit,
                                          gnutls_x509_crl_import, GNUTLS_X509_FMT_DER>;
constexpr auto importRequest = importMessage<gnutls_x509_crq_init, gnutls_x509_crq_deinit,
                                             gnutls_x509_crq_import, GNUTLS_X509_FMT_DER>;
constexpr auto importSignedData =
    importMessage<gnutls_pkcs7_init, gnutls_pkcs7_deinit, gnutls_pkcs7_import, GNUTLS_X509_FMT_DER>;
constexpr auto importOcspRequest =
    importMessage<gnutls_ocsp_req_init, gnutls_ocsp_req_deinit, gnutls_ocsp_req_import>;
constexpr auto importOcspResponse =
    importMessage<gnutls_ocsp_resp_init, gnutls_ocsp_resp_deinit, gnutls_ocsp_resp_import>;
constexpr auto importKeyContainer = importMessage<gnutls_pkcs12_init, gnutls_pkcs12_deinit,
                                                  gnutls_pkcs12_import, GNUTLS_X509_FMT_DER, 0U>;

// ---- what is inside them -----------------------------------------------------------------------

bool insideCertificate(gnutls_x509_crt_t certificate) {
    return importExtensions(certificate, gnutls_x509_crt_get_extension_info,
                            gnutls_x509_crt_get_extension_data2);
}

/// The library has no decoder for the value of a number alone, and none for extensions of entries.
bool insideList(gnutls_x509_crl_t list) {
    unsigned char number[64];
    std::size_t size = sizeof(number);
    return doneOrAbsent(gnutls_x509_crl_get_number(list, number, &size, nullptr)) &&
           importExtensions(list, gnutls_x509_crl_get_extension_info,
                            gnutls_x509_crl_get_extension_data2);
}

/// The library decodes the attribute that holds the extensions again for each of them.
bool insideRequest(gnutls_x509_crq_t request) {
    return importExtensions(request, gnutls_x509_crq_get_extension_info,
                            gnutls_x509_crq_get_extension_data2);
}

template <typename Inside>
bool insideEach(gnutls_pkcs7_t message, int count,
                int (*data)(gnutls_pkcs7_t, unsigned, gnutls_datum_t*), Inside inside) {
    for (int index = 0; index < count; ++index) {
        OwnedDatum value;
        if (data(message, static_cast<unsigned>(index), &value) < 0 ||
            !inside({value.data, value.size})) {
            return false;
        }
    }
    return true;
}

template <auto importer, auto inside>
bool decodeAll(Octets octets) {
    const auto message = importer(octets);
    return message != nullptr && inside(message.get());
}

struct Signer : gnutls_pkcs7_signature_info_st {
    Signer() : gnutls_pkcs7_signature_info_st{} {}
    Signer(const Signer&) = delete;
    Signer& operator=(const Signer&) = delete;
    ~Signer() { gnutls_pkcs7_signature_info_deinit(this); }
};

/// Each signer with its attributes, their values raw, and the certificates and lists.
bool insideSignedData(gnutls_pkcs7_t message) {
    const int signers = gnutls_pkcs7_get_signature_count(message);
    for (int index = 0; index < signers; ++index) {
        Signer signer;
        if (gnutls_pkcs7_get_signature_info(message, static_cast<unsigned>(index), &signer) < 0) {
            return false;
        }
    }
    return insideEach(message, gnutls_pkcs7_get_crt_count(message), gnutls_pkcs7_get_crt_raw2,
                      decodeAll<importCertificate, insideCertificate>) &&
           insideEach(message, gnutls_pkcs7_get_crl_count(message), gnutls_pkcs7_get_crl_raw2,
                      decodeAll<importList, insideList>);
}

bool insideOcspRequest(gnutls_ocsp_req_t request) {
    OwnedDatum nonce;
    return doneOrAbsent(gnutls_ocsp_req_get_nonce(request, nullptr, &nonce));
}

struct Certificates {
    Certificates() = default;
    Certificates(const Certificates&) = delete;
    Certificates& operator=(const Certificates&) = delete;
    ~Certificates() {
        std::for_each(list, list + count, gnutls_x509_crt_deinit);
        gnutls_free(list);
    }
    gnutls_x509_crt_t* list = nullptr;
    std::size_t count = 0;
};

/// The nonce is the one extension that has a type; those of the certificates inside follow.
bool insideOcspResponse(gnutls_ocsp_resp_t response) {
    if (gnutls_ocsp_resp_get_status(response) != GNUTLS_OCSP_RESP_SUCCESSFUL) {
        return true;
    }
    OwnedDatum nonce;
    Certificates certificates;
    return doneOrAbsent(gnutls_ocsp_resp_get_nonce(response, nullptr, &nonce)) &&
           gnutls_ocsp_resp_get_certs(response, &certificates.list, &certificates.count) >= 0 &&
           std::all_of(certificates.list, certificates.list + certificates.count,
                       insideCertificate);
}

/// Bags that are not encrypted are decoded too. The library decodes the authenticated safe again
/// for each bag, and once more to find that there is none left.
bool insideKeyContainer(gnutls_pkcs12_t container) {
    int status = GNUTLS_E_SUCCESS;
    for (int index = 0; status >= 0; ++index) {
        const auto bag = make(gnutls_pkcs12_bag_init, gnutls_pkcs12_bag_deinit);
        status = gnutls_pkcs12_get_bag(container, index, bag.get());
    }
    return doneOrAbsent(status);
}

// ---- operations --------------------------------------------------------------------------------

template <auto importer>
bool decode(Octets octets) {
    return importer(octets) != nullptr;
}

/// Encodes twice, as each of the library's functions does: for the length first.
template <auto importer, auto encode>
bool recode(Octets octets) {
    const auto message = importer(octets);
    OwnedDatum encoding;
    return message != nullptr && encode(message.get(), &encoding) >= 0;
}

/// A certificate that nobody changed would be a copy of the octets that came in.
int encodeCertificate(gnutls_x509_crt_t certificate, gnutls_datum_t* encoding) {
    const auto version = static_cast<unsigned>(gnutls_x509_crt_get_version(certificate));
    const int status = gnutls_x509_crt_set_version(certificate, version);
    return status < 0 ? status
                      : gnutls_x509_crt_export2(certificate, GNUTLS_X509_FMT_DER, encoding);
}

template <typename Struct, int (*encode)(Struct*, gnutls_x509_crt_fmt_t, gnutls_datum_t*)>
int encodeDer(Struct* message, gnutls_datum_t* encoding) {
    return encode(message, GNUTLS_X509_FMT_DER, encoding);
}

std::vector<bench::Operation> operations() {
    return {
        {Kind::Certificate, Task::Decode, "gnutls_x509_crt_import", decode<importCertificate>},
        {Kind::Certificate, Task::DecodeAll, "gnutls_x509_crt_import, gnutls_x509_ext_import_...",
         decodeAll<importCertificate, insideCertificate>},
        {Kind::Certificate, Task::Recode, "gnutls_x509_crt_import, gnutls_x509_crt_export2",
         recode<importCertificate, encodeCertificate>},
        {Kind::RevocationList, Task::Decode, "gnutls_x509_crl_import", decode<importList>},
        {Kind::RevocationList, Task::DecodeAll,
         "gnutls_x509_crl_import, gnutls_x509_ext_import_...", decodeAll<importList, insideList>},
        {Kind::RevocationList, Task::Recode, "gnutls_x509_crl_import, gnutls_x509_crl_export2",
         recode<importList, encodeDer<gnutls_x509_crl_int, gnutls_x509_crl_export2>>},
        {Kind::SignedData, Task::Decode, "gnutls_pkcs7_import", decode<importSignedData>},
        {Kind::SignedData, Task::DecodeAll,
         "gnutls_pkcs7_import, gnutls_pkcs7_get_signature_info, gnutls_x509_crt_import, "
         "gnutls_x509_ext_import_...",
         decodeAll<importSignedData, insideSignedData>},
        {Kind::SignedData, Task::Recode, "gnutls_pkcs7_import, gnutls_pkcs7_export2",
         recode<importSignedData, encodeDer<gnutls_pkcs7_int, gnutls_pkcs7_export2>>},
        {Kind::OcspRequest, Task::Decode, "gnutls_ocsp_req_import", decode<importOcspRequest>},
        {Kind::OcspRequest, Task::DecodeAll, "gnutls_ocsp_req_import, gnutls_ocsp_req_get_nonce",
         decodeAll<importOcspRequest, insideOcspRequest>},
        // Without the signature, if there is one: the library does not write it.
        {Kind::OcspRequest, Task::Recode, "gnutls_ocsp_req_import, gnutls_ocsp_req_export",
         recode<importOcspRequest, gnutls_ocsp_req_export>},
        // The basic response would be a copy of the octets that came in.
        {Kind::OcspResponse, Task::Decode, "gnutls_ocsp_resp_import", decode<importOcspResponse>},
        {Kind::OcspResponse, Task::DecodeAll,
         "gnutls_ocsp_resp_import, gnutls_ocsp_resp_get_certs, gnutls_x509_ext_import_...",
         decodeAll<importOcspResponse, insideOcspResponse>},
        // So would the authenticated safe.
        {Kind::KeyContainer, Task::Decode, "gnutls_pkcs12_import, gnutls_pkcs12_get_bag",
         decodeAll<importKeyContainer, insideKeyContainer>},
        {Kind::CertificationRequest, Task::Decode, "gnutls_x509_crq_import", decode<importRequest>},
        {Kind::CertificationRequest, Task::DecodeAll,
         "gnutls_x509_crq_import, gnutls_x509_ext_import_...",
         decodeAll<importRequest, insideRequest>},
        {Kind::CertificationRequest, Task::Recode,
         "gnutls_x509_crq_import, gnutls_x509_crq_export2",
         recode<importRequest, encodeDer<gnutls_x509_crq_int, gnutls_x509_crq_export2>>},
    };
}

const bench::Library gnutlsLibrary("GnuTLS", gnutls_check_version(nullptr), operations());

} // namespace
