#include <brevantis/asn1/values/cmp/language_tag.h>

#include <cctype>

#include <brevantis/asn1/values/util/text_conversion.h>

namespace Brevantis::ASN1 {

CLanguageTag::CLanguageTag(const char* tag) : tag_(normalize(tag)) {}

CLanguageTag::CLanguageTag(const wchar_t* tag) : CLanguageTag(ASN1::tostring(tag).c_str()) {}

std::string CLanguageTag::normalize(const char* tag) {
    std::string lower(tag != nullptr ? tag : "");
    for (char& character : lower) {
        character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    }
    return lower;
}

} // namespace Brevantis::ASN1
