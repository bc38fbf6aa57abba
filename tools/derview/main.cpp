#include <cstdio>
#include <exception>
#include <optional>

#include "arguments.h"
#include "session.h"

int main(int argc, char** argv) {
    try {
        derview::Arguments arguments;
        if (const std::optional<int> status = derview::parseArguments(argc, argv, arguments)) {
            return *status;
        }
        return derview::runSession(arguments);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "derview: %s\n", failure.what());
        return derview::SomeFailed;
    }
}
