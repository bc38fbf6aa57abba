#ifndef BREVANTIS_ASN1_TEXT_JSON_PRIMITIVE_READER_H
#define BREVANTIS_ASN1_TEXT_JSON_PRIMITIVE_READER_H

#include <optional>
#include <string>

#include <brevantis/asn1/asn1data/builder.h>
#include <brevantis/asn1/text/names.h>

#include "token.h"

namespace asn1text {

/// Bits that are set by their names.
struct NamedBits {
    OctetStore octets;
    std::size_t count = 0; ///< up to the last one
};

/// Gives primitives the values that tokens, objects of fields and arrays of names stand for. What
/// does not fit is told to the refusals, and the call returns false.
class PrimitiveReader {
public:
    /// @param names that identifiers may have
    PrimitiveReader(asn1data::Builder& builder, Refusals& refusals, const IdentifierNames& names)
        : builder_(builder), refusals_(refusals), names_(names) {}

    /// A value of one token.
    bool set(const Target& target, const Token& token);
    bool setOctets(const Target& target, const OctetStore& octets, unsigned bitCount,
                   const std::string& found);
    bool readHexText(const std::string& text, OctetStore& octets);

    // An object that stands for a primitive; one can be open at a time.

    void beginFields();
    /// A key of it.
    bool field(const asn1data::TypeDescription& type, const std::string& name);
    /// Whether the key that was read last has an array of names.
    bool wantsNames() const { return fields_.key == "names"; }
    /// The value of the key that was read last.
    bool fieldValue(const Token& token);
    bool endFields(const Target& target);

    // An array of names of bits, in such an object or alone.

    void beginNames();
    bool addName(const Target& target, const Token& token);
    /// Sets the bits that were told.
    bool setBits(const Target& target);

    /// Tests a value that is complete against the constraints on it.
    bool finish(const Target& target, const std::string& found);
    /// Tells what a status of the builder or of the engine means.
    bool check(int status);

private:
    /// What was read of the object that stands for a primitive.
    struct Fields {
        std::string key; ///< the last one
        std::optional<Integer> number;
        bool hasName = false;
        std::optional<std::string> name; ///< none where it is null
        std::optional<ASN1OBJID> oid;
        std::optional<long long> bits;
        std::optional<OctetStore> octets;
        std::optional<NamedBits> names;
    };

    bool fail(std::string expected, std::string found = {}, int status = ASN1S_BAD_VALUE) {
        return refusals_.fail(std::move(expected), std::move(found), status);
    }
    bool failWith(const Target& target, const Token& token) {
        return refusals_.failWith(target, token);
    }
    bool setNumber(const Target& target, const Integer& number, const std::string& found);
    bool setNamedNumber(const Target& target);
    bool setText(const Target& target, const std::string& text);
    bool setTime(const Target& target, const std::string& text);
    bool setIdentifier(const Target& target, const std::string& text);
    bool readName(const Target& target, const std::string& name, long long& number);

    asn1data::Builder& builder_;
    Refusals& refusals_;
    const IdentifierNames& names_;
    Fields fields_;
};

} // namespace asn1text

#endif
