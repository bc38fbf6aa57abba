#include "html_format.h"

#include <brevantis/asn1/text/pem.h>

namespace derview {

namespace {

constexpr std::string_view Page =
#include "page.inc"
    ;

/// Octets of all messages that a page holds at most.
constexpr std::size_t LargestPage = std::size_t{16} << 20;

/// Keeps from text what could end or change the block of data that it stands in. In JSON the
/// character is in strings alone.
class DataBlock : public Sink {
public:
    explicit DataBlock(Output& output) : output_(output) {}

    void write(std::string_view text) override {
        for (;;) {
            const std::size_t place = text.find('<');
            output_.write(text.substr(0, place));
            if (place == std::string_view::npos) {
                return;
            }
            output_.write("\\u003c");
            text.remove_prefix(place + 1);
        }
    }

private:
    Output& output_;
};

/// The octets that a page holds of a view.
Octets octetsOf(const View& view) {
    return view.span != nullptr ? Octets(view.span->data, view.span->size)
                                : view.message.withTrailing();
}

} // namespace

bool HtmlFormat::takes(const View& view) {
    const std::size_t size = octetsOf(view).size();
    if (size <= LargestPage - total_) {
        return true;
    }
    diagnostics_.tell(view.message, "a page holds " + octetsText(LargestPage) +
                                        " at most, and with this message " +
                                        std::to_string(total_ + size));
    return false;
}

void HtmlFormat::begin(const View& view) {
    octets_ = octetsOf(view);
    const bool isPart = view.span != nullptr;
    // By tags alone, the outermost element has a line of its own.
    lines_.begin(octets_, isPart ? octets_ : view.message.shown, isPart ? view.span->offset : 0,
                 view.recognition.type != nullptr);
    TreeFormat::begin(view);
}

bool HtmlFormat::end() {
    writeBlock();
    return TreeFormat::end();
}

void HtmlFormat::finish() {
    if (total_ != 0) {
        output_.write("</body>\n</html>\n");
    }
}

void HtmlFormat::writeBlock() {
    const bool isPart = view().span != nullptr;
    const asn1data::TypeDescription* const type = view().recognition.type;
    if (total_ == 0) {
        output_.write(Page);
    }
    total_ += octets_.size();
    output_.write("<script type=\"application/json\">");
    DataBlock block(output_);
    JsonStream json(block, JsonLayout::OneLine);
    json.beginObject();
    json.key("place");
    json.string(view().message.place);
    json.key("type");
    json.string(type != nullptr ? type->name : "unknown type");
    json.key("path");
    json.string(isPart ? *view().path : "");
    json.key("offset");
    json.number(isPart ? static_cast<long long>(view().span->offset) : 0);
    json.key("octets");
    json.string(pem::encodeBase64(octets_));
    json.key("about");
    json.string(headingRest().substr(2));
    lines_.write(json);
    json.end();
    json.finish();
    output_.write("</script>\n");
}

} // namespace derview
