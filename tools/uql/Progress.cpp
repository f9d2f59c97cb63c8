#include "Progress.h"

#include "File.h"

namespace OrvUQL::Tool {

namespace {

constexpr std::chrono::milliseconds firstTime(1000);
constexpr std::chrono::milliseconds interval(200);

} // namespace

Progress::Progress() : isShown(IsStandardErrorTerminal()), begin(Clock::now()), next(begin + firstTime) {}

std::string Progress::Tell(std::size_t records, std::size_t failures, std::optional<double> fraction) {
    if (!isShown) {
        return std::string();
    }
    const Clock::time_point now = Clock::now();
    if (now < next) {
        return std::string();
    }
    next = now + interval;
    const double seconds = std::chrono::duration<double>(now - begin).count();
    std::string line = "uql: " + std::to_string(records) + " records, " +
                       std::to_string(static_cast<long long>(static_cast<double>(records) / seconds)) + " a second";
    if (failures != 0) {
        line += ", " + std::to_string(failures) + " failed";
    }
    if (fraction) {
        line += ", " + std::to_string(static_cast<int>(*fraction * 100)) + " %";
    }
    return line;
}

} // namespace OrvUQL::Tool
