#include "WindowDocking/WindowGraph.h"

#include <vector>

namespace vantor::WindowGraph {

namespace {

using Followers = std::map<WindowKind, std::vector<WindowKind>>;

Followers followersBy(const Graph &graph, std::optional<WindowKind> Edges::*edge) {
    Followers followers;
    for (const auto &[kind, edges] : graph) {
        if (edges.*edge)
            followers[*(edges.*edge)].push_back(kind);
    }
    return followers;
}

/// Moves what follows `leader` on one axis, and what follows that. It ends: each window follows one other at
/// most, so that what is reached from one that follows none is a tree.
void pushFollowers(WindowKind leader, const Followers &followers, double Offset::*axis,
                   double BoxSize::*extent, const std::map<WindowKind, BoxSize> &sizeDiff,
                   std::map<WindowKind, Offset> &offsets) {
    const auto own = followers.find(leader);
    if (own == followers.end())
        return;
    const auto grown = sizeDiff.find(leader);
    const double push = (grown == sizeDiff.end() ? 0 : grown->second.*extent) + offsets[leader].*axis;
    for (const WindowKind follower : own->second) {
        offsets[follower].*axis += push;
        pushFollowers(follower, followers, axis, extent, sizeDiff, offsets);
    }
}

} // namespace

Graph generate(std::span<const DockedWindow> windows) {
    Graph graph;
    for (const DockedWindow &window : windows) {
        const Box box = window.box.rounded();
        Edges edges;
        for (const DockedWindow &other : windows) {
            const Box o = other.box.rounded();
            if (!edges.below && o.bottom() == box.y && o.right() >= box.x && o.x <= box.right())
                edges.below = other.kind;
            if (!edges.right && o.right() == box.x && o.bottom() >= box.y && o.y <= box.bottom())
                edges.right = other.kind;
        }
        graph[window.kind] = edges;
    }
    return graph;
}

std::map<WindowKind, Offset> positionDiff(const Graph &graph, const std::map<WindowKind, BoxSize> &sizeDiff) {
    std::map<WindowKind, Offset> offsets;
    for (const auto &[kind, edges] : graph)
        offsets[kind] = {};
    const Followers left = followersBy(graph, &Edges::right);
    const Followers above = followersBy(graph, &Edges::below);
    for (const auto &[kind, edges] : graph) {
        if (!edges.below)
            pushFollowers(kind, above, &Offset::y, &BoxSize::height, sizeDiff, offsets);
        if (!edges.right)
            pushFollowers(kind, left, &Offset::x, &BoxSize::width, sizeDiff, offsets);
    }
    return offsets;
}

} // namespace vantor::WindowGraph
