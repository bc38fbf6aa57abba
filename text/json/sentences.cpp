#include "sentences.h"

#include <limits>

#include <brevantis/asn1/asn1data/value_visit.h>
#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/text/value.h>

namespace asn1text {

using asn1data::ShapeKind;
using asn1data::TypeDescription;

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
    case Token::Kind::OtherNumber: {
        constexpr std::size_t most = 40;
        return token.text->substr(0, most) + (token.text->size() > most ? "..." : "");
    }
    case Token::Kind::Text:
        return inQuotes(*token.text);
    case Token::Kind::Object:
        return "an object";
    case Token::Kind::Array:
        break;
    }
    return "an array";
}

const char* wantedNumber(const Token& other) {
    return other.text->find_first_of(".eE") != std::string::npos
               ? "a number without fraction and exponent"
               : "a string for a number beyond 64 bits";
}

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
        return type.nameCount != 0 ? "a number or its name"
                                   : "a number, or digits in a string as \"12\" or \"-0x0c\"";
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

std::string fieldNames(const TypeDescription& type) {
    switch (valueKind(type)) {
    case ValueKind::Number:
        return "number, name";
    case ValueKind::Identifier:
        return "oid, name";
    case ValueKind::Bits:
        return "bits, hex, base64, names";
    case ValueKind::BigNumber:
        return type.nameCount != 0 ? "number, name, hex, base64" : "hex, base64";
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

bool Refusals::failWith(const Target& target, const Token& token) {
    return fail(wantedText(target), foundText(token), ASN1S_BAD_VALUE);
}

bool Refusals::failTwice(const std::string& key) {
    return fail("each key once", "the key " + inQuotes(key) + " again", ASN1S_BAD_VALUE);
}

} // namespace asn1text
