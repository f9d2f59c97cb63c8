// uql: evaluates queries from the command line.

#include <OrvUQL/OrvString.h>

#include "Command.h"

// The run-time library of mingw-w64 may otherwise take an argument such as `2 * 3` for a pattern of file names.
extern "C" int _dowildcard;
int _dowildcard = 0;

/// What is no character, since half of a surrogate pair is missing, becomes U+FFFD.
int wmain(int argc, wchar_t** argv) {
    return OrvUQL::Tool::RunCommand([&] {
        std::vector<std::string> arguments;
        for (int place = 1; place < argc; ++place) {
            arguments.push_back(OrvStringT(argv[place]).ToUtf8());
        }
        return arguments;
    });
}
