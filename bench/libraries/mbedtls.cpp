// mbed TLS. Values are views of the message, or of a copy of it, with times and the public key
// converted: an RSA key becomes numbers, the point of an EC key is checked to lie on its curve. It
// has no encoder for what it decoded.

#include <mbedtls/version.h>
#include <mbedtls/x509_crl.h>
#include <mbedtls/x509_crt.h>
#include <mbedtls/x509_csr.h>

#include "operation.h"

namespace {

using bench::Kind;
using bench::Octets;
using bench::Task;

/// A value that the library fills in place.
template <typename Value, void (*initialize)(Value*), void (*release)(Value*)>
struct Holder : Value {
    Holder() { initialize(this); }
    ~Holder() { release(this); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;
};

using Certificate = Holder<mbedtls_x509_crt, mbedtls_x509_crt_init, mbedtls_x509_crt_free>;
using RevocationList = Holder<mbedtls_x509_crl, mbedtls_x509_crl_init, mbedtls_x509_crl_free>;
using Request = Holder<mbedtls_x509_csr, mbedtls_x509_csr_init, mbedtls_x509_csr_free>;

/// In a certificate the constraints, key usages, alternative names and policies are decoded as
/// well, other extensions skipped. In a list and a request they all stay raw.
template <typename Value, auto parse>
bool decode(Octets message) {
    Value value;
    return parse(&value, message.data, message.size) == 0;
}

/// Alternative names are raw until asked for. Only some forms of name have a type.
bool decodeAlternativeNames(Octets message) {
    Certificate value;
    if (mbedtls_x509_crt_parse_der_nocopy(&value, message.data, message.size) != 0) {
        return false;
    }
    for (const auto* each = &value.subject_alt_names; each != nullptr; each = each->next) {
        mbedtls_x509_subject_alternative_name name;
        const int status =
            each->buf.p == nullptr ? 0 : mbedtls_x509_parse_subject_alt_name(&each->buf, &name);
        if (status != 0 && status != MBEDTLS_ERR_X509_FEATURE_UNAVAILABLE) {
            return false;
        }
    }
    return true;
}

/// Volatile, so that finding is not left out.
volatile std::size_t found;

/// Everything that the library reads of a certificate is read, to get at three of it.
bool findFields(Octets message) {
    Certificate value;
    if (mbedtls_x509_crt_parse_der_nocopy(&value, message.data, message.size) != 0) {
        return false;
    }
    found = value.serial.len + value.subject_raw.len + value.subject_alt_names.buf.len;
    return true;
}

std::string version() {
    char text[9]; // what the function asks for
    mbedtls_version_get_string(text);
    return text;
}

const bench::Library mbedtlsLibrary(
    "mbed TLS", version(),
    {{Kind::Certificate, Task::Decode, "mbedtls_x509_crt_parse_der",
      decode<Certificate, mbedtls_x509_crt_parse_der>},
     {Kind::Certificate, Task::Decode, "mbedtls_x509_crt_parse_der_nocopy",
      decode<Certificate, mbedtls_x509_crt_parse_der_nocopy>},
     {Kind::Certificate, Task::DecodeAll,
      "mbedtls_x509_crt_parse_der_nocopy, mbedtls_x509_parse_subject_alt_name",
      decodeAlternativeNames},
     {Kind::Certificate, Task::Fields,
      "mbedtls_x509_crt_parse_der_nocopy: serial, subject_raw, subject_alt_names", findFields},
     {Kind::RevocationList, Task::Decode, "mbedtls_x509_crl_parse_der",
      decode<RevocationList, mbedtls_x509_crl_parse_der>},
     {Kind::CertificationRequest, Task::Decode, "mbedtls_x509_csr_parse_der",
      decode<Request, mbedtls_x509_csr_parse_der>}});

} // namespace
