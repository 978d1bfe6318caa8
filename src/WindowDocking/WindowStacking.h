#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <type_traits>
#include <vector>

namespace vantor {

/// The front-to-back order of windows. Pure functions; any thread.
namespace WindowStacking {

/// Put `window` directly below `below`.
template <typename Key>
struct Placement {
    Key window;
    Key below;

    bool operator==(const Placement &) const = default;
};

/// Brings a group together under its key window, which is in front already: the whole chain from the key
/// down, the others in their present order. Empty when the key is not of the group or none of the group is
/// shown.
///
/// `parent` tells child windows, which every window system keeps above their parent whatever else is asked
/// for. So a chain may name a child below its parent; that shortens no chain, as it still says which of two
/// children is in front.
template <typename Key>
[[nodiscard]] std::vector<Placement<Key>> raise(
    const std::set<Key> &group, const std::type_identity_t<Key> &key,
    std::span<const std::type_identity_t<Key>> frontToBack,
    [[maybe_unused]] const std::function<std::optional<std::type_identity_t<Key>>(std::type_identity_t<Key>)>
        &parent) {
    const auto isMember = [&](const Key &window) { return group.contains(window); };
    if (!isMember(key) || std::ranges::none_of(frontToBack, isMember))
        return {};
    std::vector<Placement<Key>> placements;
    Key above = key;
    for (const Key &window : frontToBack) {
        if (window == key || !isMember(window))
            continue;
        placements.push_back({window, above});
        above = window;
    }
    return placements;
}

} // namespace WindowStacking

} // namespace vantor
