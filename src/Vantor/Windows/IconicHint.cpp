#include "Vantor/Windows/IconicHint.h"

#include <QGuiApplication>
#include <QWindow>

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace vantor {

namespace {

// Of the property WM_HINTS, as the Inter-Client Communication Conventions Manual gives it (4.1.2.4).
constexpr std::size_t initialState = 2;
constexpr std::uint32_t normalState = 1;
using Hints = std::array<std::uint32_t, 9>;

struct Free {
    void operator()(xcb_get_property_reply_t *reply) const { std::free(reply); }
};

} // namespace

void forgetIconicHint(const QWindow &window) {
    const auto *const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || QGuiApplication::platformName() != QLatin1String("xcb"))
        return; // where nothing is shown, there may be an X11 without a connection
    xcb_connection_t *const connection = x11->connection();
    const auto id = static_cast<xcb_window_t>(window.winId());
    constexpr std::uint32_t words = std::tuple_size_v<Hints>;
    const xcb_get_property_cookie_t question =
        xcb_get_property(connection, 0, id, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, 0, words);
    const std::unique_ptr<xcb_get_property_reply_t, Free> reply(
        xcb_get_property_reply(connection, question, nullptr));
    Hints hints{};
    if (!reply || xcb_get_property_value_length(reply.get()) != static_cast<int>(sizeof hints))
        return; // none: a window it is
    std::memcpy(hints.data(), xcb_get_property_value(reply.get()), sizeof hints);
    hints[initialState] = normalState;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, 32,
                        words, hints.data());
}

} // namespace vantor
