// Any text as a query: it parses or fails properly, and what parses can be printed and parsed again.

#include "fuzz/FuzzHost.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static OrvUQL::Tests::FuzzHost host;
    host.CheckParse(OrvStringT::FromUtf8({reinterpret_cast<const char*>(data), size}));
    return 0;
}
