#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <vector>

namespace vantor {

/// Draws that come out the same on every machine, whatever the order in which skins are listed: of all skins
/// those are drawn whose SHA-256 of "<seed>:<path>" is smallest, the path in its bytes. Any thread.
namespace CorpusSample {

[[nodiscard]] QByteArray rank(std::int64_t seed, const QString &path);

/// At most `count` of the items, in their own order. `path` names an item's path.
template <typename Item, typename Path>
[[nodiscard]] std::vector<Item> drawn(const std::vector<Item> &items, std::int64_t count, std::int64_t seed,
                                      Path path) {
    std::vector<std::pair<QByteArray, std::size_t>> ranks;
    for (std::size_t i = 0; i < items.size(); ++i)
        ranks.emplace_back(rank(seed, std::invoke(path, items[i])), i);
    std::ranges::sort(ranks);
    ranks.resize(std::min<std::size_t>(ranks.size(), static_cast<std::size_t>(count)));
    std::ranges::sort(ranks, {}, &std::pair<QByteArray, std::size_t>::second);
    std::vector<Item> result;
    for (const auto &[ignored, index] : ranks)
        result.push_back(items[index]);
    return result;
}

} // namespace CorpusSample
} // namespace vantor
