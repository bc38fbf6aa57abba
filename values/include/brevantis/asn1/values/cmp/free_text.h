#ifndef BREVANTIS_ASN1_VALUES_CMP_FREE_TEXT_H
#define BREVANTIS_ASN1_VALUES_CMP_FREE_TEXT_H

#include <list>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/cmp/language_tag.h>
#include <brevantis/support/text.h>

/// @file
/// Text for people in messages of certificate management (RFC 4210, 5.1.1).
///
/// In a message a language other than CLanguageTagDefaultRead stands in front of the text: U+0E01,
/// the code point U+0E00 + c for each character c of its tag, U+0E7E. A text of one's own that
/// begins with the Thai letter U+0E01 is therefore read as one with a tag, or refused.
/// @warning Reading a text with a tag leaves the tag's characters in front of the value.

namespace Brevantis::ASN1 {

/// A text and the language that it is in.
class BREVANTIS_ASN1_API CPKIFreeTextString {
public:
    /// The empty text.
    CPKIFreeTextString(CLanguageTag language);
    /// @param value null stands for the empty text
    CPKIFreeTextString(const wchar_t* value, CLanguageTag language = CLanguageTagDefaultRead());
    /// @param value UTF-8; null stands for the empty text
    CPKIFreeTextString(const char* value, CLanguageTag language = CLanguageTagDefaultRead());
    // No move: with one, making a string of a CPKIFreeText, which converts to it by reference and
    // by value, would be ambiguous.
    CPKIFreeTextString(const CPKIFreeTextString&) = default;
    CPKIFreeTextString& operator=(const CPKIFreeTextString& other);
    ~CPKIFreeTextString() = default;

    /// Copies text and language.
    void assign(const CPKIFreeTextString& other) { *this = other; }
    void swap(CPKIFreeTextString& other) noexcept;

    /// The language, valid until the text goes; CLanguageTagDefaultRead where none was told.
    const CLanguageTag& get_language() const { return language_; }
    /// Valid until the text changes or goes.
    const wchar_t* get_value() const { return value_.c_str(); }
    /// @param value terminated, copied; null stands for the empty text
    void set_value(const wchar_t* value);

    // Equal in language and text.
    friend bool operator==(const CPKIFreeTextString& a, const CPKIFreeTextString& b) {
        return a.language_ == b.language_ && a.value_ == b.value_;
    }
    friend bool operator!=(const CPKIFreeTextString& a, const CPKIFreeTextString& b) {
        return !(a == b);
    }

private:
    CWStringProxy value_;
    CLanguageTag language_;
};

/// PKIFreeText of RFC 4210, 5.1.1: the same text in any number of languages.
class BREVANTIS_ASN1_API CPKIFreeText : public std::list<CPKIFreeTextString> {
public:
    using std::list<CPKIFreeTextString>::insert;

    /// No string.
    CPKIFreeText() = default;
    /// One string.
    /// @param value null stands for the empty text
    CPKIFreeText(const wchar_t* value, CLanguageTag language = CLanguageTagDefaultRead());
    /// A copy of one string.
    CPKIFreeText(const CPKIFreeTextString& string);

    /// Finds the first string of a language; for CLanguageTagDefaultRead the first string of all.
    /// @warning Of a real language only a string with an empty text is found: the language is
    ///          compared along with an empty text. Walk through the list to find any other.
    /// @return `end()` when there is none
    iterator find(CLanguageTag language);
    const_iterator find(CLanguageTag language) const;

    /// Puts @p string in the place of the one that `find` gives for its language, or at the end
    /// when there is none; at the end in any case when its language is CLanguageTagDefaultRead.
    /// @warning As `find` passes over strings with a text, these are not replaced.
    void insert(const CPKIFreeTextString& string);

    /// Removes the strings that `find` gives for a language, until it gives none.
    /// @warning CLanguageTagDefaultRead empties the list; a real language removes its empty texts
    ///          only.
    void remove(const CLanguageTag& language);

    /// The first string.
    /// @throws ATL::CAtlException with E_INVALIDARG when there is none
    operator const CPKIFreeTextString&() const;
    operator CPKIFreeTextString();
};

} // namespace Brevantis::ASN1

#endif
