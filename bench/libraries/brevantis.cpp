// This library. Decoding goes to the end: every element to its own type, open values too where
// their identifier is known. Only the certificates of signed messages and the safe of a container
// stay encoded until they are decoded by themselves, which is what "all" adds. A walk reads as
// much, and stores nothing. All is measured twice: with malloc, and with an arena behind the
// allocator hooks.

#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime.h>
#include <brevantis/asn1/values.h>

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
    if constexpr (recodes(task)) {
        ASN1BEREncodeBuffer output;
        return control.EncodeTo(output) > 0;
    }
    return true;
}

/// Strings and open values of unknown identifiers stay views of the message.
template <typename Control, typename Value>
bool decodeInPlace(Octets message) {
    ASN1BERDecodeBuffer input(message.data, static_cast<int>(message.size));
    rtCtxtSetFlag(input.getCtxtPtr(), ASN1F_NO_COPY);
    Value value;
    Control control(input, value);
    return control.Decode() == 0;
}

// ---- a value that is there ----------------------------------------------------------------------

template <typename Control, typename Value>
class OnValue : public bench::Trial {
public:
    explicit OnValue(Octets message)
        : input_(message.data, static_cast<int>(message.size)), control_(input_, value_),
          decoded_(control_.Decode() == 0) {}
    bool isDecoded() const { return decoded_; }

protected:
    ASN1BERDecodeBuffer input_;
    Value value_;
    Control control_;

private:
    bool decoded_;
};

template <typename Control, typename Value>
class EncodeValue final : public OnValue<Control, Value> {
public:
    using OnValue<Control, Value>::OnValue;
    bool run() override { return this->control_.EncodeTo(output_) > 0; }

private:
    ASN1BEREncodeBuffer output_;
};

template <typename Control, typename Value, auto copy>
class CopyValue final : public OnValue<Control, Value> {
public:
    using OnValue<Control, Value>::OnValue;
    bool run() override {
        copy(target_.getCtxtPtr(), &this->value_, &copied_);
        return true;
    }

private:
    ASN1BERDecodeBuffer target_;
    Value copied_;
};

template <typename Control, typename Value, auto release>
class ReleaseValue final : public OnValue<Control, Value> {
public:
    using OnValue<Control, Value>::OnValue;
    bool run() override {
        release(this->input_.getCtxtPtr(), &this->value_);
        return true;
    }
};

template <typename Work>
std::unique_ptr<bench::Trial> prepare(Octets message) {
    auto work = std::make_unique<Work>(message);
    return work->isDecoded() ? std::move(work) : nullptr;
}

template <typename Control, typename Value, auto copy, auto release>
void addSteps(std::vector<Operation>& operations, Kind kind, const char* copyName,
              const char* releaseName) {
    operations.insert(
        operations.end(),
        {{kind, Task::DecodeInPlace, "Decode with ASN1F_NO_COPY", decodeInPlace<Control, Value>},
         {kind, Task::Encode, "EncodeTo", nullptr, prepare<EncodeValue<Control, Value>>},
         {kind, Task::Copy, copyName, nullptr, prepare<CopyValue<Control, Value, copy>>},
         {kind, Task::Release, releaseName, nullptr,
          prepare<ReleaseValue<Control, Value, release>>}});
}

// ---- without values -----------------------------------------------------------------------------

class Nobody final : public asn1data::WalkVisitor {
public:
    asn1data::WalkInterest interest() const override { return {false, false}; }
};

/// Nothing but the walk itself: it goes into every element and reports it to nobody.
template <const char* type>
bool walk(Octets message) {
    static const asn1data::TypeDescription* const description = asn1data::findType(type);
    Nobody nobody;
    return asn1data::walk(*description, message.data, message.size, nobody).status == 0;
}

/// Volatile, so that no use is left out.
volatile unsigned long long used;

/// Uses the value of every primitive, as a program does that is after all of them.
class Reader final : public asn1data::WalkVisitor {
public:
    asn1data::WalkInterest interest() const override { return {false, true}; }
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override {
        const asn1data::WalkValue& value = element.value;
        used_ += static_cast<unsigned long long>(value.number) + value.octetCount + value.bitCount;
        if (value.identifier != nullptr) {
            used_ += value.identifier->subid[value.identifier->numids - 1];
        }
        if (value.octets != nullptr && value.octetCount != 0) {
            used_ += value.octets[value.octetCount - 1];
        }
        return asn1data::WalkAction::Continue;
    }
    unsigned long long used() const { return used_; }

private:
    unsigned long long used_ = 0;
};

template <const char* type>
bool walkValues(Octets message) {
    static const asn1data::TypeDescription* const description = asn1data::findType(type);
    Reader reader;
    const bool whole = asn1data::walk(*description, message.data, message.size, reader).status == 0;
    used = reader.used();
    return whole;
}

/// A certificate need not have alternative names.
bool findFields(Octets message) {
    static const asn1data::TypeDescription* const type = asn1data::findType("Certificate");
    constexpr std::size_t count = 3;
    static const char* const paths[count] = {
        "tbsCertificate.serialNumber", "tbsCertificate.subject",
        "tbsCertificate.extensions[2.5.29.17].extnValue.subjectAltName"};
    asn1data::ElementSpan spans[count];
    asn1data::findElements(*type, message.data, message.size, paths, spans, count);
    return spans[0].status == 0 && spans[1].status == 0 &&
           (spans[2].status == 0 || spans[2].status == ASN1S_MISSING_ELEMENT);
}

// ---- value classes ------------------------------------------------------------------------------

Brevantis::CBlob blob(Octets message) {
    return {message.data, message.size};
}

template <typename Value>
bool decodeObject(Octets message) {
    Value value;
    value.decode(blob(message));
    return true;
}

template <typename Value>
bool decodeText(Octets message) {
    Value value;
    value.decode(blob(message));
    return value.toString().c_str()[0] != 0;
}

void addObjects(std::vector<Operation>& operations) {
    namespace values = Brevantis::ASN1;
    operations.insert(
        operations.end(),
        {{Kind::Name, Task::Decode, "CName::decode", decodeObject<values::CName>},
         {Kind::Name, Task::DecodeText, "CName::decode, toString", decodeText<values::CName>},
         {Kind::Extensions, Task::DecodeAll, "CExtensions::decode",
          decodeObject<values::CExtensions>},
         {Kind::GeneralNames, Task::Decode, "CGeneralNames::decode",
          decodeObject<values::CGeneralNames>}});
}

// ---- what is done with which message ------------------------------------------------------------

template <typename Allocator, typename Control, typename Value, const char* type>
void add(std::vector<Operation>& operations, Kind kind) {
    operations.push_back(
        {kind, Task::DecodeAll, "Decode", run<Allocator, Control, Value, Task::DecodeAll>});
    operations.push_back({kind, Task::RecodeAll, "Decode, EncodeTo",
                          run<Allocator, Control, Value, Task::RecodeAll>});
    if (std::is_same_v<Allocator, Malloc>) {
        operations.push_back({kind, Task::Scan, "walk", walk<type>});
        operations.push_back({kind, Task::Scan, "walk, every value used", walkValues<type>});
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
constexpr char management[] = "PKIMessage";

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
    add<Allocator, ASN1C_PKIMessage, ASN1T_PKIMessage, management>(all, Kind::ManagementMessage);
    if constexpr (std::is_same_v<Allocator, Malloc>) {
        addSteps<ASN1C_Certificate, ASN1T_Certificate, asn1Copy_Certificate, asn1Free_Certificate>(
            all, Kind::Certificate, "asn1Copy_Certificate", "asn1Free_Certificate");
        addSteps<ASN1C_CertificateList, ASN1T_CertificateList, asn1Copy_CertificateList,
                 asn1Free_CertificateList>(all, Kind::RevocationList, "asn1Copy_CertificateList",
                                           "asn1Free_CertificateList");
        addSteps<ASN1C_ContentInfo, ASN1T_ContentInfo, asn1Copy_ContentInfo, asn1Free_ContentInfo>(
            all, Kind::SignedData, "asn1Copy_ContentInfo", "asn1Free_ContentInfo");
        all.push_back({Kind::Certificate, Task::Fields,
                       "findElements: serial number, subject, alternative names", findFields});
        addObjects(all);
    }
    return all;
}

const bench::Library thisLibrary(bench::ourName, BREVANTIS_VERSION, operations<Malloc>());
const bench::Library withArena(bench::arenaName, BREVANTIS_VERSION, operations<Arena>());

} // namespace
