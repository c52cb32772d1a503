#include "analysis/MedianDifference.h"

#include "analysis/Statistics.h"

#include <algorithm>
#include <bitset>
#include <random>

namespace {

constexpr int wordBits = 32;

/// How many of a number of random bits are set.
int countOnes(int bits, std::mt19937 *random)
{
    std::size_t ones = 0;
    for (; bits > 0; bits -= wordBits) {
        const std::bitset<wordBits> word((*random)());
        ones +=
            (bits >= wordBits ? word : word >> static_cast<std::size_t>(wordBits - bits)).count();
    }
    return static_cast<int>(ones);
}

/// Draw n numbers of 32 bits and return the one of the given rank, from 1.
///
/// Only the bits that matter are drawn: the numbers' highest ones tell on which side of the middle
/// the one sought lies, and the numbers on that side go on. So a resampling takes some 2 n bits,
/// not n numbers and a sort. The standard's own distributions differ between libraries, so none is
/// used.
quint32 drawRanked(int n, int rank, std::mt19937 *random)
{
    quint32 number = 0;
    for (int bit = wordBits - 1; bit >= 0; --bit) {
        if (n == 1) {
            return number | static_cast<quint32>((*random)() >> (wordBits - 1 - bit));
        }
        const int ones = countOnes(n, random);
        const int zeros = n - ones;
        if (rank <= zeros) {
            n = zeros;
        } else {
            number |= 1U << static_cast<unsigned>(bit);
            rank -= zeros;
            n = ones;
        }
    }
    return number;
}

/// The median, by nearest rank, of as many values as there are, drawn with replacement.
double resampledMedian(const QVector<double> &sorted, std::mt19937 *random)
{
    const int n = sorted.size();
    const quint64 number = drawRanked(n, (n + 1) / 2, random);
    return sorted[static_cast<int>(number * static_cast<quint64>(n) >> wordBits)];
}

} // namespace

MedianDifference compareMedians(QVector<double> first, QVector<double> second)
{
    std::sort(first.begin(), first.end());
    std::sort(second.begin(), second.end());
    std::mt19937 random; // NOLINT(cert-msc32-c,cert-msc51-cpp): always the same numbers
    QVector<double> differences(resamplings);
    for (double &difference : differences) {
        const double median = resampledMedian(first, &random);
        difference = resampledMedian(second, &random) - median;
    }
    std::sort(differences.begin(), differences.end());
    return {nearestRank(second, 500) - nearestRank(first, 500), nearestRank(differences, 25),
            nearestRank(differences, 975)};
}
