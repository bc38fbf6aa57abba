// Botan 2. Its constructors decode everything down to the values of the extensions they know, so
// there is no shallower form. An object encodes to the octets it was decoded from, so there is
// nothing to measure of encoding.

#include <exception>

#include <botan/data_src.h>
#include <botan/ocsp.h>
#include <botan/pkcs10.h>
#include <botan/version.h>
#include <botan/x509_crl.h>
#include <botan/x509cert.h>

#include "operation.h"

namespace {

using bench::Kind;
using bench::Octets;
using bench::Task;

template <typename Value>
Value decoded(Octets message) {
    return Value(message.data, message.size);
}

/// These are read from a source, which copies what it is given.
template <typename Value>
Value decodedFromSource(Octets message) {
    Botan::DataSource_Memory source(message.data, message.size);
    return Value(source);
}

template <auto decoder>
bool decode(Octets message) {
    try {
        decoder(message);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

const bench::Library
    botan("Botan", Botan::short_version_cstr(),
          {
              // Fingerprints with SHA-1 and SHA-256 are taken. Where subject and issuer are the
              // same and no key identifiers tell whether the keys are, the signature is verified.
              {Kind::Certificate, Task::DecodeAll, "X509_Certificate, verifies many roots",
               decode<decoded<Botan::X509_Certificate>>},
              {Kind::RevocationList, Task::DecodeAll, "X509_CRL",
               decode<decodedFromSource<Botan::X509_CRL>>},
              {Kind::OcspResponse, Task::DecodeAll, "OCSP::Response",
               decode<decoded<Botan::OCSP::Response>>},
              // The signature is verified with the key in the request.
              {Kind::CertificationRequest, Task::DecodeAll, "PKCS10_Request, verifies",
               decode<decodedFromSource<Botan::PKCS10_Request>>},
          });

} // namespace
