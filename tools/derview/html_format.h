#ifndef DERVIEW_HTML_FORMAT_H
#define DERVIEW_HTML_FORMAT_H

#include <string>
#include <unordered_map>
#include <vector>

#include "tree_format.h"

namespace derview {

/// The lines of a tree as the page takes them: a row each, its texts by their numbers.
class PageRows : public TreeLines {
public:
    explicit PageRows(Output& output) : TreeLines(output, Width, true, false) {}

    std::size_t begin(std::size_t depth, const TreePlace& place) override;
    std::size_t name(std::string_view name, std::size_t columns, std::size_t column) override;
    std::size_t prefix(std::string_view text, std::size_t column) override;
    void text(Style style, std::string_view text, std::size_t column) override;
    void value(ValueKind kind, const ValueText& value, std::size_t column) override;
    void octets(Octets octets, std::size_t column) override;
    void failure(std::size_t depth, const std::string& text) override;
    void note(const std::string& text) override;
    std::size_t findRoom(std::size_t column, std::size_t columns) override;

    void clear();
    const std::vector<std::string>& texts() const { return texts_; }
    const std::string& rows() const { return rows_; }

private:
    enum : std::size_t { Width = 120 };
    void end(char kind, std::string_view text);
    std::size_t numberOf(std::string_view text);

    std::unordered_map<std::string, std::size_t> numbers_;
    std::vector<std::string> texts_;
    std::string rows_;
    std::string name_;
    std::string value_;
    std::size_t offset_ = 0; ///< of the row before
};

/// Writes one page with all messages: their trees beside their octets.
class HtmlFormat : public TreeFormat {
public:
    explicit HtmlFormat(const FormatContext& context)
        : TreeFormat(context, rows_), rows_(context.output) {}

    bool end() override;
    void finish() override;

    /// Octets of a message at most.
    static constexpr std::size_t Largest = std::size_t{16} << 20;

protected:
    void writeHeading() override;

private:
    void beginPage();

    PageRows rows_;
    bool begun_ = false;
    std::string title_;
};

} // namespace derview

#endif
