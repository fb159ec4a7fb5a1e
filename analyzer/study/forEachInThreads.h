#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace analyzer {

/// Calls \p function with every number below \p count, in any order, in this thread and up to \p threads - 1 others.
/// Returns when all calls have. The first exception that leaves one of them keeps those from beginning that have not,
/// and leaves here.
template <class Function>
void forEachInThreads(std::size_t count, std::size_t threads, Function function)
{
    std::atomic<std::size_t> next{0};
    std::mutex mutex;
    std::exception_ptr problem;
    const auto work = [&] {
        try {
            for (std::size_t number = next++; number < count; number = next++) {
                function(number);
            }
        } catch (...) {
            next = count;
            const std::lock_guard<std::mutex> lock(mutex);
            if (!problem) {
                problem = std::current_exception();
            }
        }
    };
    std::vector<std::thread> others;
    others.reserve(threads);
    for (std::size_t number = 1; number < std::min(count, threads); ++number) {
        try {
            others.emplace_back(work);
        } catch (const std::system_error&) {
            break; // fewer threads do as well
        }
    }
    work();
    for (std::thread& other : others) {
        other.join();
    }
    if (problem) {
        std::rethrow_exception(problem);
    }
}

} // namespace analyzer
