#include "primitive_reader.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include <brevantis/asn1/asn1data/value_visit.h>
#include <brevantis/asn1/text/message.h>
#include <brevantis/asn1/text/names.h>
#include <brevantis/asn1/text/pem.h>
#include <brevantis/asn1/text/value.h>

#include "sentences.h"

namespace asn1text {

using asn1data::ShapeKind;
using asn1data::TypeDescription;

namespace {

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

/// The number in "bit 12", as bits without a name are called.
std::optional<long long> numberedBit(std::string_view name) {
    constexpr std::string_view prefix = "bit ";
    const std::string_view digits = name.substr(std::min(prefix.size(), name.size()));
    int bit = 0;
    const auto [end, problem] = std::from_chars(digits.data(), digits.data() + digits.size(), bit);
    const bool good = name.substr(0, prefix.size()) == prefix && problem == std::errc() &&
                      end == digits.data() + digits.size();
    return good ? std::optional<long long>(bit) : std::nullopt;
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

} // namespace

bool PrimitiveReader::check(int status) {
    if (status == ASN1S_SUCCESS) {
        return true;
    }
    return status == ASN1S_NO_MEMORY ? refusals_.failOnMemory()
                                     : fail("a value that fits", {}, status);
}

bool PrimitiveReader::finish(const Target& target, const std::string& found) {
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

bool PrimitiveReader::field(const TypeDescription& type, const std::string& name) {
    const std::string keys = fieldNames(type);
    if (!isOneOf(name, keys)) {
        return fail("one of " + keys, "the key " + inQuotes(name));
    }
    const bool hasOctets = fields_.octets.has_value();
    const bool twice = (name == "number" && fields_.number) || (name == "oid" && fields_.oid) ||
                       (name == "name" && fields_.hasName) || (name == "bits" && fields_.bits) ||
                       (name == "names" && fields_.names) ||
                       ((name == "hex" || name == "base64") && hasOctets);
    fields_.key = name;
    return !twice || refusals_.failTwice(name);
}

bool PrimitiveReader::fieldValue(const Token& token) {
    const std::string& key = fields_.key;
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
        const char* const wanted = token.kind == Token::Kind::Number        ? nullptr
                                   : token.kind == Token::Kind::OtherNumber ? wantedNumber(token)
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

void PrimitiveReader::beginFields() {
    fields_ = {};
}

void PrimitiveReader::beginNames() {
    fields_.names.emplace();
}

bool PrimitiveReader::addName(const Target& target, const Token& token) {
    const TypeDescription& type = *target.type;
    if (token.kind != Token::Kind::Text) {
        return fail("the name of a bit", foundText(token));
    }
    std::optional<long long> bit = namedNumber(type, *token.text);
    bit = bit ? bit : numberedBit(*token.text);
    if (!bit || *bit < 0) {
        return fail("one of " + numberNames(type), inQuotes(*token.text));
    }
    // A name alone does not ask for more memory than a text of its size may.
    constexpr std::size_t mostBits = 0x10000;
    const auto index = static_cast<std::size_t>(*bit);
    NamedBits& named = *fields_.names;
    if (index >= std::max(mostBits, fields_.octets ? fields_.octets->size() * 8 : 0)) {
        return fail("the bits in hex in front of their names", inQuotes(*token.text));
    }
    named.octets.resize(std::max(named.octets.size(), index / 8 + 1));
    named.octets[index / 8] =
        static_cast<unsigned char>(named.octets[index / 8] | 0x80u >> index % 8);
    named.count = std::max(named.count, index + 1);
    return true;
}

bool PrimitiveReader::endFields(const Target& target) {
    const auto missing = [&] {
        return fail("one of " + fieldNames(*target.type), "the end of the object");
    };
    switch (valueKind(*target.type)) {
    case ValueKind::Number:
        return fields_.number || fields_.name ? setNamedNumber(target) : missing();
    case ValueKind::Identifier: {
        // Several identifiers may have one name.
        const char* const usual = fields_.oid ? names_.nameOf(*fields_.oid) : nullptr;
        if (fields_.name && usual != nullptr && *fields_.name == usual) {
            *static_cast<ASN1TObjId*>(target.value) = *fields_.oid;
            return true;
        }
        ASN1OBJID named{};
        const bool known = fields_.name && names_.find(*fields_.name, named);
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
        if (fields_.number || fields_.name) {
            return fields_.octets ? fail("either a number or octets", "both")
                                  : setNamedNumber(target);
        }
        if (!fields_.octets) {
            return missing();
        }
        if (fields_.octets->empty()) {
            return fail("at least one octet", "none");
        }
        return check(builder_.setInteger(*target.type, target.value, fields_.octets->data(),
                                         fields_.octets->size()));
    default:
        return fields_.octets ? setOctets(target, *fields_.octets, 0, "octets") : missing();
    }
}

bool PrimitiveReader::setNamedNumber(const Target& target) {
    long long named = 0;
    if (fields_.name && !readName(target, *fields_.name, named)) {
        return false;
    }
    const Integer number =
        fields_.number
            ? *fields_.number
            : integerOf(named < 0, static_cast<std::uint64_t>(named < 0 ? -named : named));
    long long told = 0;
    if (fields_.name && !number.within(named, named, told)) {
        return fail("the number " + std::to_string(named) + " for " + *fields_.name,
                    numberText(number));
    }
    return setNumber(target, number, numberText(number));
}

bool PrimitiveReader::readHexText(const std::string& text, OctetStore& octets) {
    const char* const wanted = parseHex(text, octets);
    return wanted == nullptr || fail(wanted, inQuotes(text));
}

bool PrimitiveReader::readName(const Target& target, const std::string& name, long long& number) {
    const std::optional<long long> found = namedNumber(*target.type, name);
    number = found.value_or(0);
    return found ||
           fail(target.type->nameCount != 0 ? "one of " + numberNames(*target.type) : "a number",
                inQuotes(name));
}

bool PrimitiveReader::set(const Target& target, const Token& token) {
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
        if (token.kind == Token::Kind::OtherNumber) {
            return fail(wantedNumber(token), foundText(token));
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

bool PrimitiveReader::setNumber(const Target& target, const Integer& number,
                                const std::string& found) {
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

bool PrimitiveReader::setIdentifier(const Target& target, const std::string& text) {
    ASN1OBJID identifier{};
    if (!readDotted(text, identifier) && !names_.find(text, identifier)) {
        return fail(wantedText(target), inQuotes(text));
    }
    *static_cast<ASN1TObjId*>(target.value) = identifier;
    return true;
}

bool PrimitiveReader::setTime(const Target& target, const std::string& text) {
    const bool generalized = isGeneralizedTime(*target.type);
    const auto encoded = encodedTime(text, generalized);
    if (!encoded) {
        return fail(wantedText(target) + (generalized ? "" : ", from 1950 to 2049"),
                    inQuotes(text));
    }
    return setOctets(target, OctetStore(encoded->begin(), encoded->end()), 0, inQuotes(text));
}

bool PrimitiveReader::setText(const Target& target, const std::string& text) {
    OctetStore octets;
    const char* const wanted = encodeCharacters(text, codingOf(*target.type), octets);
    return wanted == nullptr ? setOctets(target, octets, 0, inQuotes(text))
                             : fail(wanted, inQuotes(text));
}

bool PrimitiveReader::setOctets(const Target& target, const OctetStore& octets, unsigned bitCount,
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

bool PrimitiveReader::setBits(const Target& target) {
    const NamedBits named = fields_.names.value_or(NamedBits());
    if (!fields_.octets) {
        const auto told = static_cast<std::size_t>(fields_.bits.value_or(0));
        if (fields_.bits && told < named.count) {
            return fail("at least " + countText(named.count, "bit") + " for the names",
                        std::to_string(told));
        }
        const std::size_t count = std::max(named.count, told);
        if (count > std::size_t{0xFFFF} + 1) {
            return fail("the bits in hex", countText(count, "bit"));
        }
        OctetStore octets = named.octets;
        octets.resize((count + 7) / 8);
        return setOctets(target, octets, static_cast<unsigned>(count), countText(count, "bit"));
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
        if (set != named.octets) {
            return fail("the names of the bits that are set", "others");
        }
    }
    return setOctets(target, octets, static_cast<unsigned>(bits), countText(bits, "bit"));
}

} // namespace asn1text
