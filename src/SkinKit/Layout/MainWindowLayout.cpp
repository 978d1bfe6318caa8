#include "SkinKit/Layout/MainWindowLayout.h"

namespace vantor::MainWindowLayout {

namespace {

template <class Enum>
constexpr std::size_t index(Enum value) {
    return static_cast<std::size_t>(value);
}

} // namespace

QRect rect(TitleButton button) {
    static constexpr std::array xs{6, 244, 254, 264};
    return {xs[index(button)], 3, 9, 9};
}

QRect rect(ClutterButton button) {
    static constexpr std::array ys{25, 33, 40, 47, 55};
    static constexpr std::array heights{8, 7, 7, 8, 7};
    return {10, ys[index(button)], 8, heights[index(button)]};
}

QString spriteName(ClutterButton button) {
    static const std::array names{QStringLiteral("MAIN_CLUTTER_BAR_BUTTON_O_SELECTED"),
                                  QStringLiteral("MAIN_CLUTTER_BAR_BUTTON_A_SELECTED"),
                                  QStringLiteral("MAIN_CLUTTER_BAR_BUTTON_I_SELECTED"),
                                  QStringLiteral("MAIN_CLUTTER_BAR_BUTTON_D_SELECTED"),
                                  QStringLiteral("MAIN_CLUTTER_BAR_BUTTON_V_SELECTED")};
    return names[index(button)];
}

QRect rect(Transport button) {
    static constexpr std::array rects{QRect(16, 88, 23, 18), QRect(39, 88, 23, 18),  QRect(62, 88, 23, 18),
                                      QRect(85, 88, 23, 18), QRect(108, 88, 22, 18), QRect(136, 89, 22, 16)};
    return rects[index(button)];
}

QString spriteName(Transport button, bool pressed) {
    static const std::array names{
        QStringLiteral("MAIN_PREVIOUS_BUTTON"), QStringLiteral("MAIN_PLAY_BUTTON"),
        QStringLiteral("MAIN_PAUSE_BUTTON"),    QStringLiteral("MAIN_STOP_BUTTON"),
        QStringLiteral("MAIN_NEXT_BUTTON"),     QStringLiteral("MAIN_EJECT_BUTTON")};
    const QString &name = names[index(button)];
    return pressed ? name + QStringLiteral("_ACTIVE") : name;
}

} // namespace vantor::MainWindowLayout
