#include "terminal.h"

#include <cstdlib>
#include <string_view>

#include <sys/ioctl.h>
#include <unistd.h>

namespace derview {

bool isTerminal(int descriptor) {
    return isatty(descriptor) == 1;
}

bool usesColor(ColorChoice choice) {
    if (choice != ColorChoice::Auto) {
        return choice == ColorChoice::Always;
    }
    const char* const refusal = std::getenv("NO_COLOR");
    const char* const kind = std::getenv("TERM");
    return isTerminal(STDOUT_FILENO) && (refusal == nullptr || *refusal == '\0') &&
           (kind == nullptr || std::string_view(kind) != "dumb");
}

std::size_t terminalWidth() {
    constexpr std::size_t usual = 80;
    winsize size{};
    if (!isTerminal(STDOUT_FILENO) || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) {
        return usual;
    }
    return size.ws_col != 0 ? size.ws_col : usual;
}

} // namespace derview
