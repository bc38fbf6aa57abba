#include "arguments.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>

#include <CLI/CLI.hpp>

#include <brevantis/asn1/text/types.h>

#include "escape.h"
#include "file_octets.h"
#include "fingerprint.h"
#include "format.h"
#include "nearest.h"

namespace derview {

namespace {

using asn1data::TypeDescription;

constexpr const char* Purpose =
    "Shows, checks and compares ASN.1 messages of public-key infrastructure: certificates, CRLs,\n"
    "signed and encrypted messages, requests, responses, keys.";

constexpr const char* Remarks =
    "Files hold DER or BER, PEM, base64 or hexadecimal digits, one message or several.\n"
    "Exit status: 0 all good, 1 some input failed, 2 wrong usage.";

/// A format that an option of its own stands for.
const FormatDescription* formatNamed(std::string_view name) {
    const auto formats = allFormats();
    return &*std::find_if(formats.begin(), formats.end(),
                          [&](const FormatDescription& format) { return format.name == name; });
}

template <class Value>
using Choices = std::vector<std::pair<std::string, Value>>;

/// An option that takes one of some words.
template <class Value>
void addChoice(CLI::App& app, const std::string& name, Value& value, const Choices<Value>& choices,
               const std::string& description) {
    std::string words;
    for (const auto& choice : choices) {
        words += (words.empty() ? "" : "|") + choice.first;
    }
    app.add_option_function<std::string>(
           name,
           [choices, words, name, &value](const std::string& word) {
               for (const auto& choice : choices) {
                   if (choice.first == word) {
                       value = choice.second;
                       return;
                   }
               }
               std::vector<std::string> known;
               for (const auto& choice : choices) {
                   known.push_back(choice.first);
               }
               throw CLI::ValidationError(name, "'" + word + "' is none of " + words +
                                                    didYouMean(word, known));
           },
           description)
        ->type_name(words);
}

std::vector<std::string> typeNames(const Arguments& arguments) {
    std::vector<std::string> names;
    for (const TypeDescription* const type : asn1data::allTypes()) {
        names.emplace_back(type->name);
    }
    if (arguments.schema != nullptr) {
        for (const TypeDescription* const type : arguments.schema->types()) {
            names.emplace_back(type->name);
        }
    }
    return names;
}

/// An option that takes the name of a type: of the modules given, or of the catalogue.
void addType(CLI::App& app, const std::string& name, const TypeDescription*& type,
             const Arguments& arguments, const std::string& description) {
    app.add_option_function<std::string>(
           name,
           [name, &type, &arguments](const std::string& word) {
               type = arguments.schema != nullptr ? arguments.schema->findType(word) : nullptr;
               type = type != nullptr ? type : findType(word.c_str());
               if (type == nullptr) {
                   const std::string near = didYouMean(word, typeNames(arguments));
                   throw CLI::ValidationError(
                       name, "'" + escapeName(word) + "' is no type" +
                                 (near.empty() ? "; --list-types tells them" : near));
               }
           },
           description)
        ->type_name("TYPE");
}

/// The modules of a file, or of all files of modules in a folder.
void addModules(const std::string& path, std::vector<SchemaText>& texts) {
    namespace fs = std::filesystem;
    std::vector<std::string> paths = {path};
    std::error_code none;
    if (fs::is_directory(path, none)) {
        paths.clear();
        for (const auto& entry : fs::directory_iterator(path)) {
            const fs::path ending = entry.path().extension();
            if (ending == ".asn1" || ending == ".asn") {
                paths.push_back(entry.path().string());
            }
        }
        std::sort(paths.begin(), paths.end());
    }
    for (const std::string& each : paths) {
        const FileOctets file(each);
        const Octets octets = file.octets();
        texts.push_back({each, std::string(octets.begin(), octets.end())});
    }
}

/// Reads modules. What is wrong with them is told on standard error.
void readModules(const std::vector<std::string>& paths, Arguments& arguments) {
    std::vector<SchemaText> texts;
    for (const std::string& path : paths) {
        try {
            addModules(path, texts);
        } catch (const std::system_error& error) {
            throw CLI::ValidationError("--schema", "'" + path + "': " + error.code().message());
        }
    }
    std::vector<SchemaMessage> messages;
    arguments.schema = readSchema(texts, messages);
    if (arguments.schema == nullptr) {
        for (const SchemaMessage& message : messages) {
            std::fprintf(stderr, "%s\n", escapeName(messageText(message)).c_str());
        }
        throw CLI::ValidationError("--schema", "the modules cannot be read");
    }
    for (const asn1data::IdentifierDescription& each : arguments.schema->identifiers()) {
        arguments.names.add(*each.identifier, each.name);
    }
}

/// Adds the names of a file.
void readNames(const std::string& path, IdentifierNames& names) {
    std::string problem;
    try {
        const FileOctets file(path);
        const void* const text = file.octets().data();
        problem = names.read({static_cast<const char*>(text), file.octets().size()});
    } catch (const std::system_error& error) {
        problem = error.code().message();
    }
    if (!problem.empty()) {
        throw CLI::ValidationError("--oids", "'" + path + "': " + problem);
    }
}

/// @return what is wrong with the number of a message; empty when nothing is
std::string checkNumber(const std::string& word) {
    const bool isNumber = word.find_first_not_of("0123456789") == std::string::npos &&
                          word.find_first_not_of('0') != std::string::npos;
    return isNumber ? "" : "'" + word + "' is no number of a message; they count from 1";
}

void addOptions(CLI::App& app, Arguments& arguments) {
    app.add_option("FILE", arguments.files, "Files to read; none or \"-\" is standard input");
    // In front of the options that go by it: they are looked at in this order.
    app.add_option_function<std::vector<std::string>>(
           "--schema",
           [&arguments](const std::vector<std::string>& paths) { readModules(paths, arguments); },
           "ASN.1 modules with types of one's own, or a folder of them")
        ->type_name("FILE");
    addType(app, "--type", arguments.type, arguments,
            "What the messages are; recognised if left out");
    addChoice<InputForm>(app, "--input", arguments.input,
                         {{"auto", InputForm::Auto},
                          {"der", InputForm::Der},
                          {"pem", InputForm::Pem},
                          {"base64", InputForm::Base64},
                          {"hex", InputForm::Hex},
                          {"mail", InputForm::Mail},
                          {"json", InputForm::Json}},
                         "How the files hold them");
    app.add_option("--message", arguments.message, "Look at one message of each file only")
        ->type_name("NUMBER")
        ->check(CLI::Validator(checkNumber, ""));
    app.add_option("--limit", arguments.limit, "Look at so many messages of each file at most")
        ->type_name("COUNT")
        ->check(CLI::PositiveNumber);
    Choices<const FormatDescription*> formats;
    for (const FormatDescription& format : allFormats()) {
        formats.emplace_back(format.name, &format);
    }
    arguments.format = formats.front().second;
    addChoice(app, "--format", arguments.format, formats,
              "How they are shown; der and pem encode them again");
    app.add_flag_callback(
        "--list", [&arguments] { arguments.format = formatNamed("list"); },
        "A line a message, as --format list");
    if (hasFingerprints()) {
        app.add_flag("--fingerprint", arguments.fingerprint, "Tree and list: SHA-256 of a message");
    }
    app.add_option_function<std::vector<std::string>>(
           "--oids",
           [&arguments](const std::vector<std::string>& paths) {
               for (const std::string& path : paths) {
                   readNames(path, arguments.names);
               }
           },
           "Names of identifiers, as dumpasn1 is told them")
        ->type_name("FILE")
        ->expected(1)
        ->allow_extra_args(false)
        ->take_all();
    app.add_flag("--lines", arguments.lines, "JSON: one message a line");
    app.add_flag("--offsets", arguments.offsets,
                 "Tree: offset, octets of header and of contents in front of each line");
    app.add_flag("--full", arguments.full, "Tree: cut no value");
    app.add_option("--at", arguments.path, "Show one element, as tbsCertificate.extensions[0]")
        ->type_name("PATH");
    app.add_flag("--raw", arguments.raw, "With --at: write the element's octets");
    app.add_flag("--contents", arguments.contents, "With --raw: without the element's header");
    app.add_option("--at-offset", arguments.atOffset, "Tell the path of the octet at an offset")
        ->type_name("OFFSET");
    app.add_flag("--check", arguments.check, "Decode, encode again and compare; a line a message");
    app.add_flag("--lint", arguments.lint, "Tell what is not DER");
    app.add_flag("--tolerant", arguments.tolerant,
                 "Read on where open values do not decode or sizes are not kept");
    app.add_flag("--exact", arguments.exact, "Refuse what decoding changes");
    app.add_flag("--der", arguments.der, "Refuse what is not DER");
    app.add_flag("--diff", arguments.diff, "Compare the messages of two files, field by field");
    app.add_flag("--list-types", arguments.listTypes, "Names of all types");
    addType(app, "--describe", arguments.describe, arguments, "The ASN.1 of a type");
    addChoice<ColorChoice>(app, "--color", arguments.color,
                           {{"auto", ColorChoice::Auto},
                            {"always", ColorChoice::Always},
                            {"never", ColorChoice::Never}},
                           "Whether to use colours");
    app.add_option("--width", arguments.width, "Columns; those of the terminal, or 80")
        ->type_name("COLUMNS")
        ->check(CLI::Range(20, 10000));
}

/// @return what does not go together; empty when everything does
std::string contradiction(const Arguments& arguments) {
    const int modes = (arguments.check || arguments.lint ? 1 : 0) + (arguments.diff ? 1 : 0) +
                      (arguments.path ? 1 : 0) + (arguments.atOffset ? 1 : 0) +
                      (arguments.listTypes ? 1 : 0) + (arguments.describe != nullptr ? 1 : 0);
    if (modes > 1) {
        return "--check and --lint, --at, --at-offset, --diff, --list-types and --describe exclude "
               "each other";
    }
    if (arguments.schema != nullptr && arguments.type == nullptr && !arguments.listTypes &&
        arguments.describe == nullptr) {
        return "--schema needs --type, --list-types or --describe";
    }
    if ((arguments.listTypes || arguments.describe != nullptr) && !arguments.files.empty()) {
        return "--list-types and --describe take no files";
    }
    if (arguments.tolerant && (arguments.exact || arguments.der)) {
        return "--tolerant does not go with --exact and --der";
    }
    if (arguments.raw && !arguments.path) {
        return "--raw needs --at";
    }
    if (arguments.contents && !arguments.raw) {
        return "--contents needs --raw";
    }
    if (arguments.diff && arguments.files.size() != 2) {
        return "--diff needs two files";
    }
    if (arguments.diff && (arguments.message != 0 || arguments.limit != 0)) {
        return "--message and --limit do not go with --diff";
    }
    const std::string format = std::string("--format ") + arguments.format->name;
    if (arguments.format->encodes && modes != 0) {
        return format + " encodes whole messages";
    }
    const bool writesOthers = arguments.raw || (modes != 0 && !arguments.path);
    if (!arguments.format->takesLayout && writesOthers) {
        return format + " does not go with --raw, --check, --lint, --at-offset, --diff, "
                        "--list-types and --describe";
    }
    if ((arguments.offsets || arguments.full) && (writesOthers || !arguments.format->takesLayout)) {
        return "--offsets and --full are for the tree";
    }
    if (arguments.lines && !arguments.format->takesLines) {
        return "--lines needs --format json";
    }
    const bool octets = arguments.raw || arguments.format->isOctets;
    return octets && isTerminal(1) ? "octets are not written to a terminal" : "";
}

} // namespace

namespace {

/// What an option that there is none of may have been meant to be.
std::string hintFor(const CLI::App& app, int argc, char** argv) {
    std::vector<std::string> known;
    for (const CLI::Option* const option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            known.push_back("--" + name);
        }
    }
    for (int i = 1; i < argc; ++i) {
        const std::string word =
            std::string(argv[i]).substr(0, std::string_view(argv[i]).find('='));
        if (word.rfind("--", 0) == 0 && word.size() > 2 &&
            std::find(known.begin(), known.end(), word) == known.end()) {
            return didYouMean(word, known);
        }
    }
    return "";
}

} // namespace

std::optional<int> parseArguments(int argc, char** argv, Arguments& arguments) {
    CLI::App app(Purpose, "derview");
    app.footer(Remarks);
    app.get_formatter()->column_width(26);
    app.set_version_flag("--version", "derview " DERVIEW_VERSION);
    addOptions(app, arguments);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {
        const int status = app.exit(success);
        if (std::cout.flush()) {
            return status;
        }
        std::fputs("derview: the output cannot be written\n", stderr);
        return SomeFailed;
    } catch (const CLI::ParseError& error) {
        std::fprintf(stderr, "derview: %s%s\nderview --help tells more\n",
                     escapeName(error.what()).c_str(), hintFor(app, argc, argv).c_str());
        return BadUsage;
    }
    if (const std::string problem = contradiction(arguments); !problem.empty()) {
        std::fprintf(stderr, "derview: %s\n", problem.c_str());
        return BadUsage;
    }
    if (arguments.files.empty()) {
        arguments.files.emplace_back("-");
    }
    return std::nullopt;
}

} // namespace derview
