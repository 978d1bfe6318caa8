#pragma once

#include <QPoint>
#include <QRect>

/// Where the parts of the equalizer stand, in skin pixels of its window.
namespace vantor::art::places {

inline constexpr QSize equalizer{275, 116};
inline constexpr QPoint equalizerOn{14, 18};
inline constexpr QPoint equalizerAuto{40, 18};
inline constexpr QPoint presets{217, 18};
inline constexpr QRect graph{86, 17, 113, 19};
inline constexpr QPoint preamp{21, 38};
inline constexpr QPoint bands{78, 38};
inline constexpr int bandSpacing = 18;
inline constexpr int bandCount = 10;
inline constexpr QSize band{14, 63};
inline constexpr QPoint shadeKey{254, 3};
inline constexpr QPoint closeKey{264, 3};

} // namespace vantor::art::places
