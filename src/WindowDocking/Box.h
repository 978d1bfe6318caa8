#pragma once

#include <cmath>
#include <cstddef>
#include <functional>

namespace vantor {

/// A displacement, or the position of a window's top-left corner. In points; y grows downwards.
struct Offset {
    double x = 0;
    double y = 0;

    static const Offset zero;

    bool operator==(const Offset &) const = default;
};

inline constexpr Offset Offset::zero{};

/// A rectangle in the desktop space: points, its origin at the top left, y growing downwards.
struct Box {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] double right() const { return x + width; }
    [[nodiscard]] double bottom() const { return y + height; }
    [[nodiscard]] Offset topLeft() const { return {x, y}; }
    /// Each field on its own rounded to the nearest whole number, halves away from zero.
    [[nodiscard]] Box rounded() const {
        return {std::round(x), std::round(y), std::round(width), std::round(height)};
    }
    [[nodiscard]] Box movedTo(Offset topLeft) const { return {topLeft.x, topLeft.y, width, height}; }
    [[nodiscard]] Box translated(Offset by) const { return {x + by.x, y + by.y, width, height}; }
    /// Whether all of `other` lies in this box; shared edges count.
    [[nodiscard]] bool contains(const Box &other) const {
        return x <= other.x && y <= other.y && other.right() <= right() && other.bottom() <= bottom();
    }

    bool operator==(const Box &) const = default;
};

/// How far two boxes overlap on each axis; negative is the gap between them.
[[nodiscard]] Offset overlap(const Box &a, const Box &b);

} // namespace vantor

template <>
struct std::hash<vantor::Box> {
    std::size_t operator()(const vantor::Box &box) const noexcept;
};
