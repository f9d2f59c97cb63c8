// Work that many threads begin at the same moment.
#pragma once

#include <barrier>
#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

namespace OrvUQL::Tests {

/// Runs `work(0)`, `work(1)`, ... on a thread each and waits for all. No thread begins before every one of them is
/// there, so that what the library makes on its first use is asked for by all of them at once. Assertions inside count.
inline void RunAtOnce(int threads, const std::function<void(int)>& work) {
    std::barrier start(threads);
    std::vector<std::thread> all;
    all.reserve(static_cast<std::size_t>(threads));
    for (int number = 0; number < threads; ++number) {
        all.emplace_back([&work, &start, number] {
            start.arrive_and_wait();
            work(number);
        });
    }
    for (std::thread& thread : all) {
        thread.join();
    }
}

} // namespace OrvUQL::Tests
