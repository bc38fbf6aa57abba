#include "json_format.h"

#include <limits>

#include <brevantis/asn1/runtime/status.h>

#include "failure_text.h"
#include "identifier_text.h"
#include "number_text.h"
#include "string_text.h"
#include "time_text.h"
#include "value_kind.h"
#include "value_octets.h"

namespace derview {

using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

/// The largest number that every reader of JSON takes exactly (RFC 8259, 6).
constexpr long long LargestExact = (1LL << 53) - 1;
constexpr std::size_t Endless = std::numeric_limits<std::size_t>::max();

/// A text from the command line as valid UTF-8.
std::string givenText(const std::string& text) {
    const void* const start = text.data();
    return toUtf8({static_cast<const unsigned char*>(start), text.size()}, CharacterCoding::Utf8);
}

void writeNumber(JsonStream& json, const WalkElement& element) {
    const long long number = element.value.number;
    if (element.type->nameCount == 0) {
        json.number(number);
        return;
    }
    json.beginObject();
    json.key("number");
    json.number(number);
    json.key("name");
    json.stringOrNull(asn1data::numberName(*element.type, number));
    json.end();
}

void writeBigNumber(JsonStream& json, const WalkElement& element) {
    OctetStore store;
    const Magnitude magnitude = magnitudeOf(valueOctets(element, Endless, store),
                                            element.type->shape == asn1data::Shape::BigUnsigned);
    if (const auto number = magnitude.within(LargestExact)) {
        json.number(*number);
    } else {
        json.string((magnitude.negative ? "-0x" : "0x") + hexText(magnitude.octets));
    }
}

void writeIdentifier(JsonStream& json, const ASN1OBJID& identifier) {
    json.beginObject();
    json.key("oid");
    json.string(dottedText(identifier));
    json.key("name");
    json.stringOrNull(asn1data::identifierName(identifier));
    json.end();
}

void writeBits(JsonStream& json, const WalkElement& element) {
    OctetStore store;
    const Octets octets = valueOctets(element, Endless, store);
    json.beginObject();
    json.key("bits");
    json.number(element.value.bitCount);
    json.key("hex");
    json.hex(octets);
    if (element.type->nameCount != 0) {
        json.key("names");
        json.beginArray();
        for (const std::string& name :
             bitNames(*element.type, octets, element.value.bitCount, Endless)) {
            json.string(name);
        }
        json.end();
    }
    json.end();
}

} // namespace

void JsonFormat::begin(const View& view) {
    view_ = &view;
    labels_ = {};
    ends_ = {};
    hidesOctets_ = false;
    depths_.clear();
    wrote_ = false;
    const Message& message = view.message;
    json_.beginObject();
    json_.key("file");
    json_.string(givenText(message.file));
    json_.key("message");
    json_.number(static_cast<long long>(message.number));
    if (!message.label.empty()) {
        json_.key("label");
        json_.string(message.label);
    }
    json_.key("type");
    json_.string(view.type().name);
    json_.key("recognised");
    json_.string(view.recognition.reason);
    if (view.span != nullptr) {
        json_.key("path");
        json_.string(givenText(*view.path));
        json_.key("offset");
        json_.number(view.span->offset);
    }
    json_.key("size");
    json_.number(static_cast<long long>(view.size()));
    json_.key("value");
}

void JsonFormat::endValue() {
    if (!wrote_) {
        json_.literal("null");
        wrote_ = true;
    }
    json_.endTo(1);
}

void JsonFormat::writeError(const asn1data::WalkFailure& failure) {
    json_.key("error");
    json_.beginObject();
    json_.key("status");
    json_.number(failure.status);
    json_.key("name");
    json_.string(rtStatusName(failure.status));
    json_.key("offset");
    json_.number(failure.offset);
    json_.key("path");
    json_.string(failure.path);
    json_.key("expected");
    json_.string(expectedText(failure));
    json_.key("found");
    json_.string(foundText(failure));
    json_.end();
}

void JsonFormat::missing(const asn1data::WalkResult& /*walked*/) {
    endValue();
    if (view_->cut->status != 0) {
        writeError(view_->cut->failure);
    }
    json_.key("missing");
    json_.number(static_cast<long long>(view_->message.missing()));
}

void JsonFormat::error(const asn1data::WalkFailure& failure) {
    endValue();
    writeError(failure);
}

void JsonFormat::trailing(const Leftover& left) {
    endValue();
    json_.key("trailing");
    json_.number(static_cast<long long>(left.count));
}

bool JsonFormat::end() {
    endValue();
    json_.end();
    json_.finish();
    return !hidesOctets_;
}

void JsonFormat::beginElement(const WalkElement& element) {
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

WalkAction JsonFormat::enter(const WalkElement& element) {
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

WalkAction JsonFormat::leave(const WalkElement& element) {
    const ContentsEnd::Gap gap = ends_.leave(element);
    if (gap.hidden != 0) {
        hidesOctets_ = true;
        json_.key("trailing");
        json_.number(gap.octets);
    }
    labels_.leave();
    json_.endTo(depths_.back());
    depths_.pop_back();
    return WalkAction::Continue;
}

WalkAction JsonFormat::primitive(const WalkElement& element) {
    ends_.primitive(element);
    const std::size_t depth = json_.depth();
    beginElement(element);
    writeValue(element);
    json_.endTo(depth);
    return WalkAction::Continue;
}

void JsonFormat::writeValue(const WalkElement& element) {
    OctetStore store;
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
        writeIdentifier(json_, *element.value.identifier);
        break;
    case ValueKind::Time:
        if (const auto iso = isoTime(element)) {
            json_.string(*iso);
            break;
        }
        [[fallthrough]];
    case ValueKind::Text:
        json_.string(toUtf8(valueOctets(element, Endless, store), codingOf(element)));
        break;
    case ValueKind::Bits:
        writeBits(json_, element);
        break;
    case ValueKind::OctetString:
    case ValueKind::Raw:
        json_.hex(valueOctets(element, Endless, store));
        break;
    }
}

} // namespace derview
