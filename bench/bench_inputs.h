// How many inputs a measurement goes through, and how it reports them.
//
// A measurement never takes one input again and again: the processor would learn its branches by heart, and
// nobody sends the same statement a million times. An iteration goes through all inputs of a size once.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace lumora::bench {

// A thousand inputs; more of small ones, until they take 1 MB; fewer, but at least eight, when they would
// take more than 192 MB.
inline int InputCount(std::size_t bytesEach) {
    constexpr std::size_t enough = 1'000'000;
    constexpr std::size_t budget = 192'000'000;
    const std::size_t wanted = std::max<std::size_t>(1000, enough / bytesEach);
    return static_cast<int>(std::clamp<std::size_t>(budget / bytesEach, 8, wanted));
}

// The inputs of one size, kept until those of another size are asked for.
template <typename T>
class TKeptInputs {
public:
    template <typename TMake>
    const T& Of(int size, TMake make) {
        if (size != size_) {
            inputs_ = T(); // first, so that both never stand in memory
            inputs_ = make();
        }
        size_ = size;
        return inputs_;
    }

private:
    T inputs_{};
    int size_ = -1;
};

struct TMeasurement {
    const char* Name;
    void (*Run)(benchmark::State& state);
};

// Registers all measurements of one size, then those of the next: what is compared stands together, and the
// inputs of a size are made once.
inline bool RegisterInTurn(std::initializer_list<int> sizes,
                           std::initializer_list<TMeasurement> measurements) {
    for (const int size : sizes)
        for (const TMeasurement& measurement : measurements)
            benchmark::RegisterBenchmark(measurement.Name, measurement.Run)->Arg(size);
    return true;
}

template <typename TList>
std::size_t TotalBytes(const TList& texts) {
    std::size_t bytes = 0;
    for (const auto& text : texts)
        bytes += text.size();
    return bytes;
}

// What one iteration, which is a round over all inputs, goes through.
inline void ReportRound(benchmark::State& state, std::size_t inputs, std::size_t bytes, std::size_t items) {
    const auto iterations = static_cast<std::int64_t>(state.iterations());
    if (bytes > 0)
        state.SetBytesProcessed(iterations * static_cast<std::int64_t>(bytes));
    if (items > 0)
        state.SetItemsProcessed(iterations * static_cast<std::int64_t>(items));
    state.counters["inputs"] = static_cast<double>(inputs);
    if (bytes > 0)
        state.counters["bytes_each"] = static_cast<double>(bytes / inputs);
}

} // namespace lumora::bench
