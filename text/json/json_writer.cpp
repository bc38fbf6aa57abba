#include <brevantis/asn1/text/json_writer.h>

#include <brevantis/asn1/text/value.h>

#include "encode_buffer.h"

namespace asn1text {

using asn1data::TypeDescription;
using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

/// The largest number that every reader of JSON takes exactly (RFC 8259, 6).
constexpr long long LargestExact = (1LL << 53) - 1;

/// The stream at the value of a key.
JsonStream& at(JsonStream& json, const char* key) {
    json.key(key);
    return json;
}

void writeHex(JsonStream& json, const WalkElement& element) {
    json.openString();
    forEachPiece(element, [&](Octets piece) {
        json.hexDigits(piece);
        return true;
    });
    json.closeString();
}

/// Octets where the type has another form for what it holds.
void writeHexObject(JsonStream& json, const WalkElement& element) {
    json.beginObject();
    writeHex(at(json, "hex"), element);
    json.end();
}

void writeNumber(JsonStream& json, const WalkElement& element) {
    const long long number = element.value.number;
    if (element.type->nameCount == 0) {
        json.number(number);
        return;
    }
    json.beginObject();
    at(json, "number").number(number);
    at(json, "name").stringOrNull(asn1data::numberName(*element.type, number));
    json.end();
}

void writeDigits(JsonStream& json, const Magnitude& magnitude) {
    if (const auto number = magnitude.within(LargestExact)) {
        json.number(*number);
        return;
    }
    json.openString();
    for (const char sign : std::string_view(magnitude.negative() ? "-0x" : "0x")) {
        json.character(static_cast<unsigned char>(sign));
    }
    unsigned char piece[256];
    for (std::size_t place = 0; place < magnitude.size();) {
        std::size_t count = 0;
        while (count < sizeof piece && place < magnitude.size()) {
            piece[count++] = magnitude[place++];
        }
        json.hexDigits({piece, count});
    }
    json.closeString();
}

void writeBigNumber(JsonStream& json, const WalkElement& element) {
    const Octets contents(element.value.octets, element.value.octetCount);
    const bool isUnsigned = element.type->shape == asn1data::Shape::BigUnsigned;
    if (isUnsigned && !contents.empty() && (contents[0] & 0x80u) != 0) {
        // A magnitude without the octet that makes it positive has another form with it.
        writeHexObject(json, element);
        return;
    }
    const Magnitude magnitude(contents, isUnsigned);
    if (element.type->nameCount == 0) {
        writeDigits(json, magnitude);
        return;
    }
    const auto number = magnitude.within(LargestExact);
    json.beginObject();
    writeDigits(at(json, "number"), magnitude);
    at(json, "name").stringOrNull(number ? asn1data::numberName(*element.type, *number) : nullptr);
    json.end();
}

void writeIdentifier(JsonStream& json, const ASN1OBJID& identifier, const IdentifierNames& names) {
    json.beginObject();
    at(json, "oid").string(dottedText(identifier));
    at(json, "name").stringOrNull(names.nameOf(identifier));
    json.end();
}

void writeBits(JsonStream& json, const WalkElement& element) {
    json.beginObject();
    at(json, "bits").number(element.value.bitCount);
    writeHex(at(json, "hex"), element);
    if (element.type->nameCount != 0) {
        at(json, "names").beginArray();
        forEachSetBit(element, [&](std::size_t bit) { json.string(bitName(*element.type, bit)); });
        json.end();
    }
    json.end();
}

void writeText(JsonStream& json, const WalkElement& element) {
    // What is no text to its end is not written as one, so it is gone through first.
    if (!forEachCharacter(element, [](std::uint32_t) {})) {
        writeHexObject(json, element);
        return;
    }
    json.openString();
    forEachCharacter(element, [&](std::uint32_t code) { json.character(code); });
    json.closeString();
}

} // namespace

void JsonWriter::end() {
    if (!wrote_) {
        json_.literal("null");
        wrote_ = true;
    }
    json_.endTo(depth_);
}

void JsonWriter::beginElement(const WalkElement& element) {
    wrote_ = true;
    const Label label = labels_.labelOf(element);
    // The outermost element is the value of a key that stands already.
    if (labels_.depth() != 0 && label.name.front() != '[') {
        json_.key(label.name);
    }
    for (const std::string& choice : label.choices) {
        json_.beginObject();
        json_.key(choice);
    }
}

WalkAction JsonWriter::enter(const WalkElement& element) {
    ends_.enter(element);
    depths_.push_back(json_.depth());
    beginElement(element);
    if (isList(*element.type)) {
        json_.beginArray();
    } else {
        json_.beginObject();
    }
    labels_.enter(element);
    return WalkAction::Continue;
}

void JsonWriter::writeTrailing(const WalkElement& element, std::size_t count) {
    hasTrailing_ = true;
    json_.key("trailing");
    json_.number(static_cast<long long>(count));
    json_.key("trailingHex");
    json_.openString();
    std::size_t skipped = element.value.octetCount - count;
    forEachPiece(element, [&](Octets piece) {
        const std::size_t skip = std::min(skipped, piece.size());
        skipped -= skip;
        json_.hexDigits(piece.subspan(skip));
        return true;
    });
    json_.closeString();
}

WalkAction JsonWriter::leave(const WalkElement& element) {
    const asn1data::ContentsEnd::Gap gap = ends_.leave(element);
    if (gap.hidden != 0) {
        writeTrailing(element, gap.hidden);
    }
    labels_.leave();
    json_.endTo(depths_.back());
    depths_.pop_back();
    return WalkAction::Continue;
}

WalkAction JsonWriter::primitive(const WalkElement& element) {
    ends_.primitive(element);
    const std::size_t depth = json_.depth();
    beginElement(element);
    writeValue(element);
    json_.endTo(depth);
    return WalkAction::Continue;
}

void JsonWriter::writeValue(const WalkElement& element) {
    switch (valueKind(element)) {
    case ValueKind::Null:
        json_.literal("null");
        break;
    case ValueKind::Boolean:
        json_.literal(element.value.number != 0 ? "true" : "false");
        break;
    case ValueKind::Number:
        writeNumber(json_, element);
        break;
    case ValueKind::BigNumber:
        writeBigNumber(json_, element);
        break;
    case ValueKind::Identifier:
        writeIdentifier(json_, *element.value.identifier, names_);
        break;
    case ValueKind::Time:
        if (const auto iso = isoTime(element)) {
            json_.string(*iso);
        } else {
            writeHexObject(json_, element);
        }
        break;
    case ValueKind::Text:
        writeText(json_, element);
        break;
    case ValueKind::Bits:
        writeBits(json_, element);
        break;
    case ValueKind::OctetString:
    case ValueKind::Raw:
        writeHex(json_, element);
        break;
    }
}

asn1data::WalkResult writeJson(const TypeDescription& type, Octets message, Sink& sink,
                               JsonLayout layout, const asn1data::ReadingPolicy& policy,
                               const IdentifierNames& names) {
    JsonStream json(sink, layout);
    JsonWriter writer(json, names);
    const asn1data::WalkResult result =
        asn1data::walk(type, message.data(), message.size(), writer, policy);
    writer.end();
    json.finish();
    return result;
}

int writeJson(const TypeDescription& type, const void* value, Sink& sink, JsonLayout layout) {
    EncodeBuffer buffer;
    // The encoder takes what it does not change as if it could.
    if (const int status = buffer.encode(type, const_cast<void*>(value)); status != 0) {
        return status;
    }
    writeJson(type, buffer.octets(), sink, layout);
    return 0;
}

} // namespace asn1text
