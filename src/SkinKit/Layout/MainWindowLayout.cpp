#include "SkinKit/Layout/MainWindowLayout.h"

namespace vantor::MainWindowLayout {

namespace {

template <typename Enum>
constexpr std::size_t index(Enum value) {
    return static_cast<std::size_t>(value);
}

} // namespace

QRect rect(TitleButton button) {
    constexpr std::array<int, 4> xs{6, 244, 254, 264};
    return {xs.at(index(button)), 3, 9, 9};
}

QRect rect(ClutterButton button) {
    constexpr std::array<int, 5> ys{25, 33, 40, 47, 55};
    constexpr std::array<int, 5> heights{8, 7, 7, 8, 7};
    return {10, ys.at(index(button)), 8, heights.at(index(button))};
}

QString spriteName(ClutterButton button) {
    static const std::array names{QStringLiteral("MAIN_CLUTTER_BAR_BUTTON_O_SELECTED"),
                                  QStringLiteral("MAIN_CLUTTER_BAR_BUTTON_A_SELECTED"),
                                  QStringLiteral("MAIN_CLUTTER_BAR_BUTTON_I_SELECTED"),
                                  QStringLiteral("MAIN_CLUTTER_BAR_BUTTON_D_SELECTED"),
                                  QStringLiteral("MAIN_CLUTTER_BAR_BUTTON_V_SELECTED")};
    return names.at(index(button));
}

QRect rect(Transport button) {
    // Next and eject are a pixel narrower than the others, as skins draw them.
    constexpr std::array<QRect, 6> rects{QRect{16, 88, 23, 18},  QRect{39, 88, 23, 18},
                                         QRect{62, 88, 23, 18},  QRect{85, 88, 23, 18},
                                         QRect{108, 88, 22, 18}, QRect{136, 89, 22, 16}};
    return rects.at(index(button));
}

QString spriteName(Transport button, bool pressed) {
    static const std::array names{
        QStringLiteral("MAIN_PREVIOUS_BUTTON"), QStringLiteral("MAIN_PLAY_BUTTON"),
        QStringLiteral("MAIN_PAUSE_BUTTON"),    QStringLiteral("MAIN_STOP_BUTTON"),
        QStringLiteral("MAIN_NEXT_BUTTON"),     QStringLiteral("MAIN_EJECT_BUTTON")};
    const QString &name = names.at(index(button));
    return pressed ? name + QStringLiteral("_ACTIVE") : name;
}

} // namespace vantor::MainWindowLayout
