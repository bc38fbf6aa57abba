#include "session.h"

#include <optional>
#include <string>
#include <system_error>

#include <brevantis/asn1/asn1published.h>

#include "checker.h"
#include "differ.h"
#include "escape.h"
#include "input_reader.h"
#include "progress.h"
#include "type_printer.h"
#include "viewer.h"

namespace derview {

namespace {

/// Goes through the files and does with each message what is asked for.
class Session {
public:
    explicit Session(const Arguments& arguments)
        : arguments_(arguments), output_(usesColor(arguments.color)),
          // A tree that scrolls by on the same terminal tells by itself how far it has come.
          progress_(isTerminal(2) && (arguments.check || arguments.lint || !isTerminal(1))),
          diagnostics_(output_, progress_),
          width_(arguments.width != 0 ? arguments.width : terminalWidth()),
          checker_(output_, progress_, arguments.check, arguments.lint),
          viewer_({output_, diagnostics_, arguments, width_}, progress_) {}

    int run();

private:
    bool checks() const { return arguments_.check || arguments_.lint; }
    /// Whether messages of no known type are shown.
    bool showsPlain() const {
        return !checks() && !arguments_.diff && !arguments_.path && !arguments_.atOffset &&
               arguments_.format->showsPlain;
    }
    void readFile(const std::string& path);
    /// The next message, to be read as the arguments tell.
    std::optional<Message> next(InputReader& reader) const;
    void take(const Message& message);
    /// @return without a type when there is none, which has been told then
    Recognition recogniseOrTell(const Message& message);
    void diff();
    /// Opens a file.
    /// @return whether it can be read; if not, that has been told
    bool open(std::optional<InputReader>& reader, const std::string& path);
    void tellTrailing(const DiffSide& side);
    /// Tells why there is nothing to show or to check.
    void tellProblem(const std::string& place, const std::string& problem);
    void tell(const std::string& text);

    const Arguments& arguments_;
    Output output_;
    Progress progress_;
    Diagnostics diagnostics_;
    std::size_t width_;
    Checker checker_;
    Viewer viewer_;
    bool good_ = true;
};

/// Tells something that no message can be shown for.
void Session::tell(const std::string& text) {
    good_ = false;
    diagnostics_.tell(text);
}

void Session::tellProblem(const std::string& place, const std::string& problem) {
    good_ = false;
    if (checks()) {
        checker_.countFailure(place, problem);
    } else {
        tell(place + ": " + problem);
    }
}

Recognition Session::recogniseOrTell(const Message& message) {
    std::string problem = message.problem;
    if (problem.empty()) {
        Recognition recognition =
            arguments_.type != nullptr ? Recognition{arguments_.type, "as told"}
            : message.type != nullptr
                ? Recognition{message.type, "as its JSON tells"}
                : recognise(message.shown, message.label, message.missing() != 0);
        if (recognition.type != nullptr || showsPlain()) {
            return recognition;
        }
        problem = recognition.reason + "; --type tells what it is";
    }
    tellProblem(message.place, problem);
    return {};
}

void Session::take(const Message& message) {
    const Recognition recognition = recogniseOrTell(message);
    if (recognition.type == nullptr && recognition.reason.empty()) {
        return;
    }
    progress_.begin(message);
    good_ = (checks() ? checker_.check(message, *recognition.type)
                      : viewer_.show(message, recognition)) &&
            good_;
}

bool Session::open(std::optional<InputReader>& reader, const std::string& path) {
    try {
        reader.emplace(path, arguments_);
        return true;
    } catch (const std::system_error& error) {
        tellProblem(escapeName(path), error.code().message());
        return false;
    } catch (const std::runtime_error& error) {
        tellProblem(path == "-" ? "standard input" : escapeName(path), error.what());
        return false;
    }
}

std::optional<Message> Session::next(InputReader& reader) const {
    std::optional<Message> message = reader.next();
    if (message) {
        message->policy = arguments_.policy();
    }
    return message;
}

void Session::readFile(const std::string& path) {
    std::optional<InputReader> reader;
    if (!open(reader, path)) {
        return;
    }
    bool found = false;
    while (const std::optional<Message> message = next(*reader)) {
        if (arguments_.limit != 0 && message->number > arguments_.limit) {
            break;
        }
        if (output_.failed()) {
            return;
        }
        const bool wanted = arguments_.message == 0 || message->number == arguments_.message;
        if (wanted) {
            take(*message);
            found = true;
        }
    }
    if (!found) {
        tellProblem(escapeName(path), "there is no message " + std::to_string(arguments_.message));
    }
}

void Session::tellTrailing(const DiffSide& side) {
    const std::size_t left = side.message.leftover(side.decoded).count;
    if (left != 0) {
        tell(side.message.place + ": " + trailingText(left));
    }
}

void Session::diff() {
    std::optional<InputReader> one;
    std::optional<InputReader> other;
    const bool hasOne = open(one, arguments_.files[0]);
    if (!open(other, arguments_.files[1]) || !hasOne) {
        return;
    }
    for (;;) {
        const std::optional<Message> left = next(*one);
        const std::optional<Message> right = next(*other);
        if (!left || !right) {
            if (left || right) {
                tell((left ? left : right)->place + " and what follows it has no counterpart");
            }
            return;
        }
        const Recognition leftType = recogniseOrTell(*left);
        const Recognition rightType = recogniseOrTell(*right);
        if (leftType.type == nullptr || rightType.type == nullptr) {
            continue;
        }
        const DiffSide leftSide{*left, *leftType.type, decoderResult(*left, *leftType.type)};
        const DiffSide rightSide{*right, *rightType.type, decoderResult(*right, *rightType.type)};
        good_ = diffMessages(output_, leftSide, rightSide, width_, arguments_.names) && good_;
        tellTrailing(leftSide);
        tellTrailing(rightSide);
    }
}

int Session::run() {
    if (arguments_.listTypes) {
        if (arguments_.schema != nullptr) {
            listTypes(output_, arguments_.schema->types());
        } else {
            listTypes(output_, asn1data::allTypes());
            listTypes(output_, asn1published::allTypes());
        }
    } else if (arguments_.describe != nullptr) {
        describeType(output_, *arguments_.describe);
    } else if (arguments_.diff) {
        diff();
    } else {
        for (const std::string& path : arguments_.files) {
            readFile(path);
        }
        if (checks()) {
            checker_.writeTotal();
        } else {
            viewer_.finish();
        }
    }
    progress_.clear();
    output_.flush();
    if (output_.failed()) {
        tell("derview: the output cannot be written");
    }
    return good_ ? AllGood : SomeFailed;
}

} // namespace

int runSession(const Arguments& arguments) {
    return Session(arguments).run();
}

} // namespace derview
