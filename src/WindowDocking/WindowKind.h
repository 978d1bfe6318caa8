#pragma once

#include <QStringView>

#include <array>
#include <optional>

namespace vantor {

/// The three skinned windows, in the order in which all of them are walked.
enum class WindowKind { main, equalizer, playlist };

/// A primary window stands for the program; the auxiliary ones hang on it.
enum class WindowGroupRole { primary, auxiliary };

inline constexpr std::array allWindowKinds{WindowKind::main, WindowKind::equalizer, WindowKind::playlist};

/// The name under which a kind is saved.
[[nodiscard]] QString rawValue(WindowKind kind);
/// None for a name that is no kind's.
[[nodiscard]] std::optional<WindowKind> windowKindFromRawValue(QStringView text);

/// The window above which this one stays; none for the main window.
[[nodiscard]] std::optional<WindowKind> parentWindow(WindowKind kind);
[[nodiscard]] WindowGroupRole windowGroupRole(WindowKind kind);

} // namespace vantor
