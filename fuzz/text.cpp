#include <climits>
#include <cstring>
#include <memory>

#include <brevantis/asn1/runtime.h>
#include <brevantis/asn1/text/pem.h>
#include <brevantis/asn1/values.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>
#include <brevantis/asn1/values/util/text_conversion.h>
#include <brevantis/support.h>

#include "entry.h"
#include "refusal.h"
#include "support/coding.h"
#include "support/time_texts.h"

// Everything that is read from text: the first octet chooses the reader. What was read is written,
// and what was written is read back.

namespace {

using namespace Brevantis;
using namespace Brevantis::ASN1;
using fuzz::succeeds;
using tests::Context;
using tests::HeapText;

std::wstring wideOf(const std::string& text) {
    return towstring(HeapText(text).get());
}

void readName(const std::string& text) {
    const std::wstring wide = wideOf(text);
    CName name;
    // A type that is not in the register and has no value is told by another exception.
    try {
        name.fromString(wide.c_str());
    } catch (const ATL::CAtlException&) {
        return;
    } catch (const std::out_of_range&) {
        return;
    }
    succeeds([&] { name.toString(); });
    CBlob encoded;
    if (succeeds([&] { encoded = name.encode(); })) {
        CName again;
        if (succeeds([&] { again.decode(encoded); }) && again.encode() != encoded) {
            fuzz::report("a name is read as another");
        }
    }
}

void readRfc4514(const std::string& text) {
    CName name;
    if (!succeeds([&] { name = fromRfc4514(text); })) {
        return;
    }
    CBlob encoded;
    CName decoded;
    // The type may have values of another kind than the text or the octets behind # are.
    if (succeeds([&] { encoded = name.encode(); }) && succeeds([&] { decoded.decode(encoded); }) &&
        decoded.encode() != encoded) {
        fuzz::report("a name is encoded as another");
    }
    std::string written;
    // A string of a listed type may be damaged, and is then told.
    if (succeeds([&] { written = toRfc4514(name); })) {
        CName again;
        if (!succeeds([&] { again = fromRfc4514(written); }) || toRfc4514(again) != written) {
            fuzz::report("a name is read as another");
        }
    }
}

void readUtcTime(const std::string& text) {
    const HeapText given(text);
    ASN1TimeFields fields{};
    const int status = rtParseUTCTime(nullptr, given.get(), &fields);
    const char* variable = given.get();
    Context ctxt;
    ASN1CUTCTime time(variable);
    if (status == 0 && (time.getYear() < 1950 || time.getYear() > 2049)) {
        fuzz::report("a year that UTCTime has not");
    }
}

void readGeneralizedTime(const std::string& text) {
    const HeapText given(text);
    Context ctxt;
    ASN1TimeFields fields{};
    if (rtParseGeneralizedTime(ctxt, given.get(), &fields) == 0) {
        char* written = nullptr;
        ASN1TimeFields again{};
        if (rtMakeGeneralizedTime(ctxt, &fields, &written, 0) == 0 &&
            (rtParseGeneralizedTime(ctxt, written, &again) != 0 || again.year != fields.year ||
             again.second != fields.second)) {
            fuzz::report("a time is read as another");
        }
    }
    CDateTime date;
    if (succeeds([&] { date = CDateTime(given.get()); }) &&
        CDateTime(date.getGeneralizedTime().c_str()) != date) {
        fuzz::report("a date is read as another");
    }
}

/// Every call of the time classes that reads or writes the text.
template <class Time>
void useTime(const std::string& text) {
    char buffer[40] = {};
    std::strncpy(buffer, text.c_str(), sizeof buffer - 1);
    char* variable = buffer;
    Time time(variable, sizeof buffer, text.size() % 2);
    time.parseString(HeapText(text).get());
    Time copy(time);
    const bool equal = copy == time;
    const unsigned step = text.empty() ? 0 : static_cast<unsigned char>(text.back());
    const int number = static_cast<int>(step) - 100;
    time.setDay(number / 3);
    time.setMonth(number / 8);
    time.setFraction(number);
    time.setDiff(number * 7);
    time.setHour(number % 30);
    time.setTime(number * 30000000L, step % 2);
    time.compileString();
    char other[40];
    time.getTimeString(other, static_cast<int>(step % sizeof other));
    copy = time;
    if (!equal && copy != copy) {
        fuzz::report("a time differs from itself");
    }
}

void readBigInteger(const std::string& text) {
    const HeapText given(text);
    const char* const end = given.get() + std::strlen(given.get());
    const auto middle = given.get() + (end - given.get()) / 2;
    for (const int radix : {0, 2, 8, 10, 16}) {
        Context ctxt;
        RtBigIntDataRec number;
        rtBigIntInit(&number);
        if (rtBigIntSetStr(ctxt, &number, given.get(), radix) == 0) {
            for (const int written : {2, 8, 10, 16}) {
                const int digits = rtBigIntDigitsNum(&number, written);
                std::unique_ptr<char[]> buffer(new char[static_cast<std::size_t>(digits) + 3]);
                if (rtBigIntToString(ctxt, &number, written, buffer.get(), digits + 3) ==
                    ASN1S_STRING_OVERFLOW) {
                    fuzz::report("more digits than were told");
                }
            }
            const int size = rtBigIntGetDataLen(&number);
            std::unique_ptr<unsigned char[]> octets(
                new unsigned char[static_cast<std::size_t>(size)]);
            rtBigIntGetData(ctxt, &number, octets.get(), size);
        }
        rtBigIntFree(ctxt, &number);
        const int order = rtBigIntStrCompare(ctxt, given.get(), middle);
        if (rtBigIntStrCompare(ctxt, middle, given.get()) != -order) {
            fuzz::report("an order that is none");
        }
    }
    tests::Writer writer;
    const int size = xe_bigint(writer, given.get(), ASN1TagExplicit);
    if (size > 0) {
        const ASN1Buffer& buffer = writer->buffer;
        tests::Reader reader(
            tests::Octets(buffer.data + buffer.byteIndex, buffer.data + buffer.size - 1));
        const char* read = nullptr;
        if (xd_bigint(reader, &read, ASN1TagExplicit, 0) != 0) {
            fuzz::report("a number is written that cannot be read");
        }
    }
    xe_biguint(writer, given.get(), ASN1TagExplicit);
    CBigInteger number;
    // Blanks alone are a number of no octets, whose text is not read.
    if (succeeds([&] { StringToBigInteger(given.get(), number); }) && number.cbData() != 0) {
        CBlob written;
        BigIntegerToString(number, written);
        CBigInteger again;
        StringToBigInteger(reinterpret_cast<const char*>(written.pbData()), again);
        if (again.compare(number) != 0) {
            fuzz::report("a number is read as another");
        }
        number.encode();
    }
}

void readIdentifier(const std::string& text) {
    const HeapText given(text);
    ASN1OBJID identifier{};
    if (rtStrToOid(given.get(), &identifier)) {
        const std::size_t size = rtOidToStrLen(&identifier);
        std::unique_ptr<char[]> written(new char[size + 1]);
        ASN1OBJID again{};
        if (rtOidToStr(&identifier, written.get(), size + 1) != 1 ||
            !rtStrToOid(written.get(), &again) || !(again == identifier)) {
            fuzz::report("an identifier is read as another");
        }
    }
    succeeds([&] { toOID(toASN1OBJID(given.get())); });
}

void readHex(const std::string& text) {
    CBlob octets;
    if (succeeds([&] { octets.readFromHexString(HeapText(text).get()); })) {
        CBlob again;
        again.readFromHexString(octets.writeToHexString(0).c_str());
        if (again != octets) {
            fuzz::report("octets are read as others");
        }
    }
}

void readCodePage(const std::string& text) {
    if (text.empty()) {
        return;
    }
    const int size = static_cast<int>(text.size());
    const int count = MultiByteToWideChar(0, 0, text.data(), size, nullptr, 0);
    std::vector<wchar_t> wide(static_cast<std::size_t>(count));
    if (MultiByteToWideChar(65001, 0, text.data(), size, wide.data(), count) != count) {
        fuzz::report("another count than was told");
    }
    const int octets = WideCharToMultiByte(0, 0, wide.data(), count, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(octets), '\0');
    int replaced = 0;
    if (WideCharToMultiByte(0, 0, wide.data(), count, narrow.data(), octets, "?", &replaced) !=
            octets ||
        replaced != 0) {
        fuzz::report("a character that UTF-8 has not");
    }
    // Units that need not be characters.
    std::vector<wchar_t> units(text.size() / sizeof(wchar_t) + 2);
    std::memcpy(units.data(), text.data(), text.size());
    succeeds([&] { tostring(units.data()); });
    const HeapText given(text);
    std::string again;
    if (succeeds([&] { again = tostring(towstring(given.get()).c_str()); }) &&
        again != given.get()) {
        fuzz::report("a text is read as another");
    }
}

void readUtf8(const std::string& text) {
    const HeapText given(text);
    Context ctxt;
    const int length = rtUTF8Len(given.get());
    std::vector<wchar_t> wide(text.size() + 1);
    const int count = rtUTF8ToWCS(ctxt, given.get(), wide.data(), wide.size());
    if (length >= 0 && count > 0) {
        std::vector<char> narrow(text.size() * 6 + 8);
        rtWCSToUTF8(ctxt, wide.data(), wide.size(), narrow.data(), narrow.size());
    }
    Asn132BitCharString wider{};
    rtCToUCSString(ctxt, given.get(), &wider, nullptr);
    rtUTF8Strdup(ctxt, given.get());
    ASN1UTF8Count pieces{};
    const std::size_t half = text.size() / 2;
    const auto* octets = reinterpret_cast<const unsigned char*>(text.data());
    rtUTF8CountPiece(&pieces, octets, half);
    rtUTF8CountPiece(&pieces, octets + half, text.size() - half);
}

void readCharacterString(const std::string& text) {
    const CBlob encoded(reinterpret_cast<const unsigned char*>(text.data()), text.size());
    succeeds([&] { decodeCharString(encoded); });
    const std::wstring wide = wideOf(text);
    for (unsigned tag : {12u, 19u, 20u, 22u, 28u, 30u}) {
        CBlob written;
        if (succeeds(
                [&] { written = encodeCharString(wide.c_str(), static_cast<StringType>(tag)); })) {
            succeeds([&] { decodeCharString(written); });
        }
    }
}

void readLanguage(const std::string& text) {
    const HeapText given(text);
    succeeds([&] { CLanguageTag::normalize(given.get()); });
    succeeds([&] { CPKIFreeText().insert(CPKIFreeTextString(given.get(), given.get())); });
}

void readPem(const std::string& text) {
    asn1text::pem::isPem(text);
    for (const asn1text::pem::Block& block : asn1text::pem::read(text)) {
        if (block.problem != nullptr && !block.octets.empty()) {
            fuzz::report("octets of a damaged block");
        }
    }
    std::vector<unsigned char> octets;
    asn1text::pem::decodeBase64(text, octets);
}

constexpr void (*const readers[])(const std::string&) = {
    readName,
    readUtcTime,
    readGeneralizedTime,
    useTime<ASN1CUTCTime>,
    useTime<ASN1CGeneralizedTime>,
    readBigInteger,
    readIdentifier,
    readHex,
    readCodePage,
    readUtf8,
    readCharacterString,
    readLanguage,
    readPem,
    readRfc4514,
};

} // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    fuzz::Input input(data, size);
    const auto read = readers[input.below(std::size(readers))];
    read(input.text());
    return 0;
}
