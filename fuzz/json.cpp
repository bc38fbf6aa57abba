#include <cstring>
#include <memory>

#include <nlohmann/json.hpp>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/reading_policy.h>
#include <brevantis/asn1/runtime.h>
#include <brevantis/asn1/text/json_reader.h>
#include <brevantis/asn1/text/json_writer.h>

#include "entry.h"

// JSON both ways: the first octet chooses the direction, the next ones the type. A message is
// written as far as it can be read, and comes back octet for octet where it has to; a text is read,
// and what it comes to has a JSON that comes to the same.

namespace {

using asn1data::TypeDescription;
using asn1text::OctetStore;

/// Whether decoding and encoding leave a message as it is.
bool comesBack(const TypeDescription& type, const OctetStore& message) {
    ASN1BERDecodeBuffer input;
    ASN1CTXT* const ctxt = input.getCtxtPtr();
    void* const value = asn1data::family::newRecord(ctxt, type);
    if (value == nullptr ||
        xd_setp(ctxt, message.data(), static_cast<int>(message.size()), nullptr, nullptr) != 0 ||
        asn1data::family::decode(ctxt, type, value, ASN1TagExplicit, 0) != 0) {
        return false;
    }
    ASN1BEREncodeBuffer output;
    const int size = asn1data::family::encode(output.getCtxtPtr(), type, value, ASN1TagExplicit);
    return size == static_cast<int>(message.size()) &&
           std::memcmp(output.getMsgPtr(), message.data(), message.size()) == 0;
}

std::string jsonOf(const TypeDescription& type, const OctetStore& message) {
    asn1text::TextSink sink;
    asn1text::writeJson(type, message, sink, asn1text::JsonLayout::OneLine);
    return sink.whole;
}

bool isDer(const TypeDescription& type, const OctetStore& message) {
    asn1data::WalkVisitor nothing;
    const asn1data::WalkResult result =
        asn1data::walk(type, message.data(), message.size(), nothing, {ASN1F_DER | ASN1F_EXACT});
    return result.status == 0 && result.consumed == message.size();
}

void write(const TypeDescription& type, const OctetStore& message) {
    const std::string json = jsonOf(type, message);
    if (!nlohmann::json::accept(json)) {
        fuzz::report("what is written is no JSON");
    }
    if (!isDer(type, message) || !comesBack(type, message)) {
        return;
    }
    OctetStore back;
    asn1text::JsonFailure failure;
    if (!asn1text::encodeJson(type, json, back, failure)) {
        fuzz::report("JSON of DER is refused");
    }
    if (back != message) {
        fuzz::report("DER comes back otherwise from JSON");
    }
}

void read(const TypeDescription& type, const std::string& text) {
    // In a block of its size, so that an octet read too far is seen.
    const std::unique_ptr<char[]> given(new char[text.size()]);
    std::copy(text.begin(), text.end(), given.get());
    OctetStore der;
    asn1text::JsonFailure failure;
    if (!asn1text::encodeJson(type, {given.get(), text.size()}, der, failure)) {
        if (failure.status == 0 || failure.expected.empty() || failure.offset > text.size() ||
            asn1text::failureText(failure).empty()) {
            fuzz::report("a failure that tells nothing");
        }
        return;
    }
    write(type, der);
}

} // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    fuzz::Input input(data, size);
    const bool reads = (input.octet() & 1u) != 0;
    const TypeDescription& type = asn1data::allTypes()[input.below(asn1data::allTypes().size())];
    if (reads) {
        read(type, input.text());
    } else {
        write(type, input.rest());
    }
    return 0;
}
