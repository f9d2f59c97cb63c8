#include "fuzz/ConformanceQueries.h"

#include "fuzz/LongQueries.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

namespace OrvUQL::Tests {

bool ForEachConformanceQuery(
    int argc, char** argv,
    const std::function<void(QueryEngine&, const Tool::ConformanceCase&, const std::string& place)>& run) {
    for (int index = 1; index < argc; ++index) {
        const std::string path = argv[index];
        std::ifstream file(path, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        std::vector<Tool::ConformanceCase> cases;
        Tool::ConformanceError error;
        if (!file || !Tool::ReadConformanceFile(text, cases, error)) {
            std::printf("%s: cannot be read\n", path.c_str());
            return false;
        }
        for (const Tool::ConformanceCase& one : cases) {
            Tool::ComApartment apartment;
            QueryEngine engine;
            std::string reason;
            if (!Tool::PrepareEngine(engine, *one.settings, apartment, reason)) {
                std::printf("%s:%zu: %s\n", path.c_str(), one.line, reason.c_str());
                return false;
            }
            if (!MayTakeAllSteps(one.written)) {
                run(engine, one,
                    path.substr(path.find_last_of('/') + 1) + ":" + std::to_string(one.line) + ": " + one.written);
            }
        }
    }
    return argc > 1;
}

bool Mentions(const Tool::ConformanceCase& query, const wchar_t* lowerCaseName) {
    OrvStringT text = query.query;
    text.MakeLower();
    return text.View().find(lowerCaseName) != std::wstring_view::npos;
}

} // namespace OrvUQL::Tests
