#pragma once

#include <span>
#include <vector>

/// The natural cubic spline through knots: its second derivative is zero at both ends. Any thread.
namespace vantor::CubicSpline {

/// The spline's height at every whole x from 0 to the last knot's. `xs` ascends and is finite. With fewer
/// than two knots, or unequal numbers of coordinates, the ys come back as they are.
[[nodiscard]] std::vector<double> interpolate(std::span<const double> xs, std::span<const double> ys);

} // namespace vantor::CubicSpline
