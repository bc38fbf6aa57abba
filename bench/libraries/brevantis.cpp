// This library. Decoding goes to the end: every element to its own type, open values too where
// their identifier is known. Only the certificates of signed messages and the safe of a container
// stay encoded until they are decoded by themselves, which is what "all" adds. A walk reads as
// much, and stores nothing. All is measured twice: with malloc, and with an arena behind the
// allocator hooks.

#include <type_traits>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime.h>

#include <sys/mman.h>

#include "operation.h"

namespace {

using bench::Kind;
using bench::Octets;
using bench::Operation;
using bench::Task;

/// The allocator that is there without a word.
struct Malloc {};

/// One piece of memory that is handed out from its start on and taken back as a whole, as a program
/// may have it that decodes one message after the other. It stays from one message to the next.
class Arena {
public:
    Arena() {
        used_ = 0;
        g_malloc_func = take;
        g_free_func = [](void*, void*) {};
    }
    ~Arena() {
        g_malloc_func = rtDefaultMalloc;
        g_free_func = rtDefaultFree;
    }
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

private:
    static void* take(void* /*userData*/, std::size_t size) {
        constexpr std::size_t room = std::size_t{1} << 30;
        static unsigned char* const memory =
            static_cast<unsigned char*>(mmap(nullptr, room, PROT_READ | PROT_WRITE,
                                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
        const std::size_t start = used_;
        if (memory == MAP_FAILED || size > room - start) {
            return nullptr;
        }
        used_ += (size + alignof(std::max_align_t) - 1) & ~(alignof(std::max_align_t) - 1);
        return memory + start;
    }

    static inline std::size_t used_ = 0;
};

template <typename Allocator, typename Control, typename Value, Task task>
bool run(Octets message);

/// What the catalogue leaves encoded inside a value, so that whoever wants it decodes it: nothing.
template <Task task, typename Value>
bool runInside(const Value& /*value*/) {
    return true;
}

/// The certificates of a signed message, whose signatures are over their octets.
template <Task task>
bool runInside(const asn1data::ASN1T_ContentInfo& message) {
    const auto* data = static_cast<const asn1data::ASN1T_SignedData*>(message.content.decoded);
    if (data == nullptr) {
        return false;
    }
    const Asn1RTDListNode* node = data->m.certificatesPresent ? data->certificates.head : nullptr;
    for (; node != nullptr; node = node->next) {
        const auto* choice = static_cast<const asn1data::ASN1T_CertificateChoicesRaw*>(node->data);
        if (choice->t != asn1data::T_CertificateChoicesRaw_certificate) {
            return false;
        }
        const auto& octets = choice->u.certificate->toBeSigned;
        if (!run<Malloc, asn1data::ASN1C_TBSCertificate, asn1data::ASN1T_TBSCertificate, task>(
                {octets.data, octets.numocts})) {
            return false;
        }
    }
    return true;
}

template <Task task>
bool runInside(const asn1data::ASN1T_TimeStampResp& response) {
    return runInside<task>(
        static_cast<const asn1data::ASN1T_ContentInfo&>(response.timeStampToken));
}

/// The authenticated safe of a container.
template <Task task>
bool runInside(const asn1data::ASN1T_PFX& container) {
    const auto* safe = static_cast<const ASN1TDynOctStr*>(container.authSafe.content.decoded);
    return safe != nullptr &&
           run<Malloc, asn1data::ASN1C_AuthenticatedSafe, asn1data::ASN1T_AuthenticatedSafe, task>(
               {safe->data, safe->numocts});
}

template <typename Allocator, typename Control, typename Value, Task task>
bool run(Octets message) {
    [[maybe_unused]] const Allocator allocator;
    ASN1BERDecodeBuffer input(message.data, static_cast<int>(message.size));
    Value value;
    Control control(input, value);
    if (control.Decode() != 0) {
        return false;
    }
    if constexpr (task == Task::DecodeAll || task == Task::RecodeAll) {
        if (!runInside<task>(value)) {
            return false;
        }
    }
    if constexpr (encodes(task)) {
        ASN1BEREncodeBuffer output;
        return control.EncodeTo(output) > 0;
    }
    return true;
}

/// Nothing but the walk itself: it goes into every element and reports it to nobody.
template <const char* type>
bool walk(Octets message) {
    static const asn1data::TypeDescription* const description = asn1data::findType(type);
    asn1data::WalkVisitor nobody;
    return asn1data::walk(*description, message.data, message.size, nobody).status == 0;
}

template <typename Allocator, typename Control, typename Value, const char* type>
void add(std::vector<Operation>& operations, Kind kind) {
    operations.push_back(
        {kind, Task::DecodeAll, "Decode", run<Allocator, Control, Value, Task::DecodeAll>});
    operations.push_back({kind, Task::RecodeAll, "Decode, EncodeTo",
                          run<Allocator, Control, Value, Task::RecodeAll>});
    if (std::is_same_v<Allocator, Malloc>) {
        operations.push_back({kind, Task::Scan, "walk", walk<type>});
    }
}

/// The same for a message that leaves something encoded.
template <typename Allocator, typename Control, typename Value, const char* type>
void addWithInside(std::vector<Operation>& operations, Kind kind) {
    operations.push_back({kind, Task::Decode, "Decode, what is inside left encoded",
                          run<Allocator, Control, Value, Task::Decode>});
    operations.push_back({kind, Task::Recode, "Decode, EncodeTo, what is inside left encoded",
                          run<Allocator, Control, Value, Task::Recode>});
    add<Allocator, Control, Value, type>(operations, kind);
}

constexpr char certificate[] = "Certificate";
constexpr char list[] = "CertificateList";
constexpr char content[] = "ContentInfo";
constexpr char ocspRequest[] = "OCSPRequest";
constexpr char ocspResponse[] = "OCSPResponse";
constexpr char stamp[] = "TimeStampResp";
constexpr char container[] = "PFX";
constexpr char request[] = "CertificationRequest";

template <typename Allocator>
std::vector<Operation> operations() {
    using namespace asn1data;
    std::vector<Operation> all;
    add<Allocator, ASN1C_Certificate, ASN1T_Certificate, certificate>(all, Kind::Certificate);
    add<Allocator, ASN1C_CertificateList, ASN1T_CertificateList, list>(all, Kind::RevocationList);
    addWithInside<Allocator, ASN1C_ContentInfo, ASN1T_ContentInfo, content>(all, Kind::SignedData);
    add<Allocator, ASN1C_OCSPRequest, ASN1T_OCSPRequest, ocspRequest>(all, Kind::OcspRequest);
    add<Allocator, ASN1C_OCSPResponse, ASN1T_OCSPResponse, ocspResponse>(all, Kind::OcspResponse);
    addWithInside<Allocator, ASN1C_TimeStampResp, ASN1T_TimeStampResp, stamp>(
        all, Kind::TimeStampResponse);
    add<Allocator, ASN1C_CertificationRequest, ASN1T_CertificationRequest, request>(
        all, Kind::CertificationRequest);
    addWithInside<Allocator, ASN1C_PFX, ASN1T_PFX, container>(all, Kind::KeyContainer);
    return all;
}

const bench::Library thisLibrary(bench::ourName, BREVANTIS_VERSION, operations<Malloc>());
const bench::Library withArena(std::string(bench::ourName) + " with an arena", BREVANTIS_VERSION,
                               operations<Arena>());

} // namespace
