#include "Vantor/App/IndexedSkins.h"

#include "Platform/AppPaths.h"
#include "Vantor/Museum/MuseumSetup.h"
#include "Vantor/Windows/Commands.h"
#include "Vantor/Windows/SkinBrowserWindow.h"

namespace vantor {

IndexedSkins::IndexedSkins(PlayerModel &model, Commands &commands, QSettings &settings)
    : m_model(model), m_commands(commands), m_settings(settings), m_library(SkinIndexStore::defaultURL()),
      m_switcher(model, m_library) {
    m_library.setFolder(model.skins().folder());
    QObject::connect(&model.skins(), &SkinShelf::folderChanged, &m_library,
                     [this] { m_library.setFolder(m_model.skins().folder()); });
    commands.setSkins(&m_switcher, [this] { browse(); });
}

IndexedSkins::~IndexedSkins() {
    m_commands.setSkins(nullptr, {});
}

void IndexedSkins::browse() {
    if (!m_browser) {
        m_thumbnails = std::make_unique<ThumbnailCache>(AppPaths::cacheFolder() + QStringLiteral("/skins"));
        m_browser =
            std::make_unique<SkinBrowserWindow>(m_model, m_library, m_switcher, *m_thumbnails, m_settings);
        m_browser->addMuseum(MuseumSetup::chosen(m_settings));
        using Id = Commands::Id;
        for (const Id id : {Id::skinBrowser, Id::nextSkin, Id::previousSkin, Id::randomSkin})
            m_browser->addAction(&m_commands.action(id));
    }
    m_browser->bringToFront(m_commands.shownFrames());
}

} // namespace vantor
