#include <cstdio>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/text/json_writer.h>

// A name of no parts as JSON.
int main() {
    const unsigned char message[] = {0x30, 0x00};
    asn1text::TextSink sink;
    asn1text::writeJson(*asn1data::findType("Name"), {message, sizeof message}, sink,
                        asn1text::JsonLayout::OneLine);
    std::fputs(sink.whole.c_str(), stdout);
    return 0;
}
