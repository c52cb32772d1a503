#pragma once

#include <QArrayData>

#include <limits>

/// The largest number of values that a QVector<double> can hold: Qt 5 keeps a vector's block,
/// header included, below 2 GiB.
constexpr int maxVectorSize = static_cast<int>(
    (static_cast<std::size_t>(std::numeric_limits<int>::max()) - sizeof(QArrayData)) /
    sizeof(double));
