#include <brevantis/asn1/text/json_reader.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include <brevantis/asn1/asn1data/builder.h>
#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/value_visit.h>
#include <brevantis/asn1/runtime.h>
#include <brevantis/asn1/text/value.h>

#include "encode_buffer.h"
#include "primitive_reader.h"
#include "sentences.h"
#include "token_place.h"

namespace asn1text {

using asn1data::Builder;
using asn1data::ElementDescription;
using asn1data::ObjectDescription;
using asn1data::OpenValue;
using asn1data::Presence;
using asn1data::ShapeKind;
using asn1data::TypeDescription;

namespace {

enum class FrameKind : unsigned char {
    Root,     ///< the outermost object, until its first key tells what it is
    Envelope, ///< an object of derview
    Record,
    Choice,
    List,
    Open,    ///< an open value, by the name of its object
    Fields,  ///< a primitive as an object
    Names,   ///< of bits
    Skipped, ///< what is of no matter here
};

/// What is expected of a text, whatever it holds.
constexpr const char* JsonText = "JSON (RFC 8259)";

/// An object or array that is open.
struct Frame {
    FrameKind kind;
    Target target;
    std::string key = {};                      ///< the last one
    std::size_t count = 0;                     ///< List: elements so far
    unsigned additions = 0;                    ///< Record: unknown elements so far
    std::vector<bool> seen = {};               ///< Record: elements by their index
    const ObjectDescription* object = nullptr; ///< Record, Open: that the value was bound to
    std::optional<long long> trailing = {};    ///< Open: octets behind the value, as told
    std::optional<OctetStore> behind = {};     ///< Open: these octets
};

/// Fills a record from what the parser tells, in one pass.
class Reader final : private Refusals {
public:
    using number_integer_t = nlohmann::json::number_integer_t;
    using number_unsigned_t = nlohmann::json::number_unsigned_t;
    using number_float_t = nlohmann::json::number_float_t;
    using string_t = nlohmann::json::string_t;
    using binary_t = nlohmann::json::binary_t;

    Reader(ASN1CTXT* ctxt, const TypeDescription& type, std::string_view text, JsonFailure& failure,
           const JsonLimits& limits, const IdentifierNames& names)
        : builder_(ctxt), primitives_(builder_, *this, names), tokens_(text), failure_(failure),
          limits_(limits), rootPlace_(text) {
        root_.type = &type;
    }

    void* run();

    // What the parser calls.

    bool null() { return value({Token::Kind::Null}); }
    bool boolean(bool truth) { return value({Token::Kind::Boolean, truth}); }
    bool number_integer(number_integer_t number) {
        const auto magnitude = static_cast<std::uint64_t>(number);
        return value({Token::Kind::Number, false,
                      integerOf(number < 0, number < 0 ? ~magnitude + 1 : magnitude)});
    }
    bool number_unsigned(number_unsigned_t number) {
        return value({Token::Kind::Number, false, integerOf(false, number)});
    }
    bool number_float(number_float_t /*number*/, const string_t& digits) {
        return value({Token::Kind::OtherNumber, false, {}, &digits});
    }
    bool string(const string_t& text) { return value({Token::Kind::Text, false, {}, &text}); }
    bool binary(const binary_t& /*octets*/) { return false; }
    bool start_object(std::size_t /*size*/);
    bool key(const string_t& name);
    bool end_object();
    bool start_array(std::size_t /*size*/);
    bool end_array();
    bool parse_error(std::size_t position, const std::string& token,
                     const nlohmann::json::exception& error);

private:
    bool fail(std::string expected, std::string found = {}, int status = ASN1S_BAD_VALUE) override;

    std::string path() const;

    /// The value that comes next.
    bool takeTarget(const Token& token, Target& target);
    bool value(const Token& token);
    bool open(FrameKind kind, const Target& target);
    bool beginRoot(const std::string& key);
    bool openObject(const Target& target, const Token& token);

    bool keyOfEnvelope(const std::string& name);
    bool keyOfRecord(Frame& frame, const std::string& name);
    bool keyOfChoice(Frame& frame, const std::string& name);
    bool keyOfOpen(Frame& frame, const std::string& name);

    bool endRecord(Frame& frame);
    bool endOpen(Frame& frame);

    bool envelopeValue(const Token& token);
    bool openValue(Frame& frame, const Token& token);

    bool agrees(const Frame& record, const ObjectDescription& object) const;
    Frame& recordOf(const Target& target);

    Builder builder_;
    PrimitiveReader primitives_;
    TokenPlace tokens_;
    JsonFailure& failure_;
    JsonLimits limits_;
    std::vector<Frame> frames_;
    Target root_;
    TokenPlace rootPlace_;  ///< where the outermost object begins
    Target next_;           ///< for the value of the key that was read last
    bool hasType_ = false;  ///< the envelope had a type
    bool hasValue_ = false; ///< and a value
};

bool Reader::fail(std::string expected, std::string found, int status) {
    failure_.status = status;
    failure_.path = path();
    failure_.expected = std::move(expected);
    failure_.found = std::move(found);
    tokens_.locate(failure_);
    return false;
}

std::string Reader::path() const {
    std::string path;
    for (const Frame& frame : frames_) {
        switch (frame.kind) {
        case FrameKind::Record:
        case FrameKind::Choice:
        case FrameKind::Open:
            if (!frame.key.empty()) {
                path += (path.empty() ? "" : ".") + frame.key;
            }
            break;
        case FrameKind::List:
            if (frame.count != 0) {
                path += "[" + std::to_string(frame.count - 1) + "]";
            }
            break;
        default:
            break;
        }
    }
    return path;
}

bool Reader::parse_error(std::size_t /*position*/, const std::string& /*token*/,
                         const nlohmann::json::exception& /*error*/) {
    tokens_.next();
    const std::string_view token = tokens_.token();
    const bool open =
        !token.empty() && token.front() == '"' && (token.size() == 1 || token.back() != '"');
    return fail(JsonText, token.empty() || open ? "the end of the text" : inQuotes(token));
}

bool Reader::takeTarget(const Token& token, Target& target) {
    if (frames_.empty()) {
        target = root_;
        return true;
    }
    Frame& frame = frames_.back();
    if (frame.kind != FrameKind::List) {
        target = next_;
        return true;
    }
    ++frame.count;
    target = {};
    target.type = frame.target.type->element;
    target.record = frame.target.record;
    target.recordValue = frame.target.recordValue;
    target.value = builder_.append(*frame.target.type, frame.target.value);
    if (target.value != nullptr) {
        return true;
    }
    const bool full = frame.target.type->shape == asn1data::Shape::FixedArray &&
                      frame.count > frame.target.type->capacity;
    return full ? fail("at most " + std::to_string(frame.target.type->capacity) + " elements",
                       foundText(token), ASN1S_CONSTRAINT_VIOLATION)
                : failOnMemory();
}

bool Reader::open(FrameKind kind, const Target& target) {
    if (frames_.size() >= limits_.depth) {
        return fail("at most " + std::to_string(limits_.depth) +
                        " objects and arrays in each other",
                    "one more");
    }
    frames_.push_back({kind, target});
    if (kind == FrameKind::Record) {
        frames_.back().seen.resize(target.type->elementCount);
    } else if (kind == FrameKind::Fields) {
        primitives_.beginFields();
    }
    return true;
}

bool Reader::value(const Token& token) {
    tokens_.next();
    if (!frames_.empty()) {
        switch (frames_.back().kind) {
        case FrameKind::Envelope:
            if (next_.type == nullptr) {
                return envelopeValue(token);
            }
            break;
        case FrameKind::Open:
            if (next_.type == nullptr) {
                return openValue(frames_.back(), token);
            }
            break;
        case FrameKind::Fields:
            return primitives_.fieldValue(token);
        case FrameKind::Names:
            return primitives_.addName(frames_.back().target, token);
        case FrameKind::Skipped:
            return true;
        default:
            break;
        }
    }
    Target target;
    return takeTarget(token, target) && primitives_.set(target, token);
}

bool Reader::start_object(std::size_t /*size*/) {
    tokens_.next();
    const Token token{Token::Kind::Object};
    if (frames_.empty()) {
        rootPlace_ = tokens_;
        return open(FrameKind::Root, root_);
    }
    const FrameKind around = frames_.back().kind;
    if (around == FrameKind::Skipped || (around == FrameKind::Envelope && next_.type == nullptr)) {
        return open(FrameKind::Skipped, {});
    }
    if (around == FrameKind::Fields) {
        return primitives_.fieldValue(token);
    }
    if (around == FrameKind::Names) {
        return primitives_.addName(frames_.back().target, token);
    }
    if (around == FrameKind::Open && next_.type == nullptr) {
        return openValue(frames_.back(), token);
    }
    Target target;
    return takeTarget(token, target) && openObject(target, token);
}

bool Reader::openObject(const Target& target, const Token& token) {
    switch (asn1data::kindOf(target.type->shape)) {
    case ShapeKind::Record:
        return open(FrameKind::Record, target);
    case ShapeKind::Choice:
        return open(FrameKind::Choice, target);
    case ShapeKind::Repeated:
        return failWith(target, token);
    default:
        break;
    }
    if (target.record != nullptr) {
        return open(FrameKind::Open, target);
    }
    return fieldNames(*target.type).empty() ? failWith(target, token)
                                            : open(FrameKind::Fields, target);
}

bool Reader::start_array(std::size_t /*size*/) {
    tokens_.next();
    const Token token{Token::Kind::Array};
    if (!frames_.empty()) {
        Frame& frame = frames_.back();
        if (frame.kind == FrameKind::Skipped ||
            (frame.kind == FrameKind::Envelope && next_.type == nullptr)) {
            return open(FrameKind::Skipped, {});
        }
        if (frame.kind == FrameKind::Fields) {
            if (!primitives_.wantsNames()) {
                return primitives_.fieldValue(token);
            }
            primitives_.beginNames();
            return open(FrameKind::Names, frame.target);
        }
        if (frame.kind == FrameKind::Names) {
            return primitives_.addName(frames_.back().target, token);
        }
        if (frame.kind == FrameKind::Open && next_.type == nullptr) {
            return openValue(frame, token);
        }
    }
    Target target;
    if (!takeTarget(token, target)) {
        return false;
    }
    if (asn1data::kindOf(target.type->shape) == ShapeKind::Repeated) {
        return open(FrameKind::List, target);
    }
    if (valueKind(*target.type) == ValueKind::Bits && target.type->nameCount != 0) {
        // The names alone.
        primitives_.beginFields();
        primitives_.beginNames();
        return open(FrameKind::Names, target);
    }
    return failWith(target, token);
}

bool Reader::end_array() {
    tokens_.next();
    const Frame frame = std::move(frames_.back());
    frames_.pop_back();
    if (frame.kind == FrameKind::List) {
        return primitives_.finish(frame.target, "an array of " + std::to_string(frame.count));
    }
    const bool alone = frames_.empty() || frames_.back().kind != FrameKind::Fields;
    return frame.kind != FrameKind::Names || !alone || primitives_.setBits(frame.target);
}

bool Reader::beginRoot(const std::string& key) {
    frames_.pop_back();
    if (key == "file") {
        return open(FrameKind::Envelope, {});
    }
    // Where none is wanted, the place to tell is that of the object.
    const TokenPlace place = std::exchange(tokens_, rootPlace_);
    const bool good = openObject(root_, {Token::Kind::Object});
    tokens_ = place;
    return good;
}

bool Reader::key(const string_t& name) {
    tokens_.next();
    if (frames_.back().kind == FrameKind::Root && !beginRoot(name)) {
        return false;
    }
    Frame& frame = frames_.back();
    next_ = {};
    switch (frame.kind) {
    case FrameKind::Envelope:
        return keyOfEnvelope(name);
    case FrameKind::Record:
        return keyOfRecord(frame, name);
    case FrameKind::Choice:
        return keyOfChoice(frame, name);
    case FrameKind::Open:
        return keyOfOpen(frame, name);
    case FrameKind::Fields:
        return primitives_.field(*frame.target.type, name);
    default:
        return true;
    }
}

bool Reader::keyOfEnvelope(const std::string& name) {
    frames_.back().key = name;
    if (name == "error" || name == "missing" || name == "trailing") {
        return fail("a message that decodes and is whole", "the key " + inQuotes(name));
    }
    if (name == "path") {
        return fail("a whole message", "one element of it");
    }
    const bool isValue = name == "value";
    if (isValue || name == "type") {
        bool& has = isValue ? hasValue_ : hasType_;
        if (has) {
            return failTwice(name);
        }
        has = true;
    }
    next_ = isValue ? root_ : Target();
    return true;
}

bool Reader::envelopeValue(const Token& token) {
    if (frames_.back().key != "type") {
        return true;
    }
    const auto isCalled = [&token](const TypeDescription* type) {
        return type != nullptr && *token.text == type->name;
    };
    const bool isText = token.kind == Token::Kind::Text;
    const TypeDescription* const told = isText ? asn1data::findType(token.text->c_str()) : nullptr;
    const bool same = isText && (isCalled(root_.type) || isCalled(root_.type->aliasOf) ||
                                 (told != nullptr && told->aliasOf == root_.type));
    return same || fail("the type " + std::string(root_.type->name), foundText(token));
}

bool Reader::keyOfRecord(Frame& frame, const std::string& name) {
    const TypeDescription& type = *frame.target.type;
    for (unsigned i = 0; i < type.elementCount; ++i) {
        const ElementDescription& element = type.elements[i];
        if (name != element.name) {
            continue;
        }
        if (frame.seen[i]) {
            frame.key.clear();
            return failTwice(name);
        }
        frame.seen[i] = true;
        frame.key = name;
        next_.type = element.type;
        next_.value = Builder::element(type, frame.target.value, i);
        next_.constraint = &element.constraint;
        if (type.table != nullptr && element.offset == type.table->valueOffset) {
            next_.record = &type;
            next_.recordValue = frame.target.value;
        }
        return true;
    }
    if (type.extensionOffset != asn1data::NoOffset) {
        const std::string next = "addition[" + std::to_string(frame.additions) + "]";
        if (name == next) {
            ++frame.additions;
            frame.key = name;
            next_.type = &asn1data::builtin::openType;
            next_.value = builder_.appendAddition(type, frame.target.value);
            return next_.value != nullptr || failOnMemory();
        }
        if (name.compare(0, 9, "addition[") == 0) {
            frame.key.clear();
            return fail("the key " + next, "the key " + inQuotes(name));
        }
    }
    frame.key.clear();
    return fail(type.elementCount != 0 ? "one of " + elementNames(type) : "no key",
                "the key " + inQuotes(name));
}

bool Reader::keyOfChoice(Frame& frame, const std::string& name) {
    const TypeDescription& type = *frame.target.type;
    if (!frame.key.empty()) {
        frame.key.clear();
        return fail("one alternative", "the key " + inQuotes(name) + " behind it");
    }
    for (unsigned i = 0; i < type.elementCount; ++i) {
        const ElementDescription& element = type.elements[i];
        if (name == element.name) {
            frame.key = name;
            next_.type = element.type;
            next_.value = builder_.select(type, frame.target.value, i);
            next_.constraint = &element.constraint;
            return next_.value != nullptr || failOnMemory();
        }
    }
    return fail("one of " + elementNames(type), "the key " + inQuotes(name));
}

Frame& Reader::recordOf(const Target& target) {
    const auto found = std::find_if(frames_.rbegin(), frames_.rend(), [&](const Frame& frame) {
        return frame.kind == FrameKind::Record && frame.target.value == target.recordValue &&
               frame.target.type == target.record;
    });
    return *found;
}

bool Reader::agrees(const Frame& record, const ObjectDescription& object) const {
    const TypeDescription& type = *record.target.type;
    for (unsigned i = 0; i < type.elementCount; ++i) {
        if (type.elements[i].offset == type.table->identifierOffset && !record.seen[i]) {
            return true; // the identifier is still to come
        }
    }
    const void* const identifier =
        static_cast<const unsigned char*>(record.target.value) + type.table->identifierOffset;
    const ObjectDescription* const selected = asn1data::family::findObject(
        *type.table->objects, *static_cast<const ASN1TObjId*>(identifier));
    return selected != nullptr && selected->type == object.type;
}

bool Reader::keyOfOpen(Frame& frame, const std::string& name) {
    if (name == "hex" || name == "base64") {
        if (frame.object != nullptr || frame.trailing || frame.behind) {
            const std::string other = std::exchange(frame.key, {});
            return fail("either octets or a value",
                        "the key " + inQuotes(name) + " behind " + inQuotes(other));
        }
        frame.kind = FrameKind::Fields;
        primitives_.beginFields();
        return primitives_.field(*frame.target.type, name);
    }
    frame.key = name;
    const TypeDescription& record = *frame.target.record;
    if (name == "trailing" || name == "trailingHex") {
        if (record.table->value != OpenValue::OctetString) {
            frame.key.clear();
            return fail("nothing behind a value that stands in no OCTET STRING",
                        "the key " + inQuotes(name));
        }
        const bool twice =
            name == "trailing" ? frame.trailing.has_value() : frame.behind.has_value();
        if (twice) {
            frame.key.clear();
            return failTwice(name);
        }
        return true;
    }
    if (frame.object != nullptr) {
        frame.key.clear();
        return fail("one value", "the key " + inQuotes(name) + " behind it");
    }
    const asn1data::ObjectSetDescription& set = *record.table->objects;
    const auto* const end = set.objects + set.count;
    Frame& around = recordOf(frame.target);
    const ObjectDescription* named = nullptr;
    for (const auto* object = set.objects; object != end && frame.object == nullptr; ++object) {
        if (name == object->name && object->type != nullptr) {
            named = object;
            frame.object = agrees(around, *object) ? object : nullptr;
        }
    }
    if (named == nullptr) {
        frame.key.clear();
        return fail("the name of an object in " + std::string(set.name),
                    "the key " + inQuotes(name));
    }
    const bool other = around.object != nullptr && frame.object != nullptr &&
                       around.object->type != frame.object->type;
    if (frame.object == nullptr || other) {
        frame.key.clear();
        return fail("the value that the identifier selects", "the key " + inQuotes(name));
    }
    around.object = frame.object;
    auto* const slot = record.table->value == OpenValue::OpenTypes
                           ? static_cast<Asn1TObject*>(frame.target.value)
                           : Builder::slot(record, frame.target.recordValue);
    next_.type = frame.object->type;
    next_.value = builder_.bind(*frame.object, *slot);
    return next_.value != nullptr || failOnMemory();
}

bool Reader::openValue(Frame& frame, const Token& token) {
    if (frame.key == "trailing") {
        long long count = 0;
        if (token.kind != Token::Kind::Number ||
            !token.number.within(0, std::numeric_limits<int>::max(), count)) {
            return fail("a count of octets", foundText(token));
        }
        frame.trailing = count;
        return true;
    }
    frame.behind.emplace();
    return token.kind == Token::Kind::Text ? primitives_.readHexText(*token.text, *frame.behind)
                                           : fail("octets in hexadecimal digits", foundText(token));
}

bool Reader::end_object() {
    tokens_.next();
    if (frames_.back().kind == FrameKind::Root && !beginRoot({})) {
        return false;
    }
    Frame& frame = frames_.back();
    bool good = true;
    switch (frame.kind) {
    case FrameKind::Envelope:
        good = hasValue_ || fail("the key value", "the end of the object");
        break;
    case FrameKind::Record:
        frame.key.clear();
        good = endRecord(frame);
        break;
    case FrameKind::Choice:
        good = !frame.key.empty() ||
               fail("one of " + elementNames(*frame.target.type), "the end of the object");
        break;
    case FrameKind::Open:
        good = endOpen(frame);
        break;
    case FrameKind::Fields:
        good = primitives_.endFields(frame.target);
        break;
    default:
        break;
    }
    if (good) {
        frames_.pop_back();
    }
    return good;
}

bool Reader::endRecord(Frame& frame) {
    const TypeDescription& type = *frame.target.type;
    for (unsigned i = 0; i < type.elementCount; ++i) {
        if (type.elements[i].presence == Presence::Mandatory && !frame.seen[i]) {
            return fail("the key " + std::string(type.elements[i].name), "the end of the object",
                        ASN1S_MISSING_ELEMENT);
        }
    }
    return frame.object == nullptr || agrees(frame, *frame.object) ||
           fail("an identifier that selects " + std::string(frame.object->name),
                "the end of the object");
}

bool Reader::endOpen(Frame& frame) {
    frame.key.clear();
    if (frame.object == nullptr) {
        return fail(wantedText(frame.target), "the end of the object");
    }
    if (!frame.trailing && !frame.behind) {
        return true;
    }
    if (!frame.behind) {
        return fail("the key trailingHex", "the end of the object");
    }
    if (frame.trailing && static_cast<std::size_t>(*frame.trailing) != frame.behind->size()) {
        return fail("as many octets in trailingHex as trailing tells",
                    std::to_string(frame.behind->size()));
    }
    // The octets stand for themselves: what is behind the value is no part of it.
    Asn1TObject& slot = *Builder::slot(*frame.target.record, frame.target.recordValue);
    EncodeBuffer buffer;
    if (const int status = buffer.encode(*frame.object->type, slot.decoded); status != 0) {
        return primitives_.check(status);
    }
    OctetStore octets(buffer.octets().begin(), buffer.octets().end());
    octets.insert(octets.end(), frame.behind->begin(), frame.behind->end());
    slot.decoded = nullptr;
    recordOf(frame.target).object = nullptr;
    return primitives_.setOctets(frame.target, octets, 0, "octets");
}

void* Reader::run() {
    const std::string_view text = tokens_.text();
    failure_ = {};
    if (text.size() > limits_.textSize) {
        fail("a text of at most " + std::to_string(limits_.textSize) + " octets",
             std::to_string(text.size()), ASN1S_STRING_OVERFLOW);
        return nullptr;
    }
    root_.value = builder_.create(*root_.type);
    if (root_.value == nullptr) {
        failOnMemory();
        return nullptr;
    }
    if (!nlohmann::json::sax_parse(text.begin(), text.end(), this)) {
        return nullptr;
    }
    // The parser takes U+0000 for the end of the text.
    tokens_.next();
    const bool whole = tokens_.token().empty();
    return whole || fail(JsonText, inQuotes(tokens_.token())) ? root_.value : nullptr;
}

} // namespace

std::string failureText(const JsonFailure& failure) {
    return (failure.path.empty() ? "" : failure.path + " ") + "at line " +
           std::to_string(failure.line) + ", column " + std::to_string(failure.column) +
           ": expected " + failure.expected +
           (failure.found.empty() ? "" : ", found " + failure.found);
}

void* readJson(ASN1CTXT* ctxt, const TypeDescription& type, std::string_view json,
               JsonFailure& failure, const JsonLimits& limits, const IdentifierNames& names) {
    return Reader(ctxt, type, json, failure, limits, names).run();
}

bool encodeJson(const TypeDescription& type, std::string_view json, OctetStore& der,
                JsonFailure& failure, const JsonLimits& limits, const IdentifierNames& names) {
    der.clear();
    EncodeBuffer buffer;
    void* const value = readJson(buffer.context(), type, json, failure, limits, names);
    if (value == nullptr) {
        return false;
    }
    if (const int status = buffer.encode(type, value); status != 0) {
        failure.status = status;
        failure.expected = "a value that can be encoded";
        failure.found = rtStatusName(status);
        return false;
    }
    der.assign(buffer.octets().begin(), buffer.octets().end());
    return true;
}

} // namespace asn1text
