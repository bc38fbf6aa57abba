#ifndef BREVANTIS_ASN1_TEXT_JSON_SENTENCES_H
#define BREVANTIS_ASN1_TEXT_JSON_SENTENCES_H

#include <string>

#include "token.h"

// What a refusal says was expected and found.

namespace asn1text {

/// A number for a sentence.
std::string numberText(const Integer& number);
std::string countText(std::size_t count, const char* what);
std::string foundText(const Token& token);
/// What is wanted in place of a number that no value has.
const char* wantedNumber(const Token& other);
/// Names of the elements of a type, for a sentence.
std::string elementNames(const asn1data::TypeDescription& type);
std::string wantedText(const Target& target);
/// Keys of the object that stands for a primitive.
std::string fieldNames(const asn1data::TypeDescription& type);
std::string numberNames(const asn1data::TypeDescription& type);
std::string rangeText(const asn1data::TypeDescription& type,
                      const asn1data::Constraint& constraint);

} // namespace asn1text

#endif
