#pragma once

#include "batch/BlockQueue.h"
#include "measure/RealTransform.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <future>
#include <mutex>
#include <span>
#include <vector>

namespace sonotrace {

/// Transforms blocks on all processors and collects the mean and the highest of their powers. The result does
/// not depend on how many processors there are. One thread calls.
class PowerCollector {
public:
    /// `window` outlives the collector and holds the weights. What is added is divided by `blocks` first.
    PowerCollector(std::span<const double> window, std::int32_t blocks);
    ~PowerCollector();
    PowerCollector(const PowerCollector&) = delete;
    PowerCollector& operator=(const PowerCollector&) = delete;

    /// Takes the sum of blocks that a spectrum is made of.
    void add(std::span<const double> blockSum);

    /// Waits until all is transformed.
    void finish();

    /// |X|² of bins 0 to N / 2. After finish(); empty when nothing was added.
    std::span<const double> mean() const { return mean_; }
    std::span<const double> highest() const { return highest_; }

private:
    /// Consecutive spectra that one thread transforms.
    struct Job {
        std::uint64_t number = 0; ///< from 0, in the order of the file
        std::vector<double> sums; ///< one spectrum's after the other's
    };
    struct Worker;

    void takeRoom();
    void hand();
    void work(Worker& worker);
    void merge(std::uint64_t number, std::span<const double> sum, std::span<const double> highest);

    const std::span<const double> window_;
    const double scale_;
    const std::size_t spectraPerJob_;
    Job next_;
    BlockQueue<Job> jobs_;
    BlockQueue<std::vector<double>> spare_; ///< room for sums that has been used before
    std::vector<Worker> workers_;
    std::vector<std::future<void>> threads_;

    std::mutex mutex_; ///< for what follows
    std::condition_variable merged_;
    std::uint64_t mergedJobs_ = 0;
    std::vector<double> mean_; ///< a sum until the end
    std::vector<double> highest_;
    std::uint64_t spectra_ = 0;
};

} // namespace sonotrace
