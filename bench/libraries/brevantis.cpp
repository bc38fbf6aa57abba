// This library. Decoding is always complete: every element to its own type, open values too where
// their identifier is known, so there is no shallower form to measure. A walk reads as much, and
// stores nothing. All is measured twice: with malloc, and with an arena behind the allocator hooks.

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

template <typename Allocator, typename Control, typename Value>
bool decode(Octets message) {
    [[maybe_unused]] const Allocator allocator;
    ASN1BERDecodeBuffer input(message.data, static_cast<int>(message.size));
    Value value;
    Control control(input, value);
    return control.Decode() == 0;
}

template <typename Allocator, typename Control, typename Value>
bool recode(Octets message) {
    [[maybe_unused]] const Allocator allocator;
    ASN1BERDecodeBuffer input(message.data, static_cast<int>(message.size));
    Value value;
    Control control(input, value);
    if (control.Decode() != 0) {
        return false;
    }
    ASN1BEREncodeBuffer output;
    return control.EncodeTo(output) > 0;
}

/// The authenticated safe is a message of its own inside the container.
template <typename Allocator>
bool decodeKeyContainer(Octets message) {
    [[maybe_unused]] const Allocator allocator;
    ASN1BERDecodeBuffer input(message.data, static_cast<int>(message.size));
    asn1data::ASN1T_PFX container;
    asn1data::ASN1C_PFX control(input, container);
    if (control.Decode() != 0) {
        return false;
    }
    const auto* content = static_cast<const ASN1TDynOctStr*>(container.authSafe.content.decoded);
    return content != nullptr &&
           decode<Malloc, asn1data::ASN1C_AuthenticatedSafe, asn1data::ASN1T_AuthenticatedSafe>(
               {content->data, content->numocts});
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
    operations.push_back({kind, Task::DecodeAll, "Decode", decode<Allocator, Control, Value>});
    operations.push_back(
        {kind, Task::RecodeAll, "Decode, EncodeTo", recode<Allocator, Control, Value>});
    if (std::is_same_v<Allocator, Malloc>) {
        operations.push_back({kind, Task::Scan, "walk", walk<type>});
    }
}

constexpr char certificate[] = "Certificate";
constexpr char list[] = "CertificateList";
constexpr char content[] = "ContentInfo";
constexpr char ocspRequest[] = "OCSPRequest";
constexpr char ocspResponse[] = "OCSPResponse";
constexpr char stamp[] = "TimeStampResp";
constexpr char request[] = "CertificationRequest";

template <typename Allocator>
std::vector<Operation> operations() {
    using namespace asn1data;
    std::vector<Operation> all;
    add<Allocator, ASN1C_Certificate, ASN1T_Certificate, certificate>(all, Kind::Certificate);
    add<Allocator, ASN1C_CertificateList, ASN1T_CertificateList, list>(all, Kind::RevocationList);
    add<Allocator, ASN1C_ContentInfo, ASN1T_ContentInfo, content>(all, Kind::SignedData);
    add<Allocator, ASN1C_OCSPRequest, ASN1T_OCSPRequest, ocspRequest>(all, Kind::OcspRequest);
    add<Allocator, ASN1C_OCSPResponse, ASN1T_OCSPResponse, ocspResponse>(all, Kind::OcspResponse);
    add<Allocator, ASN1C_TimeStampResp, ASN1T_TimeStampResp, stamp>(all, Kind::TimeStampResponse);
    add<Allocator, ASN1C_CertificationRequest, ASN1T_CertificationRequest, request>(
        all, Kind::CertificationRequest);
    all.push_back({Kind::KeyContainer, Task::DecodeAll, "Decode, authenticated safe",
                   decodeKeyContainer<Allocator>});
    return all;
}

const bench::Library thisLibrary(bench::ourName, BREVANTIS_VERSION, operations<Malloc>());
const bench::Library withArena(std::string(bench::ourName) + " with an arena", BREVANTIS_VERSION,
                               operations<Arena>());

} // namespace
