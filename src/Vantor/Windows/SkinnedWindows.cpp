#include "Vantor/Windows/SkinnedWindows.h"

#include "Platform/AppPaths.h"
#include "Vantor/Windows/SkinAccessibility.h"

#include <QApplication>

namespace vantor {

SkinnedWindows::SkinnedWindows(PlayerModel &model, QSettings &settings)
    : m_state(model.windows()), m_equalizerModel(model.player(), settings, AppPaths::dataFolder()),
      m_playlistModel(model, settings), m_commands(model), m_docking(settings), m_main(model, m_commands),
      m_equalizer(model, m_equalizerModel, m_commands), m_playlist(m_playlistModel, model, m_commands) {
    installSkinAccessibility();
}

void SkinnedWindows::show() {
    m_main.dock(m_docking);
    m_equalizer.dock(m_docking);
    m_playlist.dock(m_docking);
    m_docking.restoreOrDefaultLayout();
    m_state.setTransition([this](const std::function<void()> &change) { m_docking.resize(m_main, change); });
    m_main.showIfOpen();
    m_equalizer.showIfOpen();
    m_playlist.showIfOpen();
    m_docking.ensureOnScreen();
    // Where a window manager has put windows by itself is kept too.
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, &m_docking,
                     &WindowDockingCoordinator::layoutDidChange);
}

void SkinnedWindows::bringToFront() {
    m_state.setOpen(WindowKind::main, true);
    for (QWidget *const window : std::initializer_list<QWidget *>{&m_equalizer, &m_playlist, &m_main})
        window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    m_main.raise();
    m_main.activateWindow();
}

} // namespace vantor
