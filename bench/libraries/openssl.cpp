// libcrypto. A certificate, wherever it stands, is copied field by field, its names get a second,
// canonical encoding, and a provider decodes its public key, which takes most of the time. Values
// of extensions and attributes stay octets until they are asked for. Encoding writes these values
// and the names from the octets they had.

#include <openssl/cmp.h>
#include <openssl/cms.h>
#include <openssl/err.h>
#include <openssl/ocsp.h>
#include <openssl/pkcs12.h>
#include <openssl/ts.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include "holder.h"
#include "operation.h"

namespace {

using bench::Holder;
using bench::Kind;
using bench::Octets;
using bench::Operation;
using bench::Task;

void releaseStack(STACK_OF(X509) * stack) {
    sk_X509_pop_free(stack, X509_free);
}
void releaseStack(STACK_OF(X509_CRL) * stack) {
    sk_X509_CRL_pop_free(stack, X509_CRL_free);
}
void releaseStack(STACK_OF(PKCS7) * stack) {
    sk_PKCS7_pop_free(stack, PKCS7_free);
}
void releaseStack(X509_EXTENSIONS* stack) {
    sk_X509_EXTENSION_pop_free(stack, X509_EXTENSION_free);
}

template <typename Stack>
using StackHolder = Holder<Stack, static_cast<void (*)(Stack*)>(releaseStack)>;

/// Does @p work with each item until it fails.
template <typename Owner, typename Count, typename Get, typename Work>
bool each(Owner* owner, Count count, Get get, Work work) {
    for (int index = 0; index < count(owner); ++index) {
        if (!work(get(owner, index))) {
            return false;
        }
    }
    return true;
}

// ---- certificates and lists inside other messages -----------------------------------------------

template <typename Work>
bool eachOf(const STACK_OF(X509) * certificates, const STACK_OF(X509_CRL) * lists, Work work) {
    const auto count = [](const auto* stack) { return sk_X509_num(stack); };
    const auto get = [](const auto* stack, int index) { return sk_X509_value(stack, index); };
    const auto countLists = [](const auto* stack) { return sk_X509_CRL_num(stack); };
    const auto getList = [](const auto* stack, int index) {
        return sk_X509_CRL_value(stack, index);
    };
    return each(certificates, count, get, work) && each(lists, countLists, getList, work);
}

template <typename Work>
bool eachInside(OCSP_BASICRESP* response, Work work) {
    return eachOf(OCSP_resp_get0_certs(response), nullptr, work);
}

template <typename Work>
bool eachInside(TS_RESP* response, Work work) {
    const PKCS7* token = TS_RESP_get_token(response);
    return token == nullptr || eachOf(token->d.sign->cert, token->d.sign->crl, work);
}

template <typename Work>
bool eachInside(CMS_ContentInfo* message, Work work) {
    const StackHolder<STACK_OF(X509)> certificates(CMS_get1_certs(message));
    const StackHolder<STACK_OF(X509_CRL)> lists(CMS_get1_crls(message));
    return eachOf(certificates.get(), lists.get(), work);
}

// ---- values of extensions -----------------------------------------------------------------------

struct ValueReleaser {
    const X509V3_EXT_METHOD* method;

    void operator()(void* value) const {
        if (method->it != nullptr) {
            ASN1_item_free(static_cast<ASN1_VALUE*>(value), ASN1_ITEM_ptr(method->it));
        } else {
            method->ext_free(value);
        }
    }
};

/// Decodes the value where its type is known, in whatever is given, and encodes it again when asked
/// to. The new encoding is given back at once: that of the message takes the octets it had.
struct Open {
    bool encode;

    bool operator()(X509_EXTENSION* extension) const {
        const X509V3_EXT_METHOD* method = X509V3_EXT_get(extension);
        if (method == nullptr) {
            return true;
        }
        const std::unique_ptr<void, ValueReleaser> value(X509V3_EXT_d2i(extension), {method});
        if (value == nullptr || !encode) {
            return value != nullptr;
        }
        const Holder<X509_EXTENSION, X509_EXTENSION_free> anew(
            X509V3_EXT_i2d(method->ext_nid, X509_EXTENSION_get_critical(extension), value.get()));
        return anew != nullptr;
    }

    bool operator()(const X509_REVOKED* entry) const {
        return each(entry, X509_REVOKED_get_ext_count, X509_REVOKED_get_ext, *this);
    }
    bool operator()(OCSP_ONEREQ* request) const {
        return each(request, OCSP_ONEREQ_get_ext_count, OCSP_ONEREQ_get_ext, *this);
    }
    bool operator()(OCSP_SINGLERESP* response) const {
        return each(response, OCSP_SINGLERESP_get_ext_count, OCSP_SINGLERESP_get_ext, *this);
    }

    bool operator()(X509* certificate) const {
        return each(certificate, X509_get_ext_count, X509_get_ext, *this);
    }
    bool operator()(X509_CRL* list) const {
        const auto count = [](const auto* entries) { return sk_X509_REVOKED_num(entries); };
        const auto get = [](const auto* entries, int index) {
            return sk_X509_REVOKED_value(entries, index);
        };
        return each(list, X509_CRL_get_ext_count, X509_CRL_get_ext, *this) &&
               each(X509_CRL_get_REVOKED(list), count, get, *this);
    }
    bool operator()(X509_REQ* request) const {
        const StackHolder<X509_EXTENSIONS> extensions(X509_REQ_get_extensions(request));
        return extensions != nullptr &&
               each(extensions.get(), X509v3_get_ext_count, X509v3_get_ext, *this);
    }
    bool operator()(OCSP_REQUEST* request) const {
        return each(request, OCSP_REQUEST_get_ext_count, OCSP_REQUEST_get_ext, *this) &&
               each(request, OCSP_request_onereq_count, OCSP_request_onereq_get0, *this);
    }
    bool operator()(OCSP_BASICRESP* response) const {
        return each(response, OCSP_BASICRESP_get_ext_count, OCSP_BASICRESP_get_ext, *this) &&
               each(response, OCSP_resp_count, OCSP_resp_get0, *this) &&
               eachInside(response, *this);
    }
    bool operator()(TS_RESP* response) const {
        TS_TST_INFO* info = TS_RESP_get_tst_info(response);
        return info == nullptr ||
               (each(info, TS_TST_INFO_get_ext_count, TS_TST_INFO_get_ext, *this) &&
                eachInside(response, *this));
    }
    bool operator()(CMS_ContentInfo* message) const { return eachInside(message, *this); }
};

// ---- encodings that were kept -------------------------------------------------------------------

/// Marks what is signed as changed: without that, encoding copies the octets that decoding kept.
/// Marking also measures the signed part once more than needed.
struct Forget {
    bool operator()(X509* certificate) const { return i2d_re_X509_tbs(certificate, nullptr) > 0; }
    bool operator()(X509_CRL* list) const { return i2d_re_X509_CRL_tbs(list, nullptr) > 0; }
    bool operator()(X509_REQ* request) const { return i2d_re_X509_REQ_tbs(request, nullptr) > 0; }
    /// A signed one may hold certificates, but gives them to nobody: they are copied.
    bool operator()(OCSP_REQUEST* /*request*/) const { return true; }
    bool operator()(OCSP_BASICRESP* response) const { return eachInside(response, *this); }
    bool operator()(CMS_ContentInfo* message) const { return eachInside(message, *this); }
    /// What the token signs is octets to it. They are replaced by a new encoding.
    bool operator()(TS_RESP* response) const {
        const TS_TST_INFO* info = TS_RESP_get_tst_info(response);
        if (info == nullptr) {
            return true;
        }
        unsigned char* octets = nullptr;
        const int length = i2d_TS_TST_INFO(info, &octets);
        if (length <= 0) {
            return false;
        }
        const PKCS7* content = TS_RESP_get_token(response)->d.sign->contents;
        ASN1_STRING_set0(content->d.other->value.octet_string, octets, length);
        return eachInside(response, *this);
    }
};

// ---- operations ---------------------------------------------------------------------------------

template <typename Value, auto d2i, auto i2d, auto release>
struct Message {
    static Holder<Value, release> decode(Octets message) {
        const unsigned char* next = message.data;
        return Holder<Value, release>(d2i(nullptr, &next, static_cast<long>(message.size)));
    }
    static bool encode(const Value* value) {
        unsigned char* octets = nullptr;
        const int length = i2d(value, &octets);
        OPENSSL_free(octets);
        return length > 0;
    }
};

using Response = Message<OCSP_RESPONSE, d2i_OCSP_RESPONSE, i2d_OCSP_RESPONSE, OCSP_RESPONSE_free>;
using Management = Message<OSSL_CMP_MSG, d2i_OSSL_CMP_MSG, i2d_OSSL_CMP_MSG, OSSL_CMP_MSG_free>;
using Container = Message<PKCS12, d2i_PKCS12, i2d_PKCS12, PKCS12_free>;

/// A response that tells of a failure only has no basic response, and is refused.
struct BasicResponse {
    static Holder<OCSP_BASICRESP, OCSP_BASICRESP_free> decode(Octets message) {
        const auto response = Response::decode(message);
        return Holder<OCSP_BASICRESP, OCSP_BASICRESP_free>(
            response != nullptr ? OCSP_response_get1_basic(response.get()) : nullptr);
    }
    static bool encode(OCSP_BASICRESP* basic) {
        const Holder<OCSP_RESPONSE, OCSP_RESPONSE_free> response(
            OCSP_response_create(OCSP_RESPONSE_STATUS_SUCCESSFUL, basic));
        return response != nullptr && Response::encode(response.get());
    }
};

/// Errors stay with the thread until somebody takes them, even of what is accepted in the end.
template <bool (*work)(Octets)>
bool run(Octets message) {
    const bool done = work(message);
    if (ERR_peek_error() != 0) {
        ERR_clear_error();
    }
    return done;
}

template <typename Type>
bool decode(Octets message) {
    return Type::decode(message) != nullptr;
}

template <typename Type>
bool decodeAll(Octets message) {
    const auto value = Type::decode(message);
    return value != nullptr && Open{false}(value.get());
}

template <typename Type>
bool recode(Octets message) {
    const auto value = Type::decode(message);
    return value != nullptr && Forget()(value.get()) && Type::encode(value.get());
}

/// Of a message whose certificates cannot be got at.
template <typename Type>
bool recodePlain(Octets message) {
    const auto value = Type::decode(message);
    return value != nullptr && Type::encode(value.get());
}

template <typename Type>
bool recodeAll(Octets message) {
    const auto value = Type::decode(message);
    return value != nullptr && Open{true}(value.get()) && Forget()(value.get()) &&
           Type::encode(value.get());
}

/// A value that is part of a message, and text of it.
using Name = Message<X509_NAME, d2i_X509_NAME, i2d_X509_NAME, X509_NAME_free>;
using Names = Message<GENERAL_NAMES, d2i_GENERAL_NAMES, i2d_GENERAL_NAMES, GENERAL_NAMES_free>;

bool printName(Octets message) {
    const auto name = Name::decode(message);
    const Holder<BIO, BIO_free> text(BIO_new(BIO_s_mem()));
    return name != nullptr && text != nullptr &&
           X509_NAME_print_ex(text.get(), name.get(), 0, XN_FLAG_ONELINE & ~ASN1_STRFLGS_ESC_MSB) >
               0;
}

bool decodeExtensions(Octets message) {
    const unsigned char* next = message.data;
    const StackHolder<X509_EXTENSIONS> extensions(
        d2i_X509_EXTENSIONS(nullptr, &next, static_cast<long>(message.size)));
    return extensions != nullptr &&
           each(extensions.get(), X509v3_get_ext_count, X509v3_get_ext, Open{false});
}

/// The certificate as a whole is decoded, to get at three fields.
bool findFields(Octets message) {
    const auto certificate = Message<X509, d2i_X509, i2d_X509, X509_free>::decode(message);
    if (certificate == nullptr || X509_get0_serialNumber(certificate.get()) == nullptr ||
        X509_get_subject_name(certificate.get()) == nullptr) {
        return false;
    }
    const int index = X509_get_ext_by_NID(certificate.get(), NID_subject_alt_name, -1);
    return index < 0 || X509_EXTENSION_get_data(X509_get_ext(certificate.get(), index)) != nullptr;
}

/// The bags in the safe are left as they are: encrypted, or octets.
template <bool encode>
bool openContainer(Octets message) {
    const auto container = Container::decode(message);
    if (container == nullptr) {
        return false;
    }
    const StackHolder<STACK_OF(PKCS7)> safes(PKCS12_unpack_authsafes(container.get()));
    return safes != nullptr &&
           (!encode || (PKCS12_pack_authsafes(container.get(), safes.get()) == 1 &&
                        Container::encode(container.get())));
}

template <typename Type>
void add(std::vector<Operation>& operations, Kind kind, const char* callsToDecode,
         const char* callsToDecodeAll, const char* callsToRecode) {
    operations.push_back({kind, Task::Decode, callsToDecode, run<decode<Type>>});
    operations.push_back({kind, Task::DecodeAll, callsToDecodeAll, run<decodeAll<Type>>});
    operations.push_back({kind, Task::Recode, callsToRecode, run<recode<Type>>});
}

std::vector<Operation> operations() {
    using Certificate = Message<X509, d2i_X509, i2d_X509, X509_free>;
    using List = Message<X509_CRL, d2i_X509_CRL, i2d_X509_CRL, X509_CRL_free>;
    using Request = Message<X509_REQ, d2i_X509_REQ, i2d_X509_REQ, X509_REQ_free>;
    using SignedData =
        Message<CMS_ContentInfo, d2i_CMS_ContentInfo, i2d_CMS_ContentInfo, CMS_ContentInfo_free>;
    using OcspRequest =
        Message<OCSP_REQUEST, d2i_OCSP_REQUEST, i2d_OCSP_REQUEST, OCSP_REQUEST_free>;
    using TimeStamp = Message<TS_RESP, d2i_TS_RESP, i2d_TS_RESP, TS_RESP_free>;

    std::vector<Operation> all = {
        {Kind::Certificate, Task::RecodeAll,
         "d2i_X509, X509V3_EXT_d2i, X509V3_EXT_i2d, i2d_re_X509_tbs, i2d_X509",
         run<recodeAll<Certificate>>},
        {Kind::RevocationList, Task::RecodeAll,
         "d2i_X509_CRL, X509V3_EXT_d2i, X509V3_EXT_i2d, i2d_re_X509_CRL_tbs, i2d_X509_CRL",
         run<recodeAll<List>>},
        {Kind::Certificate, Task::Fields,
         "d2i_X509, X509_get0_serialNumber, X509_get_subject_name, X509_get_ext_by_NID",
         run<findFields>},
        {Kind::Name, Task::Decode, "d2i_X509_NAME", run<decode<Name>>},
        {Kind::Name, Task::DecodeText, "d2i_X509_NAME, X509_NAME_print_ex", run<printName>},
        {Kind::Extensions, Task::DecodeAll, "d2i_X509_EXTENSIONS, X509V3_EXT_d2i",
         run<decodeExtensions>},
        {Kind::GeneralNames, Task::Decode, "d2i_GENERAL_NAMES", run<decode<Names>>},
        {Kind::ManagementMessage, Task::Decode, "d2i_OSSL_CMP_MSG", run<decode<Management>>},
        {Kind::ManagementMessage, Task::Recode, "d2i_OSSL_CMP_MSG, i2d_OSSL_CMP_MSG",
         run<recodePlain<Management>>},
        {Kind::KeyContainer, Task::Decode, "d2i_PKCS12, PKCS12_unpack_authsafes",
         run<openContainer<false>>},
        {Kind::KeyContainer, Task::Recode,
         "d2i_PKCS12, PKCS12_unpack_authsafes, PKCS12_pack_authsafes, i2d_PKCS12",
         run<openContainer<true>>},
    };
    add<Certificate>(all, Kind::Certificate, "d2i_X509", "d2i_X509, X509V3_EXT_d2i",
                     "d2i_X509, i2d_re_X509_tbs, i2d_X509");
    // Decoding also opens some extensions of the list and its entries, and hashes the whole.
    add<List>(all, Kind::RevocationList, "d2i_X509_CRL", "d2i_X509_CRL, X509V3_EXT_d2i",
              "d2i_X509_CRL, i2d_re_X509_CRL_tbs, i2d_X509_CRL");
    add<Request>(all, Kind::CertificationRequest, "d2i_X509_REQ",
                 "d2i_X509_REQ, X509_REQ_get_extensions, X509V3_EXT_d2i",
                 "d2i_X509_REQ, i2d_re_X509_REQ_tbs, i2d_X509_REQ");
    add<SignedData>(all, Kind::SignedData, "d2i_CMS_ContentInfo",
                    "d2i_CMS_ContentInfo, X509V3_EXT_d2i",
                    "d2i_CMS_ContentInfo, i2d_re_X509_tbs, i2d_CMS_ContentInfo");
    add<OcspRequest>(all, Kind::OcspRequest, "d2i_OCSP_REQUEST", "d2i_OCSP_REQUEST, X509V3_EXT_d2i",
                     "d2i_OCSP_REQUEST, i2d_OCSP_REQUEST");
    add<BasicResponse>(all, Kind::OcspResponse, "d2i_OCSP_RESPONSE, OCSP_response_get1_basic",
                       "d2i_OCSP_RESPONSE, OCSP_response_get1_basic, X509V3_EXT_d2i",
                       "d2i_OCSP_RESPONSE, OCSP_response_get1_basic, i2d_re_X509_tbs, "
                       "OCSP_response_create, i2d_OCSP_RESPONSE");
    // Decoding includes what the token signs.
    add<TimeStamp>(all, Kind::TimeStampResponse, "d2i_TS_RESP", "d2i_TS_RESP, X509V3_EXT_d2i",
                   "d2i_TS_RESP, i2d_TS_TST_INFO, i2d_re_X509_tbs, i2d_TS_RESP");
    return all;
}

const bench::Library openssl("OpenSSL", OpenSSL_version(OPENSSL_VERSION_STRING), operations());

} // namespace
