#ifndef BREVANTIS_ASN1_TEXT_JSON_TOKEN_H
#define BREVANTIS_ASN1_TEXT_JSON_TOKEN_H

#include <string>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/runtime/status.h>

#include "value_parser.h"

// What the parts of the reader hand to each other.

namespace asn1text {

/// A value of the text that is neither an object nor an array, or the beginning of one.
struct Token {
    enum class Kind : unsigned char {
        Null,
        Boolean,
        Number,
        OtherNumber, ///< with a fraction or an exponent, or beyond 64 bits: in no value
        Text,
        Object,
        Array
    };

    Kind kind;
    bool truth = false;                ///< Boolean
    Integer number = {};               ///< Number
    const std::string* text = nullptr; ///< Text; OtherNumber: as it is written
};

/// Where a value goes.
struct Target {
    const asn1data::TypeDescription* type = nullptr;
    void* value = nullptr;
    const asn1data::Constraint* constraint = nullptr; ///< the element's, beyond its type's own
    const asn1data::TypeDescription* record =
        nullptr; ///< whose open value it is, or list of these; or null
    void* recordValue = nullptr;
};

/// Says where in the text and in the value something was refused. Each call returns false.
class Refusals {
public:
    virtual bool fail(std::string expected, std::string found, int status) = 0;
    bool failWith(const Target& target, const Token& token);
    bool failTwice(const std::string& key);
    bool failOnMemory() { return fail("memory for the value", {}, ASN1S_NO_MEMORY); }

protected:
    ~Refusals() = default;
};

} // namespace asn1text

#endif
