// CTest reads the names of a program's tests from its output and ends them where the line ends: without the carriage
// return that the C runtime would write there.
#include <cstdio>
#include <fcntl.h>
#include <io.h>

namespace {

[[maybe_unused]] const int previousMode = _setmode(_fileno(stdout), _O_BINARY);

} // namespace
