#include "LibraryBrowser/TrackOrder_p.h"

#include <QCollator>
#include <QLocale>

#include <algorithm>
#include <numeric>

namespace vantor::TrackOrder {

namespace {

template <typename Values>
std::vector<int> order(const Values &values, bool ascending) {
    std::vector<int> rows(values.size());
    std::iota(rows.begin(), rows.end(), 0);
    const auto at = [&](int row) -> const auto & { return values[static_cast<std::size_t>(row)]; };
    std::ranges::sort(rows, [&](int left, int right) {
        if (at(left) < at(right))
            return ascending;
        if (at(right) < at(left))
            return !ascending;
        return left < right;
    });
    return rows;
}

} // namespace

std::vector<int> sorted(const Keys &keys, bool ascending) {
    if (keys.words.isEmpty())
        return order(keys.numbers, ascending);
    // Without a language, letters would stand in the order of their codes.
    const QLocale own = QCollator().locale();
    QCollator collator(own.language() == QLocale::C ? QLocale(QLocale::English) : own);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    collator.setNumericMode(true);
    std::vector<QCollatorSortKey> words;
    words.reserve(static_cast<std::size_t>(keys.words.size()));
    for (const QString &word : keys.words)
        words.push_back(collator.sortKey(word));
    return order(words, ascending);
}

} // namespace vantor::TrackOrder
