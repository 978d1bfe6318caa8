#pragma once

#include <QString>
#include <QStringView>

#include <algorithm>

namespace vantor {

/// Calls `take` for every non-empty line; each carriage return and each line feed ends one. `take` returns
/// whether to go on.
template <typename Take>
void forEachLine(QStringView text, Take take) {
    const auto isEnd = [](QChar c) { return c == u'\r' || c == u'\n'; };
    while (!text.isEmpty()) {
        const auto *end = std::ranges::find_if(text, isEnd);
        const QStringView line = text.first(end - text.begin());
        text = text.sliced(std::min(line.size() + 1, text.size()));
        if (!line.isEmpty() && !take(line))
            return;
    }
}

} // namespace vantor
