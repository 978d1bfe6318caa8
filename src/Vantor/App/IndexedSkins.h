#pragma once

#include "SkinBrowser/SkinLibraryModel.h"
#include "SkinBrowser/ThumbnailCache.h"
#include "Vantor/Model/SkinSwitcher.h"

#include <memory>

class QSettings;

namespace vantor {

class Commands;
class PlayerModel;
class SkinBrowserWindow;

/// The index of the user's skins folder, kept up to date while this object lives, and what works through it:
/// the commands that go from skin to skin, and the browser, made when it is first asked for. Main thread;
/// borrows everything it is given.
class IndexedSkins {
  public:
    IndexedSkins(PlayerModel &model, Commands &commands, QSettings &settings);
    ~IndexedSkins();
    Q_DISABLE_COPY_MOVE(IndexedSkins)

  private:
    void browse();

    PlayerModel &m_model;
    Commands &m_commands;
    QSettings &m_settings;
    SkinLibraryModel m_library;
    SkinSwitcher m_switcher;
    std::unique_ptr<ThumbnailCache> m_thumbnails;
    std::unique_ptr<SkinBrowserWindow> m_browser;
};

} // namespace vantor
