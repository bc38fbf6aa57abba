#include <brevantis/support/blob.h>

#include <string>

#include <brevantis/support/error.h>

namespace Brevantis {

namespace {

bool isBlank(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

int digitValue(char character) {
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    if (character >= 'a' && character <= 'f') {
        return character - 'a' + 10;
    }
    if (character >= 'A' && character <= 'F') {
        return character - 'A' + 10;
    }
    ATL::AtlThrowImpl(E_INVALIDARG);
}

} // namespace

CBlob::CBlob(unsigned long size) : octets_(size) {}

CBlob::CBlob(const unsigned char* data, unsigned long size) {
    if (size == 0) {
        return;
    }
    if (data == nullptr) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    octets_.assign(data, data + size);
}

void CBlob::resize_to(unsigned long size) {
    octets_.resize(size);
}

void CBlob::assign(const unsigned char* data, unsigned long size) {
    CBlob(data, size).swap(*this);
}

void CBlob::readFromHexString(const char* text) {
    if (text == nullptr) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    std::vector<unsigned char> octets;
    bool isSecondDigit = false;
    for (; *text != '\0'; ++text) {
        if (isBlank(*text)) {
            continue;
        }
        const int digit = digitValue(*text);
        if (isSecondDigit) {
            octets.back() = static_cast<unsigned char>(octets.back() << 4 | digit);
        } else {
            octets.push_back(static_cast<unsigned char>(digit));
        }
        isSecondDigit = !isSecondDigit;
    }
    if (isSecondDigit) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    octets_.swap(octets);
}

CStringProxy CBlob::writeToHexString(unsigned long /*flags*/) const {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(2 * octets_.size());
    for (const unsigned char octet : octets_) {
        text += digits[octet >> 4];
        text += digits[octet & 15];
    }
    return text;
}

} // namespace Brevantis
