#include "batch/PowerCollector.h"

#include "base/WideVectors.h"

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

/// Divided first, as in the analyzer.
SONOTRACE_WIDE_VECTORS void weigh(const double* sum, const double* window, double blocks, std::size_t points,
                                  double* weighted) {
    for (std::size_t i = 0; i < points; ++i)
        weighted[i] = sum[i] / blocks * window[i];
}

SONOTRACE_WIDE_VECTORS void collect(const double* spectrum, std::size_t bins, double* sum, double* highest) {
    for (std::size_t k = 0; k < bins; ++k) {
        const double power = spectrum[2 * k] * spectrum[2 * k] + spectrum[2 * k + 1] * spectrum[2 * k + 1];
        sum[k] += power;
        highest[k] = highest[k] < power ? power : highest[k];
    }
}

} // namespace

struct PowerCollector::Worker {
    RealTransform transform;
    std::vector<double> sum;
    std::vector<double> highest;
};

PowerCollector::PowerCollector(std::span<const double> window, std::int32_t blocks)
    : window_(window),
      scale_(blocks),
      spectraPerJob_(std::max<std::size_t>(1, kSamplesPerJob / window.size())),
      jobs_(2 * workerCount()),
      spare_(5 * workerCount()),
      workers_(workerCount()) {
    // Plans are made by this thread: the library makes one at a time.
    for (Worker& worker : workers_) {
        worker.transform.input(window.size());
        worker.sum.resize(window.size() / 2 + 1);
        worker.highest.resize(worker.sum.size());
    }
    for (unsigned i = 0; i < 4 * workerCount(); ++i)
        spare_.push({});
    takeRoom();
    try {
        for (Worker& worker : workers_)
            threads_.push_back(std::async(std::launch::async, [this, &worker] { work(worker); }));
    } catch (...) { // no thread is to be had: those that there are must not wait for work
        jobs_.abandon();
        throw;
    }
}

PowerCollector::~PowerCollector() {
    jobs_.abandon();
    threads_.clear(); // waits for what they are at
}

void PowerCollector::add(std::span<const double> blockSum) {
    ++spectra_;
    next_.sums.insert(next_.sums.end(), blockSum.begin(), blockSum.end());
    if (next_.sums.size() >= spectraPerJob_ * window_.size())
        hand();
}

void PowerCollector::takeRoom() {
    next_.sums = spare_.pop().value_or(std::vector<double>());
    next_.sums.clear();
    next_.sums.reserve(spectraPerJob_ * window_.size());
}

void PowerCollector::hand() {
    const std::uint64_t number = next_.number;
    jobs_.push(std::move(next_));
    next_.number = number + 1;
    takeRoom();
}

void PowerCollector::work(Worker& worker) {
    const std::size_t points = window_.size();
    while (auto job = jobs_.pop()) {
        std::ranges::fill(worker.sum, 0.0);
        std::ranges::fill(worker.highest, 0.0);
        for (std::size_t at = 0; at < job->sums.size(); at += points) {
            weigh(&job->sums[at], window_.data(), scale_, points, worker.transform.input(points).data());
            collect(worker.transform.transform().data(), worker.sum.size(), worker.sum.data(),
                    worker.highest.data());
        }
        merge(job->number, worker.sum, worker.highest);
        spare_.push(std::move(job->sums));
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
