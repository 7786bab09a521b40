#include "measure/SineFit.h"

#include "base/WideVectors.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <numeric>
#include <utility>

namespace sonotrace {

namespace {

/// Cosine and sine of an angle that grows from sample to sample, for a few neighbours at once. They are
/// turned on, not computed anew; the error grows by the last bit of a double with each turn.
struct Rotor {
    static constexpr std::size_t kLanes = 8;
    using Lanes = std::array<double, kLanes>;

    Rotor(double start, double step) : turn(std::polar(1.0, step * kLanes)) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            cosine[lane] = std::cos(start + step * static_cast<double>(lane));
            sine[lane] = std::sin(start + step * static_cast<double>(lane));
        }
    }

    void next() {
        const double turnCosine = turn.real();
        const double turnSine = turn.imag();
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            const double old = cosine[lane];
            cosine[lane] = old * turnCosine - sine[lane] * turnSine;
            sine[lane] = old * turnSine + sine[lane] * turnCosine;
        }
    }

    Lanes cosine;
    Lanes sine;
    std::complex<double> turn;
};

double sumOf(const Rotor::Lanes& lanes) {
    return std::accumulate(lanes.begin(), lanes.end(), 0.0);
}

double angleOf(double bin, std::size_t size) {
    return 2.0 * std::numbers::pi * bin / static_cast<double>(size);
}

constexpr std::size_t kUnknowns = 4;                                        ///< cosine, sine, constant, bin
using Equations = std::array<std::array<double, kUnknowns + 1>, kUnknowns>; ///< last column: right-hand side

struct SineGuess {
    double bin = 0;
    double cosine = 0;
    double sine = 0;
    double constant = 0;
};

/// Normal equations for a better guess, weighted with the window's squares.
SONOTRACE_WIDE_VECTORS Equations normalEquations(std::span<const double> samples,
                                                 std::span<const double> window, const SineGuess& guess) {
    const double omega = angleOf(guess.bin, samples.size());
    const double middle = (static_cast<double>(samples.size()) - 1.0) / 2.0;
    const double unit = angleOf(1.0, samples.size());
    Rotor rotor(-omega * middle, omega);
    std::array<std::array<Rotor::Lanes, kUnknowns + 1>, kUnknowns> sums{};
    for (std::size_t i = 0; i < samples.size(); i += Rotor::kLanes) {
        std::array<Rotor::Lanes, kUnknowns + 1> row;
        std::array<Rotor::Lanes, kUnknowns> weighted;
        for (std::size_t lane = 0; lane < Rotor::kLanes; ++lane) {
            const double c = rotor.cosine[lane];
            const double s = rotor.sine[lane];
            const double weight = window[i + lane] * window[i + lane];
            const double slope =
                (static_cast<double>(i + lane) - middle) * unit * (guess.sine * c - guess.cosine * s);
            row[0][lane] = c;
            row[1][lane] = s;
            row[2][lane] = 1.0;
            row[3][lane] = slope;
            row[4][lane] = samples[i + lane] - guess.cosine * c - guess.sine * s - guess.constant;
            weighted[0][lane] = weight * c;
            weighted[1][lane] = weight * s;
            weighted[2][lane] = weight;
            weighted[3][lane] = weight * slope;
        }
        for (std::size_t r = 0; r < kUnknowns; ++r)
            for (std::size_t c = r; c <= kUnknowns; ++c)
                for (std::size_t lane = 0; lane < Rotor::kLanes; ++lane)
                    sums[r][c][lane] += weighted[r][lane] * row[c][lane];
        rotor.next();
    }
    Equations equations{};
    for (std::size_t r = 0; r < kUnknowns; ++r)
        for (std::size_t c = 0; c <= kUnknowns; ++c)
            equations[r][c] = sumOf(c < r ? sums[c][r] : sums[r][c]);
    return equations;
}

/// Gauss with pivots, for the first `count` unknowns. False when they are not determined.
bool solve(Equations& equations, std::size_t count, std::array<double, kUnknowns>& solution) {
    for (std::size_t column = 0; column < count; ++column) {
        std::size_t pivot = column;
        for (std::size_t row = column + 1; row < count; ++row)
            if (std::abs(equations[row][column]) > std::abs(equations[pivot][column]))
                pivot = row;
        if (!(std::abs(equations[pivot][column]) > 0.0))
            return false;
        std::swap(equations[column], equations[pivot]);
        for (std::size_t row = 0; row < count; ++row) {
            if (row == column)
                continue;
            const double factor = equations[row][column] / equations[column][column];
            for (std::size_t i = column; i <= kUnknowns; ++i)
                equations[row][i] -= factor * equations[column][i];
        }
    }
    for (std::size_t i = 0; i < count; ++i)
        solution[i] = equations[i][kUnknowns] / equations[i][i];
    return true;
}

} // namespace

SONOTRACE_WIDE_VECTORS std::complex<double> lineAt(std::span<const double> samples,
                                                   std::span<const double> window, double bin) {
    const double omega = angleOf(bin, samples.size());
    Rotor rotor(-omega * (static_cast<double>(samples.size()) - 1.0) / 2.0, omega);
    Rotor::Lanes re{};
    Rotor::Lanes im{};
    for (std::size_t i = 0; i < samples.size(); i += Rotor::kLanes) {
        for (std::size_t lane = 0; lane < Rotor::kLanes; ++lane) {
            const double value = samples[i + lane] * window[i + lane];
            re[lane] += value * rotor.cosine[lane];
            im[lane] -= value * rotor.sine[lane];
        }
        rotor.next();
    }
    return {sumOf(re), sumOf(im)};
}

SONOTRACE_WIDE_VECTORS void takeOffSine(std::span<double> samples, double bin, double cosine, double sine) {
    const double omega = angleOf(bin, samples.size());
    Rotor rotor(-omega * (static_cast<double>(samples.size()) - 1.0) / 2.0, omega);
    for (std::size_t i = 0; i < samples.size(); i += Rotor::kLanes) {
        for (std::size_t lane = 0; lane < Rotor::kLanes; ++lane)
            samples[i + lane] -= cosine * rotor.cosine[lane] + sine * rotor.sine[lane];
        rotor.next();
    }
}

FittedSine fitSine(std::span<const double> samples, std::span<const double> window, double bin) {
    constexpr int kMostSteps = 8;
    constexpr double kCloseEnough = 1e-5; // bins; the next step would be the square of it
    constexpr double kLeastBin = 0.5;     // from either end, where the equations say next to nothing
    const double lastBin = static_cast<double>(samples.size()) / 2.0;
    SineGuess guess{.bin = bin};
    for (int step = 0; step < kMostSteps; ++step) {
        Equations equations = normalEquations(samples, window, guess);
        std::array<double, kUnknowns> change{};
        // The frequency has no slope before there is a sine.
        if (!solve(equations, step == 0 ? kUnknowns - 1 : kUnknowns, change))
            break;
        const double next = guess.bin + change[3];
        if (std::abs(next - bin) > 1.0 || next < kLeastBin || next > lastBin - kLeastBin)
            break; // lost: what is there is no lone sine
        guess = {.bin = next,
                 .cosine = guess.cosine + change[0],
                 .sine = guess.sine + change[1],
                 .constant = guess.constant + change[2]};
        if (step > 0 && std::abs(change[3]) < kCloseEnough)
            break;
    }
    return {.bin = guess.bin, .cosine = guess.cosine, .sine = guess.sine};
}

} // namespace sonotrace
