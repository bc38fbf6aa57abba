#include <brevantis/asn1/text/json_reader.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

#include <nlohmann/json.hpp>

#include <brevantis/asn1/asn1data/builder.h>
#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/value_visit.h>
#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime.h>
#include <brevantis/asn1/text/message.h>
#include <brevantis/asn1/text/names.h>
#include <brevantis/asn1/text/pem.h>
#include <brevantis/asn1/text/value.h>

#include "encode_buffer.h"
#include "value_parser.h"

namespace asn1text {

using asn1data::Builder;
using asn1data::ElementDescription;
using asn1data::ObjectDescription;
using asn1data::OpenValue;
using asn1data::Presence;
using asn1data::ShapeKind;
using asn1data::TypeDescription;

namespace {

/// A value of the text that is neither an object nor an array, or the beginning of one.
struct Token {
    enum class Kind : unsigned char { Null, Boolean, Number, Text, Object, Array };

    Kind kind;
    bool truth = false;                ///< Boolean
    Integer number = {};               ///< Number
    const std::string* text = nullptr; ///< Text
};

/// A number for a sentence.
std::string numberText(const Integer& number) {
    long long value = 0;
    const bool small = number.within(std::numeric_limits<long long>::min(),
                                     std::numeric_limits<long long>::max(), value);
    return small ? std::to_string(value) : "a larger number";
}

std::string countText(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string foundText(const Token& token) {
    switch (token.kind) {
    case Token::Kind::Null:
        return "null";
    case Token::Kind::Boolean:
        return token.truth ? "true" : "false";
    case Token::Kind::Number:
        return "a number";
    case Token::Kind::Text:
        return inQuotes(*token.text);
    case Token::Kind::Object:
        return "an object";
    case Token::Kind::Array:
        break;
    }
    return "an array";
}

/// Where a value goes.
struct Target {
    const TypeDescription* type = nullptr;
    void* value = nullptr;
    const asn1data::Constraint* constraint = nullptr; ///< the element's, beyond its type's own
    const TypeDescription* record = nullptr; ///< whose open value it is, or list of these; or null
    void* recordValue = nullptr;
};

/// What was read of the object that stands for a primitive.
struct Fields {
    std::optional<Integer> number;
    bool hasName = false;
    std::optional<std::string> name; ///< none where it is null
    std::optional<ASN1OBJID> oid;
    std::optional<long long> bits;
    std::optional<OctetStore> octets;
    std::optional<std::vector<std::string>> names;
};

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

/// The positions of the text that have been read, while the parser goes through it.
class Place {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    Place(const char* at, const char** read) : at_(at), read_(read) {}

    reference operator*() const { return *at_; }
    Place& operator++() {
        *read_ = ++at_;
        return *this;
    }
    Place operator++(int) {
        const Place before = *this;
        ++*this;
        return before;
    }
    bool operator==(const Place& other) const { return at_ == other.at_; }
    bool operator!=(const Place& other) const { return at_ != other.at_; }

private:
    const char* at_;
    const char** read_;
};

/// Names of the elements of a type, for a sentence.
std::string elementNames(const TypeDescription& type) {
    constexpr unsigned most = 12;
    std::string names;
    for (unsigned i = 0; i < type.elementCount && i < most; ++i) {
        names += (i == 0 ? "" : ", ") + std::string(type.elements[i].name);
    }
    return names + (type.elementCount > most ? ", ..." : "");
}

std::string wantedText(const Target& target) {
    const TypeDescription& type = *target.type;
    if (target.record != nullptr && kindOf(type.shape) != ShapeKind::Repeated) {
        return "an object with the name and the value of what the identifier selects, or octets in "
               "hexadecimal digits";
    }
    switch (asn1data::kindOf(type.shape)) {
    case ShapeKind::Record:
        return "an object with " + elementNames(type);
    case ShapeKind::Choice:
        return "an object with one of " + elementNames(type);
    case ShapeKind::Repeated:
        return "an array";
    default:
        break;
    }
    switch (valueKind(type)) {
    case ValueKind::Null:
        return "null";
    case ValueKind::Boolean:
        return "true or false";
    case ValueKind::Number:
        return type.nameCount != 0 ? "a number or its name" : "a number";
    case ValueKind::BigNumber:
        return "a number, or digits in a string as \"12\" or \"-0x0c\"";
    case ValueKind::Identifier:
        return "an identifier as \"2.5.4.3\" or by its name";
    case ValueKind::Text:
        return "text";
    case ValueKind::Time:
        return "a time as 2026-11-21T14:57:02Z";
    case ValueKind::Bits:
        return "an object with bits and hex, or an array of names";
    case ValueKind::OctetString:
        return "octets in hexadecimal digits";
    case ValueKind::Raw:
        break;
    }
    return "a whole element in hexadecimal digits";
}

/// Keys of the object that stands for a primitive.
std::string fieldNames(const TypeDescription& type) {
    switch (valueKind(type)) {
    case ValueKind::Number:
        return "number, name";
    case ValueKind::Identifier:
        return "oid, name";
    case ValueKind::Bits:
        return "bits, hex, base64, names";
    case ValueKind::BigNumber:
    case ValueKind::Text:
    case ValueKind::Time:
    case ValueKind::OctetString:
    case ValueKind::Raw:
        return "hex, base64";
    case ValueKind::Null:
    case ValueKind::Boolean:
        break;
    }
    return "";
}

bool isOneOf(std::string_view word, std::string_view words) {
    while (!words.empty()) {
        const std::size_t end = words.find(", ");
        if (words.substr(0, end) == word) {
            return true;
        }
        words.remove_prefix(std::min(end != words.npos ? end + 2 : words.size(), words.size()));
    }
    return false;
}

/// The number that a type gives a name.
std::optional<long long> namedNumber(const TypeDescription& type, std::string_view name) {
    for (unsigned i = 0; i < type.nameCount; ++i) {
        if (name == type.names[i].name) {
            return type.names[i].number;
        }
    }
    return std::nullopt;
}

std::string numberNames(const TypeDescription& type) {
    constexpr unsigned most = 12;
    std::string names;
    for (unsigned i = 0; i < type.nameCount && i < most; ++i) {
        names += (i == 0 ? "" : ", ") + std::string(type.names[i].name);
    }
    return names + (type.nameCount > most ? ", ..." : "");
}

std::string rangeText(const TypeDescription& type, const asn1data::Constraint& constraint) {
    asn1data::WalkFailure failure{};
    failure.expectation = asn1data::Expectation::InRange;
    failure.type = &type;
    failure.constraint = constraint;
    std::string text(asn1data::writeExpected(failure, nullptr, 0), '\0');
    asn1data::writeExpected(failure, text.data(), text.size() + 1);
    return text;
}

/// Writes a number where a machine word holds it.
struct NumberSetter {
    long long number;

    template <asn1data::Shape S, class Value>
    void operator()(asn1data::Is<S>, Value&& value) const {
        if constexpr (asn1data::kindOf(S) == ShapeKind::Number) {
            value = static_cast<std::remove_reference_t<Value>>(number);
        }
    }
};

/// Fills a record from what the parser tells, in one pass.
class Reader {
public:
    using number_integer_t = nlohmann::json::number_integer_t;
    using number_unsigned_t = nlohmann::json::number_unsigned_t;
    using number_float_t = nlohmann::json::number_float_t;
    using string_t = nlohmann::json::string_t;
    using binary_t = nlohmann::json::binary_t;

    Reader(ASN1CTXT* ctxt, const TypeDescription& type, std::string_view text, JsonFailure& failure,
           const JsonLimits& limits)
        : builder_(ctxt), text_(text), read_(text.data()), failure_(failure), limits_(limits) {
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
    bool number_float(number_float_t /*number*/, const string_t& digits);
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
    bool fail(std::string expected, std::string found = {}, int status = ASN1S_BAD_VALUE);
    bool failWith(const Target& target, const Token& token) {
        return fail(wantedText(target), foundText(token));
    }
    bool failOnMemory() { return fail("memory for the value", {}, ASN1S_NO_MEMORY); }
    bool check(int status);
    /// Tests a value that is complete against the constraints on it.
    bool finish(const Target& target, const std::string& found);

    /// Notes where the token begins that was read last.
    void beginToken();
    std::string path() const;

    /// The value that comes next.
    bool takeTarget(const Token& token, Target& target);
    bool value(const Token& token);
    bool open(FrameKind kind, const Target& target);
    bool beginRoot(const std::string& key);

    bool keyOfEnvelope(const std::string& name);
    bool keyOfRecord(Frame& frame, const std::string& name);
    bool keyOfChoice(Frame& frame, const std::string& name);
    bool keyOfOpen(Frame& frame, const std::string& name);
    bool keyOfFields(Frame& frame, const std::string& name);
    bool refuseTwice(const std::string& name) {
        return fail("each key once", "the key " + inQuotes(name) + " again");
    }

    bool endRecord(Frame& frame);
    bool endOpen(Frame& frame);
    bool endFields(const Frame& frame);

    bool envelopeValue(const Token& token);
    bool openValue(Frame& frame, const Token& token);
    bool fieldValue(const Token& token);

    bool setPrimitive(const Target& target, const Token& token);
    bool setNumber(const Target& target, const Integer& number, const std::string& found);
    bool setText(const Target& target, const std::string& text);
    bool setTime(const Target& target, const std::string& text);
    bool setIdentifier(const Target& target, const std::string& text);
    bool setOctets(const Target& target, const OctetStore& octets, unsigned bitCount,
                   const std::string& found);
    bool setBits(const Target& target);
    bool readHexText(const std::string& text, OctetStore& octets);
    bool readName(const Target& target, const std::string& name, long long& number);
    bool agrees(const Frame& record, const ObjectDescription& object) const;
    Frame& recordOf(const Target& target);

    Builder builder_;
    std::string_view text_;
    const char* read_; ///< behind the octet of the text that was read last
    const char* token_ = nullptr;
    const char* tokenEnd_ = nullptr;
    JsonFailure& failure_;
    JsonLimits limits_;
    std::vector<Frame> frames_;
    Target root_;
    Target next_;           ///< for the value of the key that was read last
    Fields fields_;         ///< of the one frame of fields that can be open
    bool hasValue_ = false; ///< the envelope had a value
};

bool Reader::fail(std::string expected, std::string found, int status) {
    failure_.status = status;
    failure_.path = path();
    failure_.expected = std::move(expected);
    failure_.found = std::move(found);
    failure_.offset = static_cast<std::size_t>(token_ - text_.data());
    const std::string_view before = text_.substr(0, failure_.offset);
    failure_.line = 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    const std::size_t lineStart = before.rfind('\n');
    failure_.column = before.size() - (lineStart != std::string_view::npos ? lineStart + 1 : 0) + 1;
    return false;
}

bool Reader::check(int status) {
    if (status == ASN1S_SUCCESS) {
        return true;
    }
    return status == ASN1S_NO_MEMORY ? failOnMemory() : fail("a value that fits", {}, status);
}

bool Reader::finish(const Target& target, const std::string& found) {
    const asn1data::Constraint* const constraints[] = {&target.type->constraint, target.constraint};
    for (const asn1data::Constraint* const constraint : constraints) {
        if (constraint == nullptr) {
            continue;
        }
        const int status = builder_.check(*target.type, target.value, *constraint);
        if (status != ASN1S_SUCCESS) {
            return fail(rangeText(*target.type, *constraint), found, status);
        }
    }
    return true;
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

void Reader::beginToken() {
    // The parser may have looked at one octet behind the token before.
    const char* const end = text_.data() + text_.size();
    token_ = tokenEnd_ != nullptr ? tokenEnd_ : text_.data();
    if (tokenEnd_ == nullptr && text_.substr(0, 3) == "\xEF\xBB\xBF") {
        token_ += 3;
    }
    while (token_ != end && std::string_view(" \t\r\n,:").find(*token_) != std::string_view::npos) {
        ++token_;
    }
    tokenEnd_ = token_;
    // Strings end with a quote that no backslash stands in front of, everything else where it is
    // told; an octet that was read too early belongs to the next token.
    if (token_ == end) {
        return;
    }
    if (*token_ == '"') {
        ++tokenEnd_;
        while (tokenEnd_ < end && *tokenEnd_ != '"') {
            tokenEnd_ += *tokenEnd_ == '\\' && tokenEnd_ + 1 < end ? 2 : 1;
        }
        tokenEnd_ += tokenEnd_ < end ? 1 : 0;
        return;
    }
    if (std::string_view("{}[]").find(*token_) != std::string_view::npos) {
        ++tokenEnd_;
        return;
    }
    while (tokenEnd_ != end &&
           std::string_view(" \t\r\n,:{}[]\"").find(*tokenEnd_) == std::string_view::npos) {
        ++tokenEnd_;
    }
}

bool Reader::parse_error(std::size_t /*position*/, const std::string& /*token*/,
                         const nlohmann::json::exception& /*error*/) {
    beginToken();
    const std::string_view token(token_, static_cast<std::size_t>(tokenEnd_ - token_));
    const bool open =
        !token.empty() && token.front() == '"' && (token.size() == 1 || token.back() != '"');
    return fail("JSON (RFC 8259)", token.empty() || open ? "the end of the text" : inQuotes(token));
}

bool Reader::number_float(number_float_t /*number*/, const string_t& digits) {
    beginToken();
    const bool whole = digits.find_first_of(".eE") == std::string::npos;
    return whole ? fail("a string for a number beyond 64 bits", digits)
                 : fail("a number without fraction and exponent", digits);
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
        fields_ = {};
    }
    return true;
}

bool Reader::value(const Token& token) {
    beginToken();
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
            return fieldValue(token);
        case FrameKind::Names:
            if (token.kind != Token::Kind::Text) {
                return fail("the name of a bit", foundText(token));
            }
            fields_.names->push_back(*token.text);
            return true;
        case FrameKind::Skipped:
            return true;
        default:
            break;
        }
    }
    Target target;
    return takeTarget(token, target) && setPrimitive(target, token);
}

bool Reader::start_object(std::size_t /*size*/) {
    beginToken();
    const Token token{Token::Kind::Object};
    if (frames_.empty()) {
        return open(FrameKind::Root, root_);
    }
    const FrameKind around = frames_.back().kind;
    if (around == FrameKind::Skipped || (around == FrameKind::Envelope && next_.type == nullptr)) {
        return open(FrameKind::Skipped, {});
    }
    if (around == FrameKind::Fields) {
        return fieldValue(token);
    }
    if (around == FrameKind::Names) {
        return fail("the name of a bit", foundText(token));
    }
    if (around == FrameKind::Open && next_.type == nullptr) {
        return openValue(frames_.back(), token);
    }
    Target target;
    if (!takeTarget(token, target)) {
        return false;
    }
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
    beginToken();
    const Token token{Token::Kind::Array};
    if (!frames_.empty()) {
        Frame& frame = frames_.back();
        if (frame.kind == FrameKind::Skipped ||
            (frame.kind == FrameKind::Envelope && next_.type == nullptr)) {
            return open(FrameKind::Skipped, {});
        }
        if (frame.kind == FrameKind::Fields) {
            if (frame.key != "names") {
                return fieldValue(token);
            }
            fields_.names.emplace();
            return open(FrameKind::Names, frame.target);
        }
        if (frame.kind == FrameKind::Names) {
            return fail("the name of a bit", foundText(token));
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
        fields_ = {};
        fields_.names.emplace();
        return open(FrameKind::Names, target);
    }
    return failWith(target, token);
}

bool Reader::end_array() {
    beginToken();
    const Frame frame = std::move(frames_.back());
    frames_.pop_back();
    if (frame.kind == FrameKind::List) {
        return finish(frame.target, "an array of " + std::to_string(frame.count));
    }
    const bool alone = frames_.empty() || frames_.back().kind != FrameKind::Fields;
    return frame.kind != FrameKind::Names || !alone || setBits(frame.target);
}

bool Reader::beginRoot(const std::string& key) {
    frames_.pop_back();
    if (key == "file") {
        return open(FrameKind::Envelope, {});
    }
    switch (asn1data::kindOf(root_.type->shape)) {
    case ShapeKind::Record:
        return open(FrameKind::Record, root_);
    case ShapeKind::Choice:
        return open(FrameKind::Choice, root_);
    case ShapeKind::Repeated:
        break;
    default:
        if (!fieldNames(*root_.type).empty()) {
            return open(FrameKind::Fields, root_);
        }
        break;
    }
    return failWith(root_, {Token::Kind::Object});
}

bool Reader::key(const string_t& name) {
    beginToken();
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
        return keyOfFields(frame, name);
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
    if (name == "value") {
        if (hasValue_) {
            return refuseTwice(name);
        }
        hasValue_ = true;
        next_ = root_;
    }
    return true;
}

bool Reader::envelopeValue(const Token& token) {
    if (frames_.back().key != "type") {
        return true;
    }
    const TypeDescription* const told =
        token.kind == Token::Kind::Text ? asn1data::findType(token.text->c_str()) : nullptr;
    const bool same = told == root_.type || (told != nullptr && told->aliasOf == root_.type) ||
                      (root_.type->aliasOf != nullptr && told == root_.type->aliasOf);
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
            return refuseTwice(name);
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
            return fail("either octets or a value", "both");
        }
        frame.kind = FrameKind::Fields;
        fields_ = {};
        return keyOfFields(frame, name);
    }
    frame.key = name;
    const TypeDescription& record = *frame.target.record;
    if (name == "trailing" || name == "trailingHex") {
        if (record.table->value != OpenValue::OctetString) {
            return fail("nothing behind a value that stands in no OCTET STRING",
                        "the key " + inQuotes(name));
        }
        const bool twice =
            name == "trailing" ? frame.trailing.has_value() : frame.behind.has_value();
        return !twice || refuseTwice(name);
    }
    if (frame.object != nullptr) {
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
    return token.kind == Token::Kind::Text ? readHexText(*token.text, *frame.behind)
                                           : fail("octets in hexadecimal digits", foundText(token));
}

bool Reader::keyOfFields(Frame& frame, const std::string& name) {
    const std::string keys = fieldNames(*frame.target.type);
    if (!isOneOf(name, keys)) {
        return fail("one of " + keys, "the key " + inQuotes(name));
    }
    const bool hasOctets = fields_.octets.has_value();
    const bool twice = (name == "number" && fields_.number) || (name == "oid" && fields_.oid) ||
                       (name == "name" && fields_.hasName) || (name == "bits" && fields_.bits) ||
                       (name == "names" && fields_.names) ||
                       ((name == "hex" || name == "base64") && hasOctets);
    frame.key = name;
    return !twice || refuseTwice(name);
}

bool Reader::fieldValue(const Token& token) {
    const std::string& key = frames_.back().key;
    const bool isText = token.kind == Token::Kind::Text;
    if (key == "name") {
        fields_.hasName = true;
        if (isText) {
            fields_.name = *token.text;
        }
        return isText || token.kind == Token::Kind::Null ||
               fail("a name or null", foundText(token));
    }
    if (key == "number") {
        Integer number = token.number;
        const char* const wanted = token.kind == Token::Kind::Number ? nullptr
                                   : isText ? parseInteger(*token.text, number)
                                            : "a number";
        fields_.number = std::move(number);
        return wanted == nullptr || fail(wanted, foundText(token));
    }
    if (key == "bits") {
        long long count = 0;
        const bool good = token.kind == Token::Kind::Number &&
                          token.number.within(0, std::numeric_limits<int>::max(), count);
        fields_.bits = count;
        return good ||
               fail("a count of bits", token.kind == Token::Kind::Number ? numberText(token.number)
                                                                         : foundText(token));
    }
    if (key == "oid") {
        fields_.oid.emplace();
        return (isText && readDotted(*token.text, *fields_.oid)) ||
               fail("an identifier as \"2.5.4.3\"", foundText(token));
    }
    if (key == "names") {
        return fail("an array of names", foundText(token));
    }
    fields_.octets.emplace();
    if (!isText) {
        return fail(key == "hex" ? "octets in hexadecimal digits" : "octets in base64",
                    foundText(token));
    }
    if (key == "hex") {
        return readHexText(*token.text, *fields_.octets);
    }
    const char* const problem = pem::decodeBase64(*token.text, *fields_.octets);
    return problem == nullptr || fail("octets in base64", problem);
}

bool Reader::end_object() {
    beginToken();
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
        good = endFields(frame);
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
        return check(status);
    }
    OctetStore octets(buffer.octets().begin(), buffer.octets().end());
    octets.insert(octets.end(), frame.behind->begin(), frame.behind->end());
    slot.decoded = nullptr;
    recordOf(frame.target).object = nullptr;
    return setOctets(frame.target, octets, 0, "octets");
}

bool Reader::endFields(const Frame& frame) {
    const Target& target = frame.target;
    const auto missing = [&] {
        return fail("one of " + fieldNames(*target.type), "the end of the object");
    };
    switch (valueKind(*target.type)) {
    case ValueKind::Number: {
        long long named = 0;
        if (fields_.name && !readName(target, *fields_.name, named)) {
            return false;
        }
        if (!fields_.number && !fields_.name) {
            return missing();
        }
        const Integer number =
            fields_.number
                ? *fields_.number
                : integerOf(named < 0, static_cast<std::uint64_t>(named < 0 ? -named : named));
        long long told = 0;
        if (fields_.name && (!number.within(named, named, told))) {
            return fail("the number " + std::to_string(named) + " for " + *fields_.name,
                        "another one");
        }
        return setNumber(target, number, "the number");
    }
    case ValueKind::Identifier: {
        ASN1OBJID named{};
        const bool known = fields_.name && findIdentifier(*fields_.name, named);
        if (fields_.name && !known) {
            return fail("a name that is known, or null", inQuotes(*fields_.name));
        }
        if (!fields_.oid && !known) {
            return missing();
        }
        if (fields_.oid && known && !(*fields_.oid == named)) {
            return fail("the name of " + dottedText(*fields_.oid),
                        inQuotes(*fields_.name) + ", which is " + dottedText(named));
        }
        *static_cast<ASN1TObjId*>(target.value) = fields_.oid ? *fields_.oid : named;
        return true;
    }
    case ValueKind::Bits:
        return fields_.octets || fields_.names ? setBits(target) : missing();
    case ValueKind::BigNumber:
        if (!fields_.octets || fields_.octets->empty()) {
            return missing();
        }
        return check(builder_.setInteger(*target.type, target.value, fields_.octets->data(),
                                         fields_.octets->size()));
    default:
        return fields_.octets ? setOctets(target, *fields_.octets, 0, "octets") : missing();
    }
}

bool Reader::readHexText(const std::string& text, OctetStore& octets) {
    const char* const wanted = parseHex(text, octets);
    return wanted == nullptr || fail(wanted, inQuotes(text));
}

bool Reader::readName(const Target& target, const std::string& name, long long& number) {
    const std::optional<long long> found = namedNumber(*target.type, name);
    number = found.value_or(0);
    return found ||
           fail(target.type->nameCount != 0 ? "one of " + numberNames(*target.type) : "a number",
                inQuotes(name));
}

bool Reader::setPrimitive(const Target& target, const Token& token) {
    const TypeDescription& type = *target.type;
    if (!asn1data::isPrimitive(type.shape)) {
        return failWith(target, token);
    }
    const bool isText = token.kind == Token::Kind::Text;
    const ValueKind kind = valueKind(type);
    switch (kind) {
    case ValueKind::Null:
        return token.kind == Token::Kind::Null || failWith(target, token);
    case ValueKind::Boolean:
        *static_cast<unsigned char*>(target.value) = token.truth ? 0xFF : 0;
        return token.kind == Token::Kind::Boolean || failWith(target, token);
    case ValueKind::Number:
    case ValueKind::BigNumber: {
        if (token.kind == Token::Kind::Number) {
            return setNumber(target, token.number, numberText(token.number));
        }
        if (!isText) {
            return failWith(target, token);
        }
        Integer number;
        const char* wanted = parseInteger(*token.text, number);
        long long named = 0;
        if (wanted != nullptr && type.nameCount != 0) {
            if (!readName(target, *token.text, named)) {
                return false;
            }
            number = integerOf(named < 0, static_cast<std::uint64_t>(named < 0 ? -named : named));
            wanted = nullptr;
        }
        return wanted == nullptr ? setNumber(target, number, inQuotes(*token.text))
                                 : fail(wanted, foundText(token));
    }
    case ValueKind::Identifier:
        return isText ? setIdentifier(target, *token.text) : failWith(target, token);
    case ValueKind::Time:
        return isText ? setTime(target, *token.text) : failWith(target, token);
    case ValueKind::Text:
        return isText ? setText(target, *token.text) : failWith(target, token);
    case ValueKind::Bits:
    case ValueKind::OctetString:
    case ValueKind::Raw:
        break;
    }
    OctetStore octets;
    if (!isText) {
        return failWith(target, token);
    }
    if (!readHexText(*token.text, octets)) {
        return false;
    }
    const auto bits = static_cast<unsigned>(
        std::min<std::size_t>(octets.size() * 8, std::numeric_limits<int>::max()));
    return setOctets(target, octets, bits, countText(octets.size(), "octet"));
}

bool Reader::setNumber(const Target& target, const Integer& number, const std::string& found) {
    const TypeDescription& type = *target.type;
    const asn1data::ShapeTraits& traits = asn1data::traitsOf(type.shape);
    if (traits.kind == ShapeKind::BigNumber) {
        if (number.negative && type.shape == asn1data::Shape::BigUnsigned) {
            return fail("a number that is not negative", found);
        }
        const OctetStore contents = number.contents();
        return check(builder_.setInteger(type, target.value, contents.data(), contents.size()));
    }
    long long value = 0;
    if (!number.within(traits.lower, traits.upper, value)) {
        return fail("a number between " + std::to_string(traits.lower) + " and " +
                        std::to_string(traits.upper),
                    found, ASN1S_VALUE_TOO_BIG);
    }
    asn1data::withValue(type, target.value, NumberSetter{value});
    return finish(target, std::to_string(value));
}

bool Reader::setIdentifier(const Target& target, const std::string& text) {
    ASN1OBJID identifier{};
    if (!readDotted(text, identifier) && !findIdentifier(text, identifier)) {
        return fail(wantedText(target), inQuotes(text));
    }
    *static_cast<ASN1TObjId*>(target.value) = identifier;
    return true;
}

bool Reader::setTime(const Target& target, const std::string& text) {
    const bool generalized = isGeneralizedTime(*target.type);
    const auto encoded = encodedTime(text, generalized);
    if (!encoded) {
        return fail(wantedText(target) + (generalized ? "" : ", from 1950 to 2049"),
                    inQuotes(text));
    }
    return setOctets(target, OctetStore(encoded->begin(), encoded->end()), 0, inQuotes(text));
}

bool Reader::setText(const Target& target, const std::string& text) {
    OctetStore octets;
    const char* const wanted = encodeCharacters(text, codingOf(*target.type), octets);
    return wanted == nullptr ? setOctets(target, octets, 0, inQuotes(text))
                             : fail(wanted, inQuotes(text));
}

bool Reader::setOctets(const Target& target, const OctetStore& octets, unsigned bitCount,
                       const std::string& found) {
    const TypeDescription& type = *target.type;
    const bool whole = !octets.empty() && firstElementSize(octets) == octets.size();
    if (valueKind(type) == ValueKind::Raw && !whole) {
        return fail("one whole element", found);
    }
    switch (const int status =
                builder_.setOctets(type, target.value, octets.data(), octets.size(), bitCount)) {
    case ASN1S_STRING_OVERFLOW:
        return fail("at most " + std::to_string(type.capacity) +
                        (valueKind(type) == ValueKind::Bits ? " bits" : " octets"),
                    found, ASN1S_CONSTRAINT_VIOLATION);
    case ASN1S_BAD_VALUE:
        return fail("text without U+0000, in whole characters", found);
    case ASN1S_SUCCESS:
        return finish(target, found);
    default:
        return check(status);
    }
}

bool Reader::setBits(const Target& target) {
    const TypeDescription& type = *target.type;
    OctetStore named;
    std::size_t namedBits = 0;
    for (const std::string& name : fields_.names.value_or(std::vector<std::string>())) {
        constexpr std::string_view numbered = "bit ";
        constexpr std::size_t mostDigits = 9;
        std::optional<long long> bit = namedNumber(type, name);
        Integer number;
        long long place = 0;
        if (!bit && name.compare(0, numbered.size(), numbered) == 0 &&
            name.size() <= numbered.size() + mostDigits &&
            parseInteger(std::string_view(name).substr(numbered.size()), number) == nullptr &&
            number.within(0, 0xFFFF, place)) {
            bit = place;
        }
        if (!bit || *bit < 0) {
            return fail("one of " + numberNames(type), inQuotes(name));
        }
        const auto index = static_cast<std::size_t>(*bit);
        named.resize(std::max(named.size(), index / 8 + 1));
        named[index / 8] = static_cast<unsigned char>(named[index / 8] | 0x80u >> index % 8);
        namedBits = std::max(namedBits, index + 1);
    }
    if (!fields_.octets) {
        const auto told = static_cast<std::size_t>(fields_.bits.value_or(0));
        if (fields_.bits && told < namedBits) {
            return fail("bits for all names", std::to_string(told));
        }
        namedBits = std::max(namedBits, told);
        if (namedBits > std::size_t{0xFFFF} + 1) {
            return fail("the bits in hex", countText(namedBits, "bit"));
        }
        named.resize((namedBits + 7) / 8);
        return setOctets(target, named, static_cast<unsigned>(namedBits),
                         countText(namedBits, "bit"));
    }
    const OctetStore& octets = *fields_.octets;
    const auto bits =
        static_cast<std::size_t>(fields_.bits.value_or(static_cast<long long>(octets.size()) * 8));
    if (octets.size() != (bits + 7) / 8 || bits > std::size_t{std::numeric_limits<int>::max()}) {
        return fail("octets for " + countText(bits, "bit"), countText(octets.size(), "octet"));
    }
    if (fields_.names) {
        OctetStore set = octets;
        if (bits % 8 != 0) {
            set.back() = static_cast<unsigned char>(set.back() & 0xFF00u >> bits % 8);
        }
        while (!set.empty() && set.back() == 0) {
            set.pop_back();
        }
        if (set != named) {
            return fail("the names of the bits that are set", "others");
        }
    }
    return setOctets(target, octets, static_cast<unsigned>(bits), countText(bits, "bit"));
}

void* Reader::run() {
    failure_ = {};
    token_ = text_.data();
    if (text_.size() > limits_.textSize) {
        fail("a text of at most " + std::to_string(limits_.textSize) + " octets",
             std::to_string(text_.size()), ASN1S_STRING_OVERFLOW);
        return nullptr;
    }
    root_.value = builder_.create(*root_.type);
    if (root_.value == nullptr) {
        failOnMemory();
        return nullptr;
    }
    const char* const start = text_.data();
    const bool good =
        nlohmann::json::sax_parse(Place(start, &read_), Place(start + text_.size(), &read_), this);
    return good ? root_.value : nullptr;
}

} // namespace

std::string failureText(const JsonFailure& failure) {
    return (failure.path.empty() ? "" : failure.path + " ") + "at line " +
           std::to_string(failure.line) + ", column " + std::to_string(failure.column) +
           ": expected " + failure.expected +
           (failure.found.empty() ? "" : ", found " + failure.found);
}

void* readJson(ASN1CTXT* ctxt, const TypeDescription& type, std::string_view json,
               JsonFailure& failure, const JsonLimits& limits) {
    return Reader(ctxt, type, json, failure, limits).run();
}

bool encodeJson(const TypeDescription& type, std::string_view json, OctetStore& der,
                JsonFailure& failure, const JsonLimits& limits) {
    der.clear();
    EncodeBuffer buffer;
    void* const value = readJson(buffer.context(), type, json, failure, limits);
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
