#include "published.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>

#include "comparison.h"
#include "number_text.h"

namespace bench {

namespace {

struct PublishedLine {
    const char* sample;
    const char* message; ///< what the sample is called; empty where the line above tells it
    const char* what;
    Task task;
};

constexpr PublishedLine lines[] = {
    {"certificate", "certificate, 10 extensions", "decode", Task::DecodeAll},
    {"certificate", "", "and encode", Task::RecodeAll},
    {"CRL, 10,000 entries", "CRL, 10,000 entries", "decode", Task::DecodeAll},
    {"CRL, 10,000 entries", "", "and encode", Task::RecodeAll},
    {"CMS, 1 KiB", "CMS, 1 KiB, 3 certificates", "decode", Task::DecodeAll},
    {"CMS, 1 KiB", "", "and encode", Task::RecodeAll},
    {"CMS, 1 MiB, indefinite lengths", "CMS, 1 MiB, indefinite lengths", "decode", Task::DecodeAll},
    {"CMS, 1 MiB, indefinite lengths", "", "and encode", Task::RecodeAll},
    {"OCSP response", "OCSP response", "decode", Task::DecodeAll},
    {"OCSP response", "", "and encode", Task::RecodeAll},
    {"time-stamp response", "time-stamp response", "decode", Task::DecodeAll},
    {"time-stamp response", "", "and encode", Task::RecodeAll},
    {"PKCS #10", "PKCS #10 request", "decode", Task::DecodeAll},
    {"PKCS #10", "", "and encode", Task::RecodeAll},
    {"name", "name, as an object", "decode, text", Task::DecodeText},
    {"extensions", "extensions, as objects", "decode", Task::DecodeAll},
    {"alternative names", "20 host names, as objects", "decode", Task::Decode}};

/// Another library in the order of the table.
struct Column {
    const char* name;
    const char* title; ///< null for the name and the version
    const char* color; ///< that stands out from white and from black; null: not in the chart
    const char* mark;  ///< a path around 0, 0
};

constexpr Column columns[] = {
    {arenaName, "with an arena", nullptr, nullptr},
    {"OpenSSL", nullptr, "#d5483f", "M-5,0a5,5 0 1,0 10,0a5,5 0 1,0 -10,0z"},
    {"GnuTLS", nullptr, "#2f86d6", "M-4.5,-4.5h9v9h-9z"},
    {"libtasn1", nullptr, "#1f9bb0", "M0,-6l6,6l-6,6l-6,-6z"},
    {"Botan", nullptr, "#2e9e5b", "M0,-5.5l6,10.5h-12z"},
    {"NSS", nullptr, "#d9861a", "M0,5.5l6,-10.5h-12z"},
    {"mbed TLS", nullptr, "#a45fc4", "M-2,-6h4v4h4v4h-4v4h-4v-4h-4v-4h4z"}};

const Library* libraryOf(const Column& column) {
    for (const Library* library : libraries()) {
        if (library->name() == column.name) {
            return library;
        }
    }
    return nullptr;
}

/// Without what changes every few weeks: "OpenSSL 3.0".
std::string titleOf(const Column& column) {
    if (column.title != nullptr) {
        return column.title;
    }
    const Library* library = libraryOf(column);
    const std::string version = library != nullptr ? library->version() : "";
    return std::string(column.name) + ' ' +
           version.substr(0, version.find('.', version.find('.') + 1));
}

Rows rowsOf(const std::vector<Measurement>& all, const PublishedLine& line) {
    for (const Sample* sample : samplesOf(all)) {
        if (sample->name == line.sample) {
            return bench::rowsOf(all, *sample);
        }
    }
    return {};
}

const Measurement* ownOf(const Rows& rows, const PublishedLine& line) {
    const Measurement* own = fullest(rows, *ours(), line.task);
    return own != nullptr && own->time() > 0 ? own : nullptr;
}

/// @return 0 when the library does nothing of the kind
double ratioOf(const Rows& rows, const PublishedLine& line, const Column& column) {
    const Library* library = libraryOf(column);
    const Measurement* other = library != nullptr ? fullest(rows, *library, line.task) : nullptr;
    return other != nullptr ? other->time() / ownOf(rows, line)->time() : 0;
}

std::string twoDecimals(double number) {
    const std::string text = ratioText(number);
    return text.substr(0, text.length() - 1);
}

// ---- the chart ----------------------------------------------------------------------------------

constexpr double left = 300;
constexpr double plotWidth = 470;
constexpr double width = 880;
constexpr double top = 96;
constexpr double lineHeight = 22;
constexpr double gap = 8; ///< above a message

constexpr const char* Style = R"(<style>
text { font: 13px -apple-system, "Segoe UI", "DejaVu Sans", Helvetica, Arial, sans-serif; fill: #1f2328 }
.title { font-size: 15px; font-weight: 600 }
.quiet { fill: #59636e }
.paper { fill: #ffffff }
.grid { stroke: #d8dee4; stroke-width: 1 }
.here { stroke: #1f2328; stroke-width: 2 }
.mark { stroke: #ffffff; stroke-width: 1 }
@media (prefers-color-scheme: dark) {
text { fill: #e6edf3 }
.quiet { fill: #9198a1 }
.paper { fill: #0d1117 }
.grid { stroke: #30363d }
.here { stroke: #e6edf3 }
.mark { stroke: #0d1117 }
}
</style>
)";

std::string coordinate(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", number);
    return text;
}

void writeText(std::ostream& out, double x, double y, const std::string& text, const char* anchor,
               const char* style = "") {
    out << "<text x=\"" << coordinate(x) << "\" y=\"" << coordinate(y) << "\" text-anchor=\""
        << anchor << "\" class=\"" << style << "\">" << text << "</text>\n";
}

void writeMark(std::ostream& out, double x, double y, const Column& column,
               const std::string& tip) {
    out << "<path class=\"mark\" transform=\"translate(" << coordinate(x) << ',' << coordinate(y)
        << ")\" d=\"" << column.mark << "\" fill=\"" << column.color << "\"><title>" << tip
        << "</title></path>\n";
}

/// A scale of powers of two.
struct Scale {
    int lowest = 0;
    int highest = 0;

    void take(double ratio) {
        if (ratio > 0) {
            lowest = std::min(lowest, static_cast<int>(std::floor(std::log2(ratio))));
            highest = std::max(highest, static_cast<int>(std::ceil(std::log2(ratio))));
        }
    }
    double place(double ratio) const {
        return left + plotWidth * (std::log2(ratio) - lowest) / (highest - lowest);
    }
};

void writeLegend(std::ostream& out) {
    double x = 24;
    for (const Column& column : columns) {
        if (column.color != nullptr && libraryOf(column) != nullptr) {
            const std::string title = titleOf(column);
            writeMark(out, x, 54, column, title);
            writeText(out, x + 12, 58.5, title, "start");
            x += 36 + 7.4 * static_cast<double>(title.length());
        }
    }
}

/// The marks of a line. Of two that would hide each other the slower one goes lower.
void writeMarks(std::ostream& out, const Scale& scale, const Rows& rows, const PublishedLine& line,
                double middle) {
    std::vector<std::pair<double, const Column*>> ratios;
    for (const Column& column : columns) {
        const double ratio = column.color != nullptr ? ratioOf(rows, line, column) : 0;
        if (ratio > 0) {
            ratios.emplace_back(ratio, &column);
        }
    }
    std::sort(ratios.begin(), ratios.end());
    double last = 0;
    bool lower = false;
    for (const auto& [ratio, column] : ratios) {
        const double x = scale.place(ratio);
        lower = x - last < 10 && !lower;
        last = x;
        writeMark(out, x, middle + (lower ? 6 : 0), *column,
                  titleOf(*column) + ": " + twoDecimals(ratio));
    }
}

void writeGrid(std::ostream& out, const Scale& scale, double bottom) {
    for (int power = scale.lowest; power <= scale.highest; ++power) {
        const std::string x = coordinate(scale.place(std::exp2(power)));
        out << "<line class=\"" << (power == 0 ? "here" : "grid") << "\" x1=\"" << x << "\" x2=\""
            << x << "\" y1=\"" << coordinate(top) << "\" y2=\"" << coordinate(bottom) << "\"/>\n";
        const std::string times = std::to_string(1 << std::abs(power));
        const std::string text = power < 0 ? "1/" + times : times;
        writeText(out, scale.place(std::exp2(power)), top - 8, text + "×", "middle", "quiet");
    }
}

} // namespace

bool isComplete(const std::vector<Measurement>& all) {
    return std::all_of(std::begin(lines), std::end(lines), [&](const PublishedLine& line) {
        return ownOf(rowsOf(all, line), line) != nullptr;
    });
}

void writePublishedTable(std::ostream& out, const std::vector<Measurement>& all) {
    out << "| Message | Task | Here |";
    for (const Column& column : columns) {
        out << ' ' << titleOf(column) << " |";
    }
    out << "\n|---|---|---:|";
    for ([[maybe_unused]] const Column& column : columns) {
        out << "---:|";
    }
    out << '\n';
    for (const PublishedLine& line : lines) {
        const Rows rows = rowsOf(all, line);
        out << "| " << line.message << (*line.message != '\0' ? " | " : "| ") << line.what << " | "
            << timeText(ownOf(rows, line)->time()) << " |";
        for (const Column& column : columns) {
            const double ratio = ratioOf(rows, line, column);
            out << (ratio > 0 ? ' ' + twoDecimals(ratio) + " |" : " |");
        }
        out << '\n';
    }
}

void writeChart(std::ostream& out, const std::vector<Measurement>& all) {
    Scale scale;
    double bottom = top;
    for (const PublishedLine& line : lines) {
        bottom += lineHeight + (*line.message != '\0' ? gap : 0);
        for (const Column& column : columns) {
            scale.take(column.color != nullptr ? ratioOf(rowsOf(all, line), line, column) : 0);
        }
    }
    const int height = static_cast<int>(bottom) + 16;
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << width << ' ' << height
        << "\" width=\"" << width << "\" height=\"" << height
        << "\" role=\"img\">\n<title>How many times as long as " << ourName
        << " other libraries take</title>\n"
        << Style << "<rect class=\"paper\" width=\"100%\" height=\"100%\"/>\n";
    writeText(out, 18, 28, "How many times as long as " + std::string(ourName) + " others take",
              "start", "title");
    writeText(out, width - 18, 28, "logarithmic scale; to the right of 1× they are slower", "end",
              "quiet");
    writeLegend(out);
    writeText(out, width - 18, top - 8, "here", "end", "quiet");
    writeGrid(out, scale, bottom);
    double y = top;
    for (const PublishedLine& line : lines) {
        y += lineHeight + (*line.message != '\0' ? gap : 0);
        const double middle = y - lineHeight / 2;
        const Rows rows = rowsOf(all, line);
        writeText(out, 18, middle + 4.5, line.message, "start");
        writeText(out, left - 16, middle + 4.5, line.what, "end", "quiet");
        writeText(out, width - 18, middle + 4.5, timeText(ownOf(rows, line)->time()), "end");
        writeMarks(out, scale, rows, line, middle);
    }
    out << "</svg>\n";
}

} // namespace bench
