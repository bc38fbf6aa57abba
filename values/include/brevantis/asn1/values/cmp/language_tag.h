#ifndef BREVANTIS_ASN1_VALUES_CMP_LANGUAGE_TAG_H
#define BREVANTIS_ASN1_VALUES_CMP_LANGUAGE_TAG_H

#include <string>

#include <brevantis/asn1/export.h>
#include <brevantis/support/text.h>

/// @file
/// Language tags of free text (RFC 4210, 5.1.1; tags: RFC 5646).
///
/// In a message the tag stands in front of the text, each of its characters c as the code point
/// U+0E00 + c, between U+0E01 and U+0E7E. A tag whose text has a "~" ends there when it is read.

namespace Brevantis::ASN1 {

/// A language tag in lower case, such as "en-us". Its form is not checked.
class BREVANTIS_ASN1_API CLanguageTag {
public:
    /// The empty tag. It is a tag like any other, not "no particular language".
    CLanguageTag() = default;
    /// @param tag terminated; null stands for the empty text
    CLanguageTag(const char* tag);
    /// @param tag terminated; null stands for the empty text
    /// @throws ATL::CAtlException with the code of AtlThrowLastWin32 for a character outside ASCII
    CLanguageTag(const wchar_t* tag);

    /// Copies the tag.
    void assign(const CLanguageTag& other) { *this = other; }

    /// The tag in lower case.
    CStringProxy tostring() const { return tag_; }

    /// The text in lower case, as `tolower` has it character by character.
    /// @param tag terminated; null stands for the empty text
    static std::string normalize(const char* tag);

    friend bool operator==(const CLanguageTag& a, const CLanguageTag& b) {
        return a.tag_ == b.tag_;
    }
    friend bool operator!=(const CLanguageTag& a, const CLanguageTag& b) {
        return a.tag_ != b.tag_;
    }

private:
    CStringProxy tag_;
};

/// Russian as in Russia.
class BREVANTIS_ASN1_API CLanguageTagRuRu : public CLanguageTag {
public:
    /// The tag "ru-ru".
    CLanguageTagRuRu() : CLanguageTag("ru-ru") {}
};

/// English as in the United States.
class BREVANTIS_ASN1_API CLanguageTagEnUs : public CLanguageTag {
public:
    /// The tag "en-us".
    CLanguageTagEnUs() : CLanguageTag("en-us") {}
};

/// No particular language, "*": text is written without a tag, and the first string is meant where
/// one is looked for.
class BREVANTIS_ASN1_API CLanguageTagDefaultRead : public CLanguageTag {
public:
    /// The tag "*".
    CLanguageTagDefaultRead() : CLanguageTag("*") {}
};

} // namespace Brevantis::ASN1

#endif
