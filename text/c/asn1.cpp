#include <brevantis/asn1.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include <brevantis/asn1/asn1data/reading_policy.h>
#include <brevantis/asn1/runtime.h>
#include <brevantis/asn1/text/json_reader.h>
#include <brevantis/asn1/text/json_writer.h>
#include <brevantis/asn1/text/message.h>
#include <brevantis/asn1/text/path_at.h>
#include <brevantis/asn1/text/recognition.h>
#include <brevantis/asn1/text/schema.h>
#include <brevantis/asn1/text/types.h>

#include "json/encode_buffer.h"

// Every function that can fail stands in `guarded`, which turns what is thrown into a status.

namespace {

using asn1data::TypeDescription;
using asn1data::WalkFailure;
using asn1data::WalkResult;
using asn1text::Octets;

constexpr int PolicyBits =
    ASN1F_TOLERATE_OPEN_VALUES | ASN1F_TOLERATE_SIZES | ASN1F_EXACT | ASN1F_DER;
static_assert(int{BASN1_TOLERATE_OPEN_VALUES} == int{ASN1F_TOLERATE_OPEN_VALUES} &&
                  int{BASN1_TOLERATE_SIZES} == int{ASN1F_TOLERATE_SIZES} &&
                  int{BASN1_EXACT} == int{ASN1F_EXACT} && int{BASN1_DER} == int{ASN1F_DER},
              "the policies are the library's");
static_assert(int{BASN1_MISSING_ELEMENT} == int{ASN1S_MISSING_ELEMENT} &&
                  int{BASN1_EXTRA_ELEMENT} == int{ASN1S_EXTRA_ELEMENT} &&
                  int{BASN1_NO_MEMORY} == int{ASN1S_NO_MEMORY} &&
                  int{BASN1_STRING_OVERFLOW} == int{ASN1S_STRING_OVERFLOW} &&
                  int{BASN1_BAD_VALUE} == int{ASN1S_BAD_VALUE} &&
                  int{BASN1_CONSTRAINT_VIOLATION} == int{ASN1S_CONSTRAINT_VIOLATION} &&
                  int{BASN1_INVALID_PARAMETER} == int{ASN1S_INVALID_PARAMETER} &&
                  int{BASN1_VALUE_TOO_BIG} == int{ASN1S_VALUE_TOO_BIG} &&
                  int{BASN1_NOT_SUPPORTED} == int{ASN1S_NOT_SUPPORTED},
              "the statuses are the library's");

const TypeDescription& description(const basn1_type* type) {
    return *reinterpret_cast<const TypeDescription*>(type);
}
const basn1_type* handleOf(const TypeDescription* type) {
    return reinterpret_cast<const basn1_type*>(type);
}

/// The callback wants no more.
struct Stopped {};

class CallbackSink : public asn1text::Sink {
public:
    CallbackSink(basn1_write callback, void* user) : write_(callback), user_(user) {}

    void write(std::string_view text) override {
        if (write_(user_, text.data(), text.size()) != 0) {
            throw Stopped();
        }
    }

private:
    basn1_write write_;
    void* user_;
};

template <class Write>
std::string textOf(Write write) {
    std::string text(write(nullptr, std::size_t{0}), '\0');
    write(text.data(), text.size() + 1);
    return text;
}

bool isGiven(const void* octets, std::size_t size) {
    return octets != nullptr || size == 0;
}

} // namespace

struct basn1_handle {
    asn1data::ReadingPolicy policy;
    std::size_t memoryLimit = 0;
    asn1text::JsonLimits textLimits;
    std::vector<std::unique_ptr<const asn1text::Schema>> schemas;
    asn1text::IdentifierNames names; ///< with those of the schemas

    int status = 0; ///< of the last call, and what it tells of a failure
    std::size_t offset = 0;
    std::string path;
    std::string expected;
    std::string found;
    std::string whole;
    std::string answer; ///< path of basn1_path_at

    /// Forgets why the call before failed.
    void begin() noexcept {
        status = 0;
        offset = 0;
        for (std::string* const text : {&path, &expected, &found, &whole}) {
            text->clear();
        }
    }

    int fail(int newStatus, std::size_t place, std::string wanted, std::string instead,
             std::string where = {}) {
        whole = (where.empty() ? "" : where + " ") + "at offset " + std::to_string(place) +
                ": expected " + wanted + (instead.empty() ? "" : ", found " + instead) + " (" +
                rtStatusName(newStatus) + ")";
        offset = place;
        path = std::move(where);
        expected = std::move(wanted);
        found = std::move(instead);
        return status = newStatus;
    }

    int failOn(const TypeDescription& type, Octets message, const WalkFailure& failure) {
        std::string where = failure.path;
        if (failure.pathCut) {
            // The element around is told whole by a walk to it.
            asn1text::PathAtOffset around(failure.elementOffset);
            asn1data::walk(type, message.data(), message.size(), around, policy);
            where = around.path.size() > where.size() ? around.path : where;
        }
        return fail(failure.status, failure.offset, textOf([&](char* text, std::size_t size) {
                        return asn1data::writeExpected(failure, text, size);
                    }),
                    textOf([&](char* text, std::size_t size) {
                        return asn1data::writeFound(failure, text, size);
                    }),
                    std::move(where));
    }

    int failOn(const std::vector<asn1text::SchemaMessage>& messages) {
        const auto first = std::find_if(messages.begin(), messages.end(),
                                        [](const auto& message) { return !message.warning; });
        path = first->file + (first->line == 0 ? ""
                                               : ":" + std::to_string(first->line) + ":" +
                                                     std::to_string(first->column));
        expected = "modules that can be read";
        found = first->sentence;
        for (const asn1text::SchemaMessage& message : messages) {
            whole += (whole.empty() ? "" : "\n") + messageText(message);
        }
        return status = ASN1S_BAD_VALUE;
    }

    int failOn(asn1text::JsonFailure failure) {
        whole = asn1text::failureText(failure);
        offset = failure.offset;
        path = std::move(failure.path);
        expected = std::move(failure.expected);
        found = std::move(failure.found);
        return status = failure.status;
    }
};

struct basn1_messages {
    basn1_handle* handle;
    asn1text::MessageReader reader;
    std::string label;
    std::vector<asn1text::OctetStore> encoded; ///< messages that stand as JSON
};

namespace {

/// Runs a function of the interface.
/// @param handle of the caller
/// @param given whether all that the function needs was given
template <class Function>
int guarded(basn1_handle* handle, bool given, Function function) noexcept {
    if (handle == nullptr) {
        return ASN1S_INVALID_PARAMETER;
    }
    handle->begin();
    try {
        return given ? function()
                     : handle->fail(ASN1S_INVALID_PARAMETER, 0, "arguments that are not null", "");
    } catch (const Stopped&) {
        handle->begin();
        return handle->status = BASN1_STOPPED;
    } catch (...) {
        // Nothing else is thrown but that memory is out, and there is none for texts then.
        handle->begin();
        return handle->status = ASN1S_NO_MEMORY;
    }
}

/// Hands octets over to the caller.
int give(Octets octets, unsigned char** target, std::size_t* size) {
    auto* const block = static_cast<unsigned char*>(::operator new(octets.size() + 1));
    std::copy(octets.begin(), octets.end(), block);
    *target = block;
    *size = octets.size();
    return 0;
}

/// Refuses octets behind a message. Its own end-of-contents octets are none, though the decoder of
/// most types stands in front of them.
int expectEnd(basn1_handle& handle, std::size_t end, Octets message) {
    const std::size_t left = message.size() - end;
    const bool closed = left == 2 && message[end] == 0 && message[end + 1] == 0 &&
                        asn1text::firstElementSize(message) == message.size();
    return left == 0 || closed
               ? 0
               : handle.fail(ASN1S_EXTRA_ELEMENT, end, "the end of the message",
                             std::to_string(left) + (left == 1 ? " octet" : " octets"));
}

int encode(basn1_handle& handle, asn1text::EncodeBuffer& output, const TypeDescription& type,
           void* value, unsigned char** der, std::size_t* size) {
    const int status = output.encode(type, value);
    return status == 0 ? give(output.octets(), der, size)
                       : handle.fail(status, 0, "a value that can be encoded", "");
}

void setMemoryLimit(const basn1_handle& handle, ASN1CTXT* ctxt) {
    if (handle.memoryLimit != 0 &&
        rtMemHeapSetLimit(&ctxt->memHeap, handle.memoryLimit) == ASN1S_NO_MEMORY) {
        throw std::bad_alloc();
    }
}

int toDer(basn1_handle& handle, const TypeDescription& type, Octets message, unsigned char** der,
          std::size_t* size) {
    if (message.size() > INT_MAX) {
        return handle.fail(ASN1S_VALUE_TOO_BIG, 0, "a message below 2 GB", "");
    }
    ASN1BERDecodeBuffer buffer;
    ASN1CTXT* const ctxt = buffer.getCtxtPtr();
    rtCtxtSetFlag(ctxt, handle.policy.flags | ASN1F_NO_COPY);
    rtCtxtSetElementLimit(ctxt, handle.policy.elementLimit);
    rtCtxtSetDepthLimit(ctxt, handle.policy.depthLimit);
    setMemoryLimit(handle, ctxt);
    void* const value = asn1data::family::newRecord(ctxt, type);
    int status = value != nullptr ? int{ASN1S_SUCCESS} : int{ASN1S_NO_MEMORY};
    if (status == 0) {
        status = xd_setp(ctxt, message.data(), static_cast<int>(message.size()), nullptr, nullptr);
    }
    if (status == 0) {
        status = asn1data::family::decode(ctxt, type, value, ASN1TagExplicit, 0);
    }
    if (status != 0) {
        // The decoder tells no reasons; a walk, which fails where it does, knows them.
        const WalkFailure failure =
            asn1data::explain(type, message.data(), message.size(), handle.policy);
        return failure.status != 0 ? handle.failOn(type, message, failure)
                                   : handle.fail(status, ctxt->buffer.byteIndex,
                                                 "a value that takes less memory", "");
    }
    if (const int left = expectEnd(handle, ctxt->buffer.byteIndex, message); left != 0) {
        return left;
    }
    asn1text::EncodeBuffer output;
    rtCtxtSetFlag(output.context(), handle.policy.flags);
    return encode(handle, output, type, value, der, size);
}

int fromJson(basn1_handle& handle, const TypeDescription& type, std::string_view json,
             unsigned char** der, std::size_t* size) {
    asn1text::EncodeBuffer output;
    setMemoryLimit(handle, output.context());
    asn1text::JsonFailure failure;
    void* const value =
        asn1text::readJson(output.context(), type, json, failure, handle.textLimits, handle.names);
    return value == nullptr ? handle.failOn(std::move(failure))
                            : encode(handle, output, type, value, der, size);
}

/// What an object of derview tells, of a type of the handle.
asn1text::JsonMessage encodeText(const basn1_handle& handle, Octets text) {
    const void* const start = text.data();
    const auto find = [&](const char* name) {
        const basn1_type* const type = basn1_schema_type(&handle, name);
        return type != nullptr ? &description(type) : nullptr;
    };
    return asn1text::encodeJsonMessage({static_cast<const char*>(start), text.size()}, find,
                                       handle.textLimits, handle.names);
}

/// Whether an output was given; it is made empty then.
bool isOutput(unsigned char** der, std::size_t* size) {
    if (der != nullptr) {
        *der = nullptr;
    }
    if (size != nullptr) {
        *size = 0;
    }
    return der != nullptr && size != nullptr;
}

} // namespace

const char* basn1_version(void) {
    return BREVANTIS_ASN1_VERSION;
}

const char* basn1_status_name(int status) {
    return status == BASN1_STOPPED ? "BASN1_STOPPED" : rtStatusName(status);
}

int basn1_open(basn1_handle** handle) {
    if (handle == nullptr) {
        return ASN1S_INVALID_PARAMETER;
    }
    *handle = new (std::nothrow) basn1_handle;
    return *handle != nullptr ? int{ASN1S_SUCCESS} : int{ASN1S_NO_MEMORY};
}

void basn1_close(basn1_handle* handle) {
    delete handle;
}

int basn1_set_policy(basn1_handle* handle, unsigned policies) {
    return guarded(handle, true, [&] {
        if ((policies & ~static_cast<unsigned>(PolicyBits)) != 0) {
            return handle->fail(ASN1S_INVALID_PARAMETER, 0, "bits of policies",
                                std::to_string(policies));
        }
        handle->policy.flags = static_cast<int>(policies);
        return 0;
    });
}

int basn1_set_limit(basn1_handle* handle, int limit, size_t value) {
    return guarded(handle, true, [&] {
        constexpr std::size_t deepest = 64;
        const auto refuse = [&](const char* expected) {
            return handle->fail(ASN1S_INVALID_PARAMETER, 0, expected, std::to_string(value));
        };
        switch (limit) {
        case BASN1_LIMIT_MEMORY:
            handle->memoryLimit = value;
            return 0;
        case BASN1_LIMIT_ELEMENTS:
            if (value > UINT_MAX) {
                return refuse("a count of elements below 2^32");
            }
            handle->policy.elementLimit = static_cast<unsigned>(value);
            return 0;
        case BASN1_LIMIT_DEPTH:
            if (value > deepest) {
                return refuse("a depth of at most 64");
            }
            handle->policy.depthLimit = static_cast<unsigned>(value);
            return 0;
        case BASN1_LIMIT_TEXT:
            handle->textLimits.textSize = value;
            return 0;
        case BASN1_LIMIT_TEXT_DEPTH:
            handle->textLimits.depth = value;
            return 0;
        default:
            return refuse("a limit that there is");
        }
    });
}

const basn1_type* basn1_find_type(const char* name) {
    return name != nullptr ? handleOf(asn1text::findType(name)) : nullptr;
}

const basn1_type* basn1_type_at(size_t index) {
    const asn1data::TypeRange types = asn1data::allTypes();
    return index < types.size() ? handleOf(&types[index]) : nullptr;
}

int basn1_add_schema(basn1_handle* handle, const basn1_schema_text* texts, size_t count) {
    const bool given = texts != nullptr && count != 0 &&
                       std::all_of(texts, texts + count, [](const basn1_schema_text& each) {
                           return each.name != nullptr && isGiven(each.text, each.size);
                       });
    return guarded(handle, given, [&] {
        std::vector<asn1text::SchemaText> files;
        for (const basn1_schema_text* each = texts; each != texts + count; ++each) {
            files.push_back({each->name, std::string(each->text, each->size)});
        }
        std::vector<asn1text::SchemaMessage> messages;
        auto schema = asn1text::readSchema(files, messages);
        if (schema == nullptr) {
            return handle->failOn(messages);
        }
        asn1text::IdentifierNames names = handle->names;
        for (const asn1data::IdentifierDescription& named : schema->identifiers()) {
            names.add(*named.identifier, named.name);
        }
        handle->schemas.push_back(std::move(schema));
        handle->names = std::move(names);
        return 0;
    });
}

const basn1_type* basn1_schema_type(const basn1_handle* handle, const char* name) {
    if (handle == nullptr || name == nullptr) {
        return nullptr;
    }
    try {
        for (auto schema = handle->schemas.rbegin(); schema != handle->schemas.rend(); ++schema) {
            if (const TypeDescription* const type = (*schema)->findType(name)) {
                return handleOf(type);
            }
        }
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    return basn1_find_type(name);
}

const basn1_type* basn1_schema_type_at(const basn1_handle* handle, size_t index) {
    if (handle == nullptr) {
        return nullptr;
    }
    for (const auto& schema : handle->schemas) {
        const asn1data::TypeRange types = schema->types();
        if (index < types.size()) {
            return handleOf(&types[index]);
        }
        index -= types.size();
    }
    return nullptr;
}

const char* basn1_type_name(const basn1_type* type) {
    return type != nullptr ? description(type).name : nullptr;
}

const char* basn1_type_notation(const basn1_type* type) {
    return type != nullptr ? description(type).notation : nullptr;
}

int basn1_recognise(basn1_handle* handle, const unsigned char* message, size_t size,
                    const char* label, const basn1_type** type) {
    if (type != nullptr) {
        *type = nullptr;
    }
    return guarded(handle, isGiven(message, size) && type != nullptr, [&] {
        const asn1text::Recognition recognition =
            asn1text::recognise({message, size}, label != nullptr ? label : "");
        *type = handleOf(recognition.type);
        return recognition.type != nullptr
                   ? 0
                   : handle->fail(ASN1S_NOT_SUPPORTED, 0, "a message of a usual type",
                                  recognition.reason);
    });
}

int basn1_check(basn1_handle* handle, const basn1_type* type, const unsigned char* message,
                size_t size) {
    return guarded(handle, type != nullptr && isGiven(message, size), [&] {
        asn1data::WalkVisitor nothing;
        const WalkResult result =
            asn1data::walk(description(type), message, size, nothing, handle->policy);
        return result.status != 0
                   ? handle->failOn(description(type), {message, size}, result.failure)
                   : expectEnd(*handle, result.consumed, {message, size});
    });
}

int basn1_to_der(basn1_handle* handle, const basn1_type* type, const unsigned char* message,
                 size_t size, unsigned char** der, size_t* der_size) {
    const bool output = isOutput(der, der_size);
    return guarded(handle, output && type != nullptr && isGiven(message, size), [&] {
        return toDer(*handle, description(type), {message, size}, der, der_size);
    });
}

int basn1_to_json(basn1_handle* handle, const basn1_type* type, const unsigned char* message,
                  size_t size, int indented, basn1_write write, void* user) {
    return guarded(handle, type != nullptr && isGiven(message, size) && write != nullptr, [&] {
        CallbackSink sink(write, user);
        const WalkResult result = asn1text::writeJson(description(type), {message, size}, sink,
                                                      indented != 0 ? asn1text::JsonLayout::Indented
                                                                    : asn1text::JsonLayout::OneLine,
                                                      handle->policy, handle->names);
        return result.status != 0
                   ? handle->failOn(description(type), {message, size}, result.failure)
                   : expectEnd(*handle, result.consumed, {message, size});
    });
}

int basn1_from_json(basn1_handle* handle, const basn1_type* type, const char* json, size_t size,
                    unsigned char** der, size_t* der_size) {
    const bool output = isOutput(der, der_size);
    return guarded(handle, output && type != nullptr && isGiven(json, size), [&] {
        return fromJson(*handle, description(type), {json, size}, der, der_size);
    });
}

int basn1_find(basn1_handle* handle, const basn1_type* type, const unsigned char* message,
               size_t size, const char* path, size_t* offset, size_t* length) {
    const bool given = type != nullptr && isGiven(message, size) && path != nullptr &&
                       offset != nullptr && length != nullptr;
    return guarded(handle, given, [&] {
        const asn1data::ElementSpan span =
            asn1data::findElement(description(type), message, size, path);
        if (span.status == 0) {
            *offset = span.offset;
            *length = span.size;
            return 0;
        }
        if (span.failure.status != 0) {
            return handle->failOn(description(type), {message, size}, span.failure);
        }
        const bool isPath = span.status != ASN1S_INVALID_PARAMETER;
        return handle->fail(span.status, 0, isPath ? "an element with this path" : "a path", "",
                            path);
    });
}

int basn1_path_at(basn1_handle* handle, const basn1_type* type, const unsigned char* message,
                  size_t size, size_t offset, const char** path) {
    if (path != nullptr) {
        *path = nullptr;
    }
    return guarded(handle, type != nullptr && isGiven(message, size) && path != nullptr, [&] {
        asn1text::PathAtOffset at(offset);
        asn1data::walk(description(type), message, size, at);
        if (!at.found || offset >= size) {
            return handle->fail(ASN1S_MISSING_ELEMENT, offset,
                                "an octet of an element that can be read", "");
        }
        handle->answer = std::move(at.path);
        *path = handle->answer.c_str();
        return 0;
    });
}

int basn1_messages_open(basn1_handle* handle, const unsigned char* input, size_t size,
                        basn1_messages** messages) {
    if (messages != nullptr) {
        *messages = nullptr;
    }
    return guarded(handle, isGiven(input, size) && messages != nullptr, [&] {
        *messages = new basn1_messages{
            handle, asn1text::MessageReader({input, size}, asn1text::InputForm::Auto), {}, {}};
        return 0;
    });
}

int basn1_messages_next(basn1_messages* messages, const unsigned char** message, size_t* size,
                        const char** label) {
    if (message != nullptr) {
        *message = nullptr;
    }
    if (size != nullptr) {
        *size = 0;
    }
    if (label != nullptr) {
        *label = "";
    }
    if (messages == nullptr) {
        return ASN1S_INVALID_PARAMETER;
    }
    basn1_handle* const handle = messages->handle;
    return guarded(handle, message != nullptr && size != nullptr, [&] {
        const auto found = messages->reader.next();
        if (!found) {
            return 0;
        }
        messages->label = found->label;
        if (label != nullptr) {
            *label = messages->label.c_str();
        }
        if (!found->problem.empty()) {
            return handle->fail(ASN1S_BAD_VALUE, found->offset, "a message", found->problem);
        }
        Octets octets = found->octets;
        if (messages->reader.form() == asn1text::InputForm::Json) {
            asn1text::JsonMessage told = encodeText(*handle, octets);
            if (!told.problem.empty()) {
                return handle->fail(ASN1S_BAD_VALUE, 0, "an object of derview", told.problem);
            }
            octets = messages->encoded.emplace_back(std::move(told.octets));
        }
        *message = octets.data();
        *size = octets.size();
        return found->trailing == 0
                   ? 0
                   : handle->fail(ASN1S_EXTRA_ELEMENT, found->offset + found->octets.size(),
                                  "the end of the input, or another message",
                                  std::to_string(found->trailing) + " octets");
    });
}

void basn1_messages_close(basn1_messages* messages) {
    delete messages;
}

const char* basn1_failure_text(const basn1_handle* handle, int part) {
    if (handle == nullptr) {
        return nullptr;
    }
    switch (part) {
    case BASN1_FAILURE_PATH:
        return handle->path.c_str();
    case BASN1_FAILURE_EXPECTED:
        return handle->expected.c_str();
    case BASN1_FAILURE_FOUND:
        return handle->found.c_str();
    case BASN1_FAILURE_WHOLE:
        // Without memory there is no text but this one.
        return handle->whole.empty() && handle->status != 0 ? basn1_status_name(handle->status)
                                                            : handle->whole.c_str();
    default:
        return nullptr;
    }
}

size_t basn1_failure_offset(const basn1_handle* handle) {
    return handle != nullptr ? handle->offset : 0;
}

void basn1_free(void* octets) {
    ::operator delete(octets);
}
