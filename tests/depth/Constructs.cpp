#include "depth/Constructs.h"

namespace OrvUQL::Tests {

namespace {

template <class String, class View> String Repeated(int count, View text) {
    String all;
    all.reserve(text.size() * static_cast<std::size_t>(count));
    for (int time = 0; time < count; ++time) {
        all += text;
    }
    return all;
}

} // namespace

const std::vector<Construct>& Constructs() {
    static const std::vector<Construct> constructs = [] {
        std::vector<Construct> all;
        for (const auto& part : {NestedConstructs(), ChainConstructs(), LongConstructs(), TextConstructs(),
                                 RegexConstructs(), ArrayConstructs()}) {
            all.insert(all.end(), part.begin(), part.end());
        }
        return all;
    }();
    return constructs;
}

std::wstring Times(int count, std::wstring_view text) { return Repeated<std::wstring>(count, text); }

std::string Times(int count, std::string_view text) { return Repeated<std::string>(count, text); }

std::function<std::wstring(int)> Around(const wchar_t* open, const wchar_t* middle, const wchar_t* close) {
    return [=](int size) { return Times(size, open) + middle + Times(size, close); };
}

std::function<std::wstring(int)> Chain(const wchar_t* term, const wchar_t* between) {
    return [=](int size) { return term + Times(size - 1, std::wstring(between) + term); };
}

std::function<std::wstring(int)> Row(const wchar_t* begin, const wchar_t* part, const wchar_t* end) {
    return [=](int size) { return begin + Times(size, part) + end; };
}

std::function<std::wstring(int)> Sized(const wchar_t* query) {
    return [=](int size) {
        std::wstring text;
        for (const wchar_t unit : std::wstring_view(query)) {
            text += unit == L'#' ? std::to_wstring(size) : std::wstring(1, unit);
        }
        return text;
    };
}

std::function<std::string(int)> Always(const char* answer) {
    return [=](int) { return std::string(answer); };
}

std::function<std::string(int)> Int(int times, int more) {
    return [=](int size) { return "int " + std::to_string(times * size + more); };
}

std::function<std::string(int)> Text(const char* begin, const char* part, const char* end) {
    return [=](int size) { return begin + Times(size, part) + end; };
}

} // namespace OrvUQL::Tests
