#include "batch/PowerCollector.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace sonotrace {

namespace {

constexpr std::size_t kSamplesPerJob = 1U << 17U; ///< a megabyte
constexpr unsigned kMostWorkers = 16;

unsigned workerCount() {
    return std::clamp(std::thread::hardware_concurrency(), 1U, kMostWorkers);
}

} // namespace

struct PowerCollector::Worker {
    RealTransform transform;
    std::vector<double> weighted;
    std::vector<double> power;
    std::vector<double> sum;
    std::vector<double> highest;
};

PowerCollector::PowerCollector(std::span<const double> window, std::int32_t blocks)
    : window_(window),
      scale_(blocks),
      spectraPerJob_(std::max<std::size_t>(1, kSamplesPerJob / window.size())),
      jobs_(2 * workerCount()),
      workers_(workerCount()) {
    // Plans are made by this thread: the library makes one at a time.
    for (Worker& worker : workers_) {
        worker.weighted.resize(window.size());
        worker.transform.power(worker.weighted, worker.power);
    }
    for (Worker& worker : workers_)
        threads_.push_back(std::async(std::launch::async, [this, &worker] { work(worker); }));
}

PowerCollector::~PowerCollector() {
    jobs_.finish(); // the threads end with what is there
}

void PowerCollector::add(std::span<const double> blockSum) {
    ++spectra_;
    next_.sums.insert(next_.sums.end(), blockSum.begin(), blockSum.end());
    if (next_.sums.size() >= spectraPerJob_ * window_.size())
        hand();
}

void PowerCollector::hand() {
    const std::uint64_t number = next_.number;
    jobs_.push(std::exchange(next_, Job{.number = number + 1, .sums = {}}));
    next_.sums.reserve(spectraPerJob_ * window_.size());
}

void PowerCollector::work(Worker& worker) {
    while (const auto job = jobs_.pop()) {
        worker.sum.assign(worker.power.size(), 0.0);
        worker.highest.assign(worker.power.size(), 0.0);
        for (std::span<const double> rest(job->sums); !rest.empty(); rest = rest.subspan(window_.size())) {
            for (std::size_t i = 0; i < window_.size(); ++i)
                worker.weighted[i] = rest[i] / scale_ * window_[i];
            worker.transform.power(worker.weighted, worker.power);
            for (std::size_t k = 0; k < worker.power.size(); ++k) {
                worker.sum[k] += worker.power[k];
                worker.highest[k] = std::max(worker.highest[k], worker.power[k]);
            }
        }
        merge(job->number, worker.sum, worker.highest);
    }
}

/// In the order of the file, as a sum depends on it.
void PowerCollector::merge(std::uint64_t number, std::span<const double> sum,
                           std::span<const double> highest) {
    std::unique_lock lock(mutex_);
    merged_.wait(lock, [&] { return mergedJobs_ == number; });
    mean_.resize(sum.size());
    highest_.resize(sum.size());
    for (std::size_t k = 0; k < sum.size(); ++k) {
        mean_[k] += sum[k];
        highest_[k] = std::max(highest_[k], highest[k]);
    }
    ++mergedJobs_;
    merged_.notify_all();
}

void PowerCollector::finish() {
    if (!next_.sums.empty())
        hand();
    jobs_.finish();
    for (std::future<void>& thread : threads_)
        thread.get();
    threads_.clear();
    for (double& power : mean_)
        power /= static_cast<double>(spectra_);
}

} // namespace sonotrace
