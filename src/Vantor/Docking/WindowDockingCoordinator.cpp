#include "Vantor/Docking/WindowDockingCoordinator.h"

#include "WindowDocking/DesktopSpace.h"
#include "WindowDocking/SnapUtils.h"
#include "WindowDocking/WindowStacking.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <cmath>

namespace vantor {

namespace {

using namespace std::chrono_literals;

constexpr Box everywhere{-100'000, -100'000, 200'000, 200'000}; // without a screen nothing is off one
constexpr double farthest = 32'000;                             // a window system counts with 16 bits
constexpr auto confirmationTime = 250ms;                        // of a move, by a slow window manager
constexpr auto screensSettleTime = 200ms; // a screen's change comes in parts, and others react to it too

Box boxOf(const QRect &rect) {
    return {static_cast<double>(rect.x()), static_cast<double>(rect.y()), static_cast<double>(rect.width()),
            static_cast<double>(rect.height())};
}

Offset asOffset(QPoint point) {
    return {static_cast<double>(point.x()), static_cast<double>(point.y())};
}

QPoint pointOf(Offset topLeft) {
    const auto whole = [](double v) {
        return static_cast<int>(std::lround(std::clamp(v, -farthest, farthest)));
    };
    return {whole(topLeft.x), whole(topLeft.y)};
}

/// The areas for windows, without panels, the primary screen's first.
std::vector<Box> screenBoxes() {
    std::vector<Box> boxes;
    for (const QScreen *const screen : QGuiApplication::screens())
        boxes.push_back(boxOf(screen->availableGeometry()));
    return boxes;
}

Box primaryOf(const std::vector<Box> &screens) {
    return screens.empty() ? everywhere : screens.front();
}

bool isShown(const QWidget &window) {
    return window.isVisible() && !window.isMinimized();
}

/// A window of a fixed size has that one, whatever the window system has confirmed so far.
QSize sizeOf(const QWidget &window) {
    return window.minimumSize() == window.maximumSize() ? window.minimumSize() : window.size();
}

/// "x y width height …" in upwards coordinates.
std::optional<QRectF> legacyFrame(const QString &text) {
    const QStringList words = text.simplified().split(QLatin1Char(' '));
    if (words.size() < 4)
        return {};
    double numbers[4];
    for (int i = 0; i < 4; ++i) {
        bool isNumber = false;
        numbers[i] = words[i].toDouble(&isNumber);
        if (!isNumber || !std::isfinite(numbers[i]))
            return {};
    }
    return QRectF(numbers[0], numbers[1], numbers[2], numbers[3]);
}

} // namespace

WindowDockingCoordinator::WindowDockingCoordinator(QSettings &defaults)
    : m_defaults(defaults), m_store(defaults) {
    m_screensSettle.setSingleShot(true);
    m_screensSettle.setInterval(screensSettleTime);
    connect(&m_screensSettle, &QTimer::timeout, this, &WindowDockingCoordinator::ensureOnScreen);
}

// Windows and screens

void WindowDockingCoordinator::register_(SkinWindowController &controller) {
    m_controllers[controller.windowKind()] = &controller;
    m_frontToBack.push_back(controller.windowKind());
    attachChildWindows(controller);
}

SkinWindowController *WindowDockingCoordinator::controller(WindowKind kind) const {
    const auto found = m_controllers.find(kind);
    return found == m_controllers.end() ? nullptr : found->second;
}

QRect WindowDockingCoordinator::frame(SkinWindowController &controller) const {
    const QWidget &window = controller.widget();
    const auto asked = m_asked.find(controller.windowKind());
    const bool isPending =
        asked != m_asked.end() && !asked->second.since.hasExpired(confirmationTime.count());
    return {isPending ? asked->second.topLeft : window.pos(), sizeOf(window)};
}

std::vector<DockedWindow> WindowDockingCoordinator::dockedWindows() const {
    std::vector<DockedWindow> windows;
    for (const auto &[kind, controller] : m_controllers) {
        if (isShown(controller->widget()))
            windows.push_back({kind, boxOf(frame(*controller))});
    }
    return windows;
}

DragLimits WindowDockingCoordinator::dragLimits() const {
    std::map<WindowKind, double> titleBarHeights;
    for (const auto &[kind, controller] : m_controllers)
        titleBarHeights[kind] = controller->titleBarHeight();
    const std::vector<Box> screens = screenBoxes();
    return {screens, primaryOf(screens), titleBarHeights};
}

// X11 moves no window along with its parent, so that a window can be moved without a look at the others.
void WindowDockingCoordinator::move(SkinWindowController &controller, Offset toTopLeft) {
    Asked &asked = m_asked[controller.windowKind()];
    asked.topLeft = pointOf(toTopLeft);
    asked.since.start();
    controller.widget().move(asked.topLeft);
}

void WindowDockingCoordinator::place(const std::map<WindowKind, Offset> &topLefts) {
    for (const auto &[kind, topLeft] : topLefts) {
        if (SkinWindowController *const window = controller(kind))
            move(*window, topLeft);
    }
}

void WindowDockingCoordinator::moveAllBy(Offset offset) {
    for (const auto &[kind, controller] : m_controllers)
        move(*controller, SnapUtils::applyDiff(boxOf(frame(*controller)).topLeft(), offset));
}

// Layout

void WindowDockingCoordinator::layoutDidChange() {
    WindowLayout layout;
    for (const auto &[kind, controller] : m_controllers) {
        const Box box = boxOf(frame(*controller));
        layout.windows[rawValue(kind)] = {box.x, box.y};
    }
    m_store.save(layout);
}

void WindowDockingCoordinator::restoreOrDefaultLayout() {
    watchScreens();
    const std::optional<WindowLayout> layout = m_store.load();
    std::vector<WindowKind> homeless;
    if (layout || !seedFromLegacyFrames()) {
        for (const auto &[kind, controller] : m_controllers) {
            if (const auto topLeft = layout ? layout->topLeft(kind) : std::nullopt)
                move(*controller, *topLeft);
            else
                homeless.push_back(kind);
        }
    }
    if (!homeless.empty())
        stack(homeless);
    ensureOnScreen();
}

bool WindowDockingCoordinator::seedFromLegacyFrames() {
    static const std::map<WindowKind, QString> names{
        {WindowKind::main, QStringLiteral("MainWindow")},
        {WindowKind::equalizer, QStringLiteral("EqualizerWindow")},
        {WindowKind::playlist, QStringLiteral("PlaylistWindow")}};
    const QScreen *const primary = QGuiApplication::primaryScreen();
    const Box screen = primary ? boxOf(primary->geometry()) : Box{};
    std::map<WindowKind, Offset> found;
    for (const auto &[kind, name] : names) {
        const QString text = m_defaults.value(QStringLiteral("NSWindow Frame ") + name).toString();
        if (const std::optional<QRectF> frame = legacyFrame(text))
            found[kind] =
                SnapUtils::applyDiff(DesktopSpace{screen.height}.box(*frame).topLeft(), screen.topLeft());
    }
    place(found);
    return !found.empty();
}

void WindowDockingCoordinator::stack(std::span<const WindowKind> kinds) {
    std::map<WindowKind, BoxSize> sizes;
    for (const WindowKind kind : kinds) {
        const Box box = boxOf(frame(*controller(kind)));
        sizes[kind] = {box.width, box.height};
    }
    const Box area = primaryOf(screenBoxes());
    std::map<WindowKind, Offset> places = LayoutRules::stackedAndCentered(sizes, allWindowKinds, area);
    // A stack larger than the screen begins at its edge: in the middle, narrow windows would be outside.
    if (!places.empty()) {
        const Offset first = places.begin()->second; // they share the left edge, and it is the topmost
        const Offset in{std::max(0.0, area.x - first.x), std::max(0.0, area.y - first.y)};
        for (auto &[kind, topLeft] : places)
            topLeft = SnapUtils::applyDiff(topLeft, in);
    }
    place(places);
    layoutDidChange();
}

void WindowDockingCoordinator::ensureOnScreen() {
    if (m_drag) {
        m_screensSettle.start(); // not out of the user's hand
        return;
    }
    const std::vector<Box> screens = screenBoxes();
    const auto recovery = LayoutRules::recovery(dockedWindows(), screens, primaryOf(screens));
    if (!recovery)
        return;
    if (const auto *const shift = std::get_if<LayoutRules::Recovery::Shift>(&recovery->kind)) {
        moveAllBy(shift->offset);
        layoutDidChange();
        return;
    }
    std::vector<WindowKind> all;
    for (const auto &[kind, controller] : m_controllers)
        all.push_back(kind);
    stack(all);
}

void WindowDockingCoordinator::watchScreens() {
    if (std::exchange(m_watchesScreens, true))
        return;
    const auto settle = [this] { m_screensSettle.start(); };
    const auto watch = [this, settle](QScreen *screen) {
        connect(screen, &QScreen::geometryChanged, this, settle);
        connect(screen, &QScreen::availableGeometryChanged, this, settle);
    };
    for (QScreen *const screen : QGuiApplication::screens())
        watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [watch, settle](QScreen *screen) {
        watch(screen);
        settle();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, settle);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, settle);
}

void WindowDockingCoordinator::prepareToShow(SkinWindowController &appearing) {
    const std::vector<DockedWindow> windows = dockedWindows();
    const QSize size = sizeOf(appearing.widget());
    const auto hasRoomBelow = [&](const DockedWindow &above) {
        const Box place{above.box.x, above.box.bottom(), static_cast<double>(size.width()),
                        static_cast<double>(size.height())};
        return std::ranges::none_of(windows, [&](const DockedWindow &other) {
            const Offset shared = overlap(place, other.box);
            return shared.x > 0 && shared.y > 0;
        });
    };
    const auto below = std::ranges::find_if(windows, hasRoomBelow);
    if (below != windows.end())
        move(appearing, asOffset(showPosition(appearing, *controller(below->kind))));
}

QPoint WindowDockingCoordinator::showPosition(SkinWindowController &forController,
                                              SkinWindowController &below) {
    const WindowKind kind = forController.windowKind();
    const Box own = boxOf(frame(forController));
    const std::optional<WindowLayout> layout = m_store.load();
    const std::optional<Offset> saved = layout ? layout->topLeft(kind) : std::nullopt;
    std::vector<Box> others;
    for (const DockedWindow &window : dockedWindows()) {
        if (window.kind != kind)
            others.push_back(window.box);
    }
    const std::vector<Box> screens = screenBoxes();
    return pointOf(LayoutRules::showPosition({own.width, own.height}, saved, boxOf(frame(below)), others,
                                             forController.titleBarHeight(), screens, primaryOf(screens)));
}

// Drags and sizes

QPoint WindowDockingCoordinator::dragBegan(SkinWindowController &controller) {
    const QPoint origin = frame(controller).topLeft();
    m_drag.emplace(DragSession(controller.windowKind(), dockedWindows()), origin);
    return origin;
}

void WindowDockingCoordinator::drag(SkinWindowController &controller, QPoint to) {
    if (!m_drag) {
        controller.widget().move(to);
        return;
    }
    place(m_drag->session.positions(asOffset(to - m_drag->origin), dragLimits()));
}

void WindowDockingCoordinator::dragEnded(SkinWindowController &) {
    if (!m_drag)
        return;
    std::vector<DockedWindow> moved = m_drag->session.moving();
    for (DockedWindow &window : moved)
        window.box = boxOf(frame(*controller(window.kind)));
    const DragLimits limits = dragLimits();
    const std::optional<Offset> back =
        LayoutRules::dragRecovery(moved, limits.titleBarHeights, limits.screens, limits.primary);
    if (back) {
        for (const DockedWindow &window : moved)
            move(*controller(window.kind), SnapUtils::applyDiff(window.box.topLeft(), *back));
    }
    m_drag.reset();
    layoutDidChange();
}

void WindowDockingCoordinator::resize(SkinWindowController &, const std::function<void()> &change) {
    const std::vector<DockedWindow> before = dockedWindows();
    change();
    std::map<WindowKind, BoxSize> sizeDiff;
    for (const DockedWindow &window : before) {
        const Box now = boxOf(frame(*controller(window.kind)));
        sizeDiff[window.kind] = {now.width - window.box.width, now.height - window.box.height};
    }
    const std::map<WindowKind, Offset> pushes =
        WindowGraph::positionDiff(WindowGraph::generate(before), sizeDiff);
    for (const DockedWindow &window : before) {
        if (const Offset push = pushes.at(window.kind); push != Offset::zero)
            move(*controller(window.kind), SnapUtils::applyDiff(window.box.topLeft(), push));
    }
    keepReachable();
    layoutDidChange();
}

// A neighbour may have been pushed off the screen, or a window shown under one at its foot.
void WindowDockingCoordinator::keepReachable() {
    const std::vector<DockedWindow> windows = dockedWindows();
    const DragLimits limits = dragLimits();
    if (!LayoutRules::dragRecovery(windows, limits.titleBarHeights, limits.screens, limits.primary))
        return;
    const auto recovery = LayoutRules::recovery(windows, limits.screens, limits.primary);
    if (const auto *const shift =
            recovery ? std::get_if<LayoutRules::Recovery::Shift>(&recovery->kind) : nullptr) {
        moveAllBy(shift->offset);
        return;
    }
    // They are too far apart to come together. Nobody asked for a new layout: only what is lost moves.
    for (const DockedWindow &window : windows) {
        const std::optional<Offset> back =
            LayoutRules::dragRecovery({&window, 1}, limits.titleBarHeights, limits.screens, limits.primary);
        if (back)
            move(*controller(window.kind), SnapUtils::applyDiff(window.box.topLeft(), *back));
    }
}

// Front and back, parent and child

// Qt tells nothing of the order in which the window system stacks windows: the present one is that of the
// raises that went through here, which is right as long as the user brings windows up by clicks.
void WindowDockingCoordinator::raiseGroup(SkinWindowController &around) {
    const WindowKind key = around.windowKind();
    const std::vector<DockedWindow> windows = dockedWindows();
    std::vector<WindowKind> frontToBack;
    for (const WindowKind kind : m_frontToBack) {
        if (std::ranges::any_of(windows, [kind](const DockedWindow &window) { return window.kind == kind; }))
            frontToBack.push_back(kind);
    }
    const auto placements =
        WindowStacking::raise(SnapUtils::traceConnection(windows, key), key, frontToBack, parentWindow);
    std::vector<WindowKind> chain{key};
    for (const auto &placement : placements)
        chain.push_back(placement.window);
    // A child window stays above its parent. Window managers see to that; without one it is done here, and
    // for the children outside of the group too.
    if (std::erase(chain, WindowKind::main) > 0) {
        for (const WindowKind kind : frontToBack) {
            if (parentWindow(kind) && std::ranges::count(chain, kind) == 0)
                chain.push_back(kind);
        }
        chain.push_back(WindowKind::main);
    }
    // From the last to the first, each on top of all: the one order that every window manager takes.
    for (auto kind = chain.rbegin(); kind != chain.rend(); ++kind)
        controller(*kind)->widget().raise();
    std::erase_if(m_frontToBack, [&](WindowKind kind) { return std::ranges::count(chain, kind) > 0; });
    m_frontToBack.insert(m_frontToBack.begin(), chain.begin(), chain.end());
}

// On X11 a child window is a transient one: the window manager keeps it above its parent, lists only the
// parent and minimises both together. It does not move along; moving groups is the drag's business. The
// relation is told when a window is shown and holds while it is minimised, so that it is made once and never
// undone. Qt tells it for dialogs only, hence the type.
void WindowDockingCoordinator::attachChildWindows(SkinWindowController &) {
    SkinWindowController *const parent = controller(WindowKind::main);
    if (!parent)
        return;
    parent->widget().winId(); // makes the handle
    for (const auto &[kind, child] : m_controllers) {
        if (parentWindow(kind) != WindowKind::main)
            continue;
        QWidget &window = child->widget();
        window.overrideWindowFlags((window.windowFlags() & ~Qt::WindowType_Mask) | Qt::Dialog);
        window.winId();
        window.windowHandle()->setFlags(window.windowFlags());
        window.windowHandle()->setTransientParent(parent->widget().windowHandle());
    }
}

// Most window managers minimise child windows with their parent; this does it under all of them.
void WindowDockingCoordinator::skinnedWindowWillMinimize() {
    for (const auto &[kind, child] : m_controllers) {
        QWidget &window = child->widget();
        if (parentWindow(kind) && isShown(window)) {
            m_minimizedAlong.insert(kind);
            window.setWindowState(window.windowState() | Qt::WindowMinimized);
        }
    }
}

void WindowDockingCoordinator::skinnedWindowDidDeminimize() {
    for (const WindowKind kind : std::exchange(m_minimizedAlong, {})) {
        QWidget &window = controller(kind)->widget();
        window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    }
    m_screensSettle.start(); // the screens may have changed meanwhile
}

} // namespace vantor
