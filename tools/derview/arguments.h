#ifndef DERVIEW_ARGUMENTS_H
#define DERVIEW_ARGUMENTS_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/asn1data/reading_policy.h>
#include <brevantis/asn1/text/message.h>
#include <brevantis/asn1/text/names.h>
#include <brevantis/asn1/text/schema.h>

#include "octets.h"
#include "terminal.h"

namespace derview {

struct FormatDescription;

/// What a command line asks for.
struct Arguments {
    std::vector<std::string> files; ///< "-" is standard input; never empty
    InputForm input = InputForm::Auto;
    /// Types of one's own; null without.
    std::shared_ptr<const Schema> schema;
    const asn1data::TypeDescription* type = nullptr; ///< null: recognised
    const FormatDescription* format = nullptr;       ///< how messages are written; never null
    bool lines = false;
    bool offsets = false;
    bool full = false;
    std::size_t message = 0;         ///< number of the one in each file to look at; 0: all
    std::optional<std::string> path; ///< of the element to show
    bool raw = false;
    bool contents = false;               ///< with `raw`: without header
    std::optional<std::size_t> atOffset; ///< of the octet to find the path of
    std::size_t limit = 0;               ///< messages of each file to look at; 0: all
    bool fingerprint = false;
    bool check = false;
    bool lint = false;
    bool tolerant = false;
    bool exact = false;
    bool der = false;
    bool diff = false;
    bool listTypes = false;
    const asn1data::TypeDescription* describe = nullptr;
    ColorChoice color = ColorChoice::Auto;
    std::size_t width = 0; ///< columns; 0: as wide as the terminal
    IdentifierNames names; ///< of identifiers

    /// How strictly messages are read.
    asn1data::ReadingPolicy policy() const {
        return (tolerant ? ASN1F_TOLERATE_OPEN_VALUES | ASN1F_TOLERATE_SIZES : 0) |
               (exact ? ASN1F_EXACT : 0) | (der ? ASN1F_DER : 0);
    }
};

/// Exit statuses.
enum : int { AllGood = 0, SomeFailed = 1, BadUsage = 2 };

/// Reads a command line. What is wrong with it is told on standard error; what it asks for and can
/// be answered at once (--help, --version) on standard output.
/// @param arguments receives what it asks for
/// @return nothing, or the status to end with
std::optional<int> parseArguments(int argc, char** argv, Arguments& arguments);

} // namespace derview

#endif
