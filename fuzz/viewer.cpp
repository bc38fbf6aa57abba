#include <fingerprint.h>
#include <format.h>
#include <session.h>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>

#include <brevantis/asn1/asn1data/describe.h>

#include "entry.h"

// Files as the viewer is given them: the first octets are its command line. What it prints goes
// where the fuzzer's output does, so this target is run with -close_fd_mask=3.

namespace {

using fuzz::Input;

/// A file in memory.
class File {
public:
    File(const char* octets, std::size_t size) : descriptor_(memfd_create("input", 0)) {
        if (descriptor_ < 0 || write(descriptor_, octets, size) != static_cast<ssize_t>(size)) {
            throw std::system_error(errno, std::generic_category());
        }
    }
    ~File() { close(descriptor_); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

/// Options that go together.
derview::Arguments argumentsOf(Input& input) {
    derview::Arguments arguments;
    const auto formats = derview::allFormats();
    arguments.format = &formats[input.below(formats.size())];
    arguments.input = static_cast<derview::InputForm>(input.below(7));
    const unsigned char more = input.octet();
    arguments.offsets = (more & 1u) != 0;
    arguments.full = (more & 2u) != 0;
    arguments.lines = (more & 4u) != 0;
    arguments.color = (more & 8u) != 0 ? derview::ColorChoice::Always : derview::ColorChoice::Never;
    arguments.width = (more & 16u) != 0 ? 20 : 80;
    if ((more & 32u) != 0) {
        arguments.type = &asn1data::allTypes()[input.below(asn1data::allTypes().size())];
    }
    switch (input.below(7)) {
    case 0:
        arguments.check = true;
        break;
    case 1:
        arguments.lint = true;
        break;
    case 2:
        arguments.diff = true;
        break;
    case 3:
        arguments.path.emplace();
        arguments.raw = (more & 64u) != 0;
        arguments.contents = arguments.raw && (more & 128u) != 0;
        for (unsigned length = input.octet(); length-- > 0;) {
            *arguments.path += static_cast<char>(input.octet());
        }
        break;
    case 4:
        arguments.atOffset = input.octet();
        arguments.fingerprint = derview::hasFingerprints();
        break;
    default:
        break;
    }
    return arguments;
}

} // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Input input(data, size);
    derview::Arguments arguments = argumentsOf(input);
    const std::size_t first =
        arguments.diff ? std::min<std::size_t>(input.number(), input.size()) : input.size();
    const std::string text = input.text();
    const File one(text.data(), first);
    const File other(text.data() + first, text.size() - first);
    arguments.files = {one.path()};
    if (arguments.diff) {
        arguments.files.push_back(other.path());
    }
    const int status = derview::runSession(arguments);
    if (status != derview::AllGood && status != derview::SomeFailed) {
        fuzz::report("another status than those that are told");
    }
    return 0;
}
