#include <brevantis/asn1/values/cmp/free_text.h>

#include <algorithm>
#include <utility>

#include <brevantis/asn1/values/util/text_conversion.h>
#include <brevantis/support/error.h>

namespace Brevantis::ASN1 {

namespace {

template <class List>
auto findString(List& list, CLanguageTag language) {
    // Kept: a real language is found with an empty text only, and the default one is the first of
    // any.
    return language == CLanguageTagDefaultRead()
               ? list.begin()
               : std::find(list.begin(), list.end(), CPKIFreeTextString(std::move(language)));
}

} // namespace

CPKIFreeTextString::CPKIFreeTextString(CLanguageTag language) : language_(std::move(language)) {}

CPKIFreeTextString::CPKIFreeTextString(const wchar_t* value, CLanguageTag language)
    : value_(value), language_(std::move(language)) {}

CPKIFreeTextString::CPKIFreeTextString(const char* value, CLanguageTag language)
    : value_(towstring(value)), language_(std::move(language)) {}

CPKIFreeTextString& CPKIFreeTextString::operator=(const CPKIFreeTextString& other) {
    CPKIFreeTextString(other).swap(*this);
    return *this;
}

void CPKIFreeTextString::swap(CPKIFreeTextString& other) noexcept {
    value_.swap(other.value_);
    std::swap(language_, other.language_);
}

void CPKIFreeTextString::set_value(const wchar_t* value) {
    value_ = value;
}

CPKIFreeText::CPKIFreeText(const wchar_t* value, CLanguageTag language)
    : CPKIFreeText(CPKIFreeTextString(value, std::move(language))) {}

CPKIFreeText::CPKIFreeText(const CPKIFreeTextString& string)
    : std::list<CPKIFreeTextString>(1, string) {}

CPKIFreeText::iterator CPKIFreeText::find(CLanguageTag language) {
    return findString(*this, std::move(language));
}

CPKIFreeText::const_iterator CPKIFreeText::find(CLanguageTag language) const {
    return findString(*this, std::move(language));
}

void CPKIFreeText::insert(const CPKIFreeTextString& string) {
    if (string.get_language() != CLanguageTagDefaultRead()) {
        const iterator place = find(string.get_language());
        if (place != end()) {
            *place = string;
            return;
        }
    }
    push_back(string);
}

void CPKIFreeText::remove(const CLanguageTag& language) {
    // They stay alive until the end, as the argument may be part of one of them.
    std::list<CPKIFreeTextString> removed;
    for (iterator place = find(language); place != end(); place = find(language)) {
        removed.splice(removed.end(), *this, place);
    }
}

CPKIFreeText::operator const CPKIFreeTextString&() const {
    const const_iterator first = find(CLanguageTagDefaultRead());
    if (first == end()) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    return *first;
}

CPKIFreeText::operator CPKIFreeTextString() {
    return static_cast<const CPKIFreeTextString&>(std::as_const(*this));
}

} // namespace Brevantis::ASN1
