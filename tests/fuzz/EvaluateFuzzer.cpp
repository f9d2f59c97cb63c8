// Any text as a query over a record, a variable and lengths.

#include "fuzz/FuzzHost.h"
#include "fuzz/LongQueries.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static OrvUQL::Tests::FuzzHost host;
    const std::string_view query(reinterpret_cast<const char*>(data), size);
    if (OrvUQL::Tests::MayTakeAllSteps(query)) {
        return -1;
    }
    host.CheckQuery(OrvStringT::FromUtf8(query));
    return 0;
}
