#pragma once

#include <QStringList>

#include <vector>

/// Orders of lists. Any thread.
namespace vantor::TrackOrder {

/// What rows are sorted by: words as a reader would sort them, or numbers when there are no words.
struct Keys {
    QStringList words;
    std::vector<double> numbers;
};

/// The rows in their new order; rows that are equal keep theirs.
[[nodiscard]] std::vector<int> sorted(const Keys &keys, bool ascending);

} // namespace vantor::TrackOrder
