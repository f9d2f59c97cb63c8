// Queries written by the grammar's rules, as the fuzzer's bytes choose: nearly every input is one that evaluates.

#include "fuzz/FuzzHost.h"
#include "fuzz/QueryWriter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static OrvUQL::Tests::FuzzHost host;
    OrvUQL::Tests::QueryWriter writer(data, size);
    host.CheckQuery(OrvStringT(writer.Write()));
    return 0;
}
