#include "tool/RunUql.h"

namespace OrvUQL::Tests {

bool operator==(const UqlRun& a, const UqlRun& b) { return a.status == b.status && a.out == b.out && a.err == b.err; }

void PrintTo(const UqlRun& run, std::ostream* out) {
    *out << "status " << run.status << "\nstandard output:\n" << run.out << "standard error:\n" << run.err;
}

UqlRun Prints(std::string_view out) { return {0, std::string(out), ""}; }
UqlRun Fails(std::string_view err, std::string_view out) { return {1, std::string(out), std::string(err)}; }

} // namespace OrvUQL::Tests
