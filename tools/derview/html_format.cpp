#include "html_format.h"

#include <charconv>

#include <brevantis/asn1/text/json_stream.h>
#include <brevantis/asn1/text/pem.h>

#include "escape.h"
#include "page.inc"

namespace derview {

namespace {

/// Lets no text end the block of data that it stands in: "<" is written as an escape of JSON.
class BlockSink : public Sink {
public:
    explicit BlockSink(Output& output) : output_(output) {}
    void write(std::string_view text) override {
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('<'), text.size());
            output_.write(text.substr(0, end));
            if (end != text.size()) {
                output_.write("\\u003c");
            }
            text.remove_prefix(std::min(end + 1, text.size()));
        }
    }

private:
    Output& output_;
};

char letterOf(Style style) {
    switch (style) {
    case Style::Number:
        return 'n';
    case Style::Text:
        return 't';
    case Style::Hex:
        return 'h';
    case Style::Bad:
        return 'b';
    case Style::Quiet:
        return 'q';
    default:
        return 'p';
    }
}

void addNumber(std::string& text, long long number) {
    char digits[24];
    const std::to_chars_result result = std::to_chars(digits, digits + sizeof digits, number);
    text.append(digits, result.ptr);
    text += ',';
}

/// SHA-256 as a policy names it.
std::string hashText(std::string_view hex) {
    OctetStore octets;
    for (std::size_t place = 0; place + 1 < hex.size(); place += 2) {
        octets.push_back(
            static_cast<unsigned char>(hexDigit(static_cast<unsigned char>(hex[place])) << 4 |
                                       hexDigit(static_cast<unsigned char>(hex[place + 1]))));
    }
    return "'sha256-" + pem::encodeBase64(octets) + "'";
}

} // namespace

void PageRows::clear() {
    numbers_.clear();
    texts_.clear();
    rows_.clear();
    offset_ = 0;
    numberOf("");
}

std::size_t PageRows::numberOf(std::string_view text) {
    const auto [place, isNew] = numbers_.emplace(text, texts_.size());
    if (isNew) {
        texts_.emplace_back(text);
    }
    return place->second;
}

std::size_t PageRows::begin(std::size_t depth, const TreePlace& place) {
    addNumber(rows_, static_cast<long long>(depth));
    if (place.assembled) {
        rows_ += "0,,";
    } else {
        addNumber(rows_, static_cast<long long>(place.offset) - static_cast<long long>(offset_));
        offset_ = place.offset;
        addNumber(rows_, static_cast<long long>(place.headerLength));
    }
    addNumber(rows_, place.contentLength);
    name_.clear();
    value_.clear();
    return 0;
}

std::size_t PageRows::name(std::string_view name, std::size_t /*columns*/, std::size_t /*column*/) {
    name_ = name;
    return 0;
}

std::size_t PageRows::prefix(std::string_view text, std::size_t /*column*/) {
    value_.append(text).append(": ");
    return 0;
}

std::size_t PageRows::findRoom(std::size_t /*column*/, std::size_t /*columns*/) {
    return 0;
}

void PageRows::end(char kind, std::string_view text) {
    value_ += text;
    addNumber(rows_, static_cast<long long>(numberOf(name_)));
    addNumber(rows_, static_cast<long long>(numberOf(value_)));
    rows_ += kind;
    rows_ += '\n';
}

void PageRows::text(Style style, std::string_view text, std::size_t /*column*/) {
    end(letterOf(style), text);
}

void PageRows::value(ValueKind kind, const ValueText& value, std::size_t /*column*/) {
    end(letterOf(styleOf(kind)),
        value.rest == 0 ? value.text : value.text + " " + restText(value.rest));
}

void PageRows::octets(Octets octets, std::size_t /*column*/) {
    end('h', hexText(octets));
}

void PageRows::failure(std::size_t depth, const std::string& text) {
    begin(depth, {0, 0, 0, true});
    end('b', text);
}

void PageRows::note(const std::string& text) {
    failure(0, text);
}

void HtmlFormat::beginPage() {
    begun_ = true;
    output_.write("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                  "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                  "style-src ");
    output_.write(hashText(PageStyleHash));
    output_.write("; script-src ");
    output_.write(hashText(PageScriptHash));
    output_.write("; base-uri 'none'; form-action 'none'\">\n"
                  "<meta name=\"viewport\" content=\"width=device-width\">\n"
                  "<title>derview</title>\n<style>");
    output_.write(PageStyle);
    output_.write("</style>\n</head>\n");
    output_.write(PageBody);
}

void HtmlFormat::writeHeading() {
    rows_.clear();
    title_ = headingText() + headingRest();
}

bool HtmlFormat::end() {
    if (!begun_) {
        beginPage();
    }
    output_.write("<script type=\"text/x-message\">");
    BlockSink sink(output_);
    JsonStream json(sink, JsonLayout::OneLine);
    json.beginObject();
    json.key("title");
    json.string(title_);
    json.key("octets");
    json.string(pem::encodeBase64(shownOctets()));
    json.key("texts");
    json.beginArray();
    for (const std::string& text : rows_.texts()) {
        json.string(text);
    }
    json.end();
    json.key("rows");
    json.string(rows_.rows());
    json.end();
    json.finish();
    output_.write("</script>\n");
    return TreeFormat::end();
}

void HtmlFormat::finish() {
    if (!begun_) {
        return;
    }
    output_.write("<script>");
    output_.write(PageScript);
    output_.write("</script>\n</body>\n</html>\n");
}

} // namespace derview
