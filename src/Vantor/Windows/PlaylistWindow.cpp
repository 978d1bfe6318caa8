#include "Vantor/Windows/PlaylistWindow.h"

#include "SkinKit/Rendering/PlaylistWindowRenderer.h"

#include <QHash>
#include <QKeyEvent>
#include <QScreen>

namespace vantor {

namespace {

using List = PlaylistWindowControl;
using Selecting = PlaylistModel::Selecting;
namespace Layout = PlaylistWindowLayout;

List listControl(SkinnedWindow::Control control) {
    return static_cast<List>(control);
}

constexpr SkinnedWindow::Control firstLine = 2000; ///< the rows shown, for assistive tools

bool isText(const QKeyEvent &event) {
    return !event.text().isEmpty() && event.text().at(0).isPrint() &&
           (event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == Qt::NoModifier;
}

} // namespace

PlaylistWindow::PlaylistWindow(PlaylistModel &playlist, PlayerModel &model, Commands &commands)
    : SkinnedWindow(WindowKind::playlist, model, commands), m_playlist(playlist),
      m_entries(new PlaylistCommands(playlist, model, commands, *this)) {
    setWindowTitle(tr("Playlist"));
    commands.addSubmenu(windowTitle(), *this, [this](QMenu &menu) { m_entries->fillMenu(menu); });
    // The size may be from a larger screen, and the grip would be out of reach. setSize() rounds.
    const QSize room = screen()->availableVirtualSize() / zoom() - Layout::step / 2;
    m_playlist.setSize(m_playlist.size().boundedTo(room));
    connect(&playlist, &PlaylistModel::changed, this, &PlaylistWindow::refresh);
    connect(&playlist, &PlaylistModel::sizeChanged, this, [this] { resizeDocked([this] { takeShape(); }); });
    connect(&m_repeat, &QTimer::timeout, this, &PlaylistWindow::repeat);
    takeShape();
}

// The picture

QSize PlaylistWindow::skinSize() const {
    return Layout::windowSize(m_playlist.size(), isShaded());
}

QRegion PlaylistWindow::outline(int zoom) const {
    return QRect({0, 0}, skinSize() * zoom);
}

QRegion PlaylistWindow::composeScene() {
    PlaylistWindowScene scene = m_playlist.scene();
    const List held = listControl(grabbed());
    scene.focused = isActiveWindow();
    scene.pressed = held == List::scrollBar || isPointerOnGrabbed() ? held : List::none;
    scene.menu = m_menu;
    scene.menuEntry = m_menuEntry;
    scene.insertionLine = m_insertion;
    const QRegion changed = PlaylistWindowRenderer::changed(m_scene, scene);
    m_scene = scene;
    return changed;
}

void PlaylistWindow::draw(QPainter &painter, int zoom) const {
    PlaylistWindowRenderer::draw(painter, model().skin(), m_scene, zoom);
}

// The visualizer's picture, or in a pause the clock that blinks.
std::optional<FrameClock::Period> PlaylistWindow::framePeriod() const {
    const bool isPaused = model().target().view().state == PlaybackState::paused;
    const bool moves = !isShaded() && (isPaused || Layout::hasVisualizer(m_playlist.size()));
    return moves ? std::optional(FrameClock::everyFrame) : std::nullopt;
}

// Controls

void PlaylistWindow::click(Control control) {
    using Id = Commands::Id;
    static const QHash<List, Id> ids{{List::previous, Id::previous}, {List::play, Id::play},
                                     {List::pause, Id::pause},       {List::stop, Id::stop},
                                     {List::next, Id::next},         {List::eject, Id::openFiles},
                                     {List::time, Id::toggleTime}};
    const List clicked = listControl(control);
    if (control >= firstLine)
        m_playlist.select(m_playlist.firstRow() + control - firstLine, Selecting::only);
    else if (const auto command = ids.constFind(clicked); command != ids.cend()) {
        commands().trigger(*command);
    } else if (const auto menu = PlaylistMenus::of(clicked); menu && !m_menu) {
        const QRect button = Layout::rect(clicked, m_playlist.size(), isShaded());
        m_entries->popUp(*menu, globalPoint({button.left(), button.bottom() + 1}));
    } else if (clicked == List::shade) {
        model().windows().setShaded(WindowKind::playlist, !isShaded());
    } else if (clicked == List::close) {
        model().windows().setOpen(WindowKind::playlist, false);
    } else if (clicked == List::visualizer) {
        model().visualizer().cycleMode();
    }
}

void PlaylistWindow::setValue(Control slider, double value) {
    if (listControl(slider) == List::scrollBar)
        m_playlist.scrollTo(static_cast<int>(value));
}

std::vector<SkinControl> PlaylistWindow::controls() const {
    std::vector<SkinControl> all;
    for (int line = 0; !isShaded() && line < static_cast<int>(m_scene.rows.size()); ++line) {
        const PlaylistRow &row = m_scene.rows[static_cast<std::size_t>(line)];
        SkinControl &known =
            all.emplace_back(SkinControl::at(firstLine + line, Layout::row(line, m_playlist.size())));
        known.kind = SkinControl::Kind::row;
        known.name = row.title;
        known.text = row.length;
        known.checked = row.selected;
    }
    for (const List control : {List::rows, List::scrollBar, List::add, List::remove, List::select, List::misc,
                               List::previous, List::play, List::pause, List::stop, List::next, List::eject,
                               List::time, List::list, List::visualizer, List::shade, List::close}) {
        const QRect rect = Layout::rect(control, m_playlist.size(), isShaded());
        if (rect.isEmpty())
            continue;
        describe(all.emplace_back(SkinControl::at(control, rect)), control);
    }
    return all;
}

void PlaylistWindow::describe(SkinControl &known, PlaylistWindowControl control) const {
    static const QHash<List, QString> names{{List::add, tr("Add")},
                                            {List::remove, tr("Remove")},
                                            {List::select, tr("Select")},
                                            {List::misc, tr("Miscellaneous")},
                                            {List::list, tr("List")},
                                            {List::previous, tr("Previous")},
                                            {List::play, tr("Play")},
                                            {List::pause, tr("Pause")},
                                            {List::stop, tr("Stop")},
                                            {List::next, tr("Next")},
                                            {List::eject, tr("Open Files")},
                                            {List::time, tr("Time Display")},
                                            {List::visualizer, tr("Visualiser")},
                                            {List::close, tr("Close Playlist")},
                                            {List::rows, tr("Tracks")},
                                            {List::scrollBar, tr("Scroll")}};
    known.name = control == List::shade ? (isShaded() ? tr("Restore Window") : tr("Window Shade"))
                                        : names.value(control);
    if (control == List::rows) {
        known.kind = SkinControl::Kind::text;
        const std::optional<int> row = m_playlist.cursor();
        if (const std::optional<Track> track = row ? m_playlist.track(*row) : std::nullopt)
            known.text = tr("%1, %2 of %3").arg(track->title).arg(*row + 1).arg(m_playlist.count());
    } else if (control == List::scrollBar) {
        known.kind = SkinControl::Kind::slider;
        known.value = m_playlist.firstRow();
        known.maximum = Layout::lastFirstRow(m_playlist.count(), m_playlist.size());
        known.step = 1;
        known.text = tr("Track %1").arg(m_playlist.firstRow() + 1);
    }
}

// Keys

bool PlaylistWindow::wantsKey(const QKeyEvent &event) const {
    // Letters are the commands' first; once a word is being typed, they belong to it.
    if (isText(event) && !m_playlist.isTyping())
        return event.key() == Qt::Key_Slash;
    return keyAction(event) != nullptr;
}

void PlaylistWindow::keyPressEvent(QKeyEvent *event) {
    const std::function<void()> action = isForFocus(*event) ? nullptr : keyAction(*event);
    if (m_menu && event->key() == Qt::Key_Escape)
        closeMenu();
    else if (action)
        action();
    else
        SkinnedWindow::keyPressEvent(event);
}

std::function<void()> PlaylistWindow::keyAction(const QKeyEvent &event) const {
    PlaylistModel &list = m_playlist;
    const Qt::KeyboardModifiers keys = event.modifiers() & ~Qt::KeypadModifier;
    if (isText(event)) {
        if (event.key() == Qt::Key_Slash && !list.isTyping())
            return [&list] { list.beginTyping(); };
        return [&list, text = event.text()] { list.type(text); };
    }
    if (keys == Qt::NoModifier || keys == Qt::ShiftModifier) {
        const int page = std::max(1, Layout::visibleRows(list.size()) - 1);
        const QHash<int, int> steps{{Qt::Key_Up, -1},
                                    {Qt::Key_Down, 1},
                                    {Qt::Key_PageUp, -page},
                                    {Qt::Key_PageDown, page},
                                    {Qt::Key_Home, -list.count()},
                                    {Qt::Key_End, list.count()}};
        if (const auto step = steps.constFind(event.key()); step != steps.cend())
            return [&list, by = *step,
                    how = keys == Qt::ShiftModifier ? Selecting::extending : Selecting::only] {
                list.endTyping();
                list.moveCursor(by, how);
            };
    }
    using Action = std::function<void()>;
    const auto resize = [&list](int columns, int rows) {
        const QSize by(columns * Layout::step.width(), rows * Layout::step.height());
        return [&list, by] { list.setSize(list.size() + by); };
    };
    const auto play = [&list] {
        list.endTyping();
        list.play(list.cursor().value_or(-1));
    };
    const QList<std::pair<QKeyCombination, Action>> actions{
        {Qt::Key_Return, play},
        {Qt::Key_Enter, play},
        {Qt::Key_Delete, [&list] { list.removeSelected(); }},
        {Qt::CTRL | Qt::Key_Delete, [&list] { list.crop(); }},
        {Qt::CTRL | Qt::Key_A, [&list] { list.selectAll(); }},
        {Qt::CTRL | Qt::Key_I, [&list] { list.invertSelection(); }},
        {Qt::ALT | Qt::Key_Up, [&list] { list.moveSelected(-1); }},
        {Qt::ALT | Qt::Key_Down, [&list] { list.moveSelected(1); }},
        {Qt::ALT | Qt::Key_3, [this] { m_entries->showFileInfo(); }},
        {Qt::CTRL | Qt::SHIFT | Qt::Key_Left, resize(-1, 0)},
        {Qt::CTRL | Qt::SHIFT | Qt::Key_Right, resize(1, 0)},
        {Qt::CTRL | Qt::SHIFT | Qt::Key_Up, resize(0, isShaded() ? 0 : -1)},
        {Qt::CTRL | Qt::SHIFT | Qt::Key_Down, resize(0, isShaded() ? 0 : 1)},
        {Qt::Key_Escape, [&list] { list.isTyping() ? list.cancelTyping() : list.selectNone(); }},
    };
    for (const auto &[combination, action] : actions) {
        if (combination == QKeyCombination(keys, static_cast<Qt::Key>(event.key())))
            return action;
    }
    return nullptr;
}

} // namespace vantor
