#include "Vantor/Windows/MainMenu.h"

#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Model/SkinSwitcher.h"
#include "Vantor/Remote/OutputMenu.h"
#include "Vantor/Windows/Commands.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QFileInfo>
#include <QMenu>

namespace vantor::MainMenu {

namespace {

using Id = Commands::Id;

QString tr(const char *text) {
    return QCoreApplication::translate("MainMenu", text);
}

/// Adds commands to a menu.
class Adder {
  public:
    explicit Adder(Commands &commands) : m_commands(commands) {}
    void operator()(QMenu &menu, std::initializer_list<Id> ids) const {
        if (!menu.isEmpty())
            menu.addSeparator();
        for (const Id id : ids)
            menu.addAction(&m_commands.action(id));
    }

  private:
    Commands &m_commands;
};

void addSkin(QMenu &menu, const QUrl &skin, PlayerModel &model) {
    QAction *const action =
        menu.addAction(OutputMenu::label(QFileInfo(skin.toLocalFile()).completeBaseName()));
    action->setCheckable(true);
    action->setChecked(skin == model.skinUrl());
    QObject::connect(action, &QAction::triggered, &model, [&model, skin] { model.wear(skin); });
}

void fillSkinsFolder(QMenu &menu, Commands &commands, const SkinSwitcher &skins) {
    for (const SkinRecord &skin : skins.first()) {
        QAction *const action = menu.addAction(OutputMenu::label(skin.name));
        action->setCheckable(true);
        action->setChecked(skin.id == skins.worn());
        QObject::connect(action, &QAction::triggered, &commands,
                         [&commands, skin] { commands.wearSkin(skin); });
    }
    if (skins.first().empty())
        menu.addAction(tr("No skins in this folder"))->setEnabled(false);
    if (skins.first().size() < SkinSwitcher::menuLength)
        return;
    menu.addSeparator();
    QObject::connect(menu.addAction(tr("All of Them…")), &QAction::triggered, &commands,
                     [&commands] { commands.trigger(Id::skinBrowser); });
}

void fillSkins(QMenu &menu, Commands &commands, const Adder &add, PlayerModel &model) {
    add(menu, {Id::loadSkin, Id::defaultSkin});
    add(menu, {Id::skinBrowser, Id::nextSkin, Id::previousSkin, Id::randomSkin});
    const QList<QUrl> recent = model.skins().recent();
    if (!recent.isEmpty())
        menu.addSeparator();
    for (const QUrl &skin : recent)
        addSkin(menu, skin, model);
    if (commands.skins() && !model.skins().folder().isEmpty())
        fillSkinsFolder(*menu.addMenu(tr("Skins Folder")), commands, *commands.skins());
}

void fillOutputs(QMenu &menu, PlayerModel &model) {
    auto *group = new QActionGroup(&menu);
    for (const OutputChoice::Item &item : model.output().items()) {
        QAction *const action = menu.addAction(OutputMenu::label(item.label));
        action->setCheckable(true);
        action->setChecked(item.chosen);
        group->addAction(action);
        QObject::connect(action, &QAction::triggered, &model,
                         [&model, key = item.key] { model.output().choose(key); });
    }
}

/// Where the music source plays.
void fillSpeakers(QMenu &menu, Commands &commands, RemoteOutput &remote) {
    const LibraryBrowser *const browser = remote.browser();
    OutputMenu::fill(menu, remote);
    menu.addSeparator();
    if (remote.isAvailable() && remote.device().groupableWith)
        OutputMenu::fillGroup(*menu.addMenu(tr("Plays Along")), remote, remote.device());
    menu.addAction(&commands.action(Id::mute));
    commands.action(Id::speakers)
        .setEnabled(browser && (browser->outputs().size() > 1 || remote.isSelected()));
    menu.addAction(&commands.action(Id::speakers));
    menu.addAction(&commands.action(Id::favoriteTrack));
}

} // namespace

void fill(QMenu &menu, Commands &commands, PlayerModel &model) {
    const Adder add(commands);
    add(menu, {Id::openFiles, Id::openFolder, Id::openAddress, Id::fileInfo, Id::skippedFiles});
    add(menu, {Id::library});
    menu.addSeparator();

    QMenu *const playback = menu.addMenu(tr("Playback"));
    add(*playback, {Id::previous, Id::play, Id::pause, Id::stop, Id::next});
    add(*playback, {Id::seekBack, Id::seekForward, Id::volumeUp, Id::volumeDown});
    add(*playback, {Id::jumpToFile, Id::shuffle, Id::repeat});
    playback->addSeparator();
    fillOutputs(*playback->addMenu(tr("Output Device")), model);
    fillSpeakers(*menu.addMenu(tr("Output")), commands, model.remote());
    commands.fillSubmenus(menu);
    fillSkins(*menu.addMenu(tr("Skins")), commands, add, model);
    fillVisualisation(*menu.addMenu(tr("Visualisation")), commands);
    QMenu *const windows = menu.addMenu(tr("Windows"));
    add(*windows, {Id::mainWindow, Id::equalizer, Id::playlist});
    add(*windows, {Id::shade, Id::minimize});
    QMenu *const options = menu.addMenu(tr("Options"));
    add(*options, {Id::timeElapsed, Id::timeRemaining});
    add(*options, {Id::doubleSize, Id::alwaysOnTop});

    add(menu, {Id::preferences, Id::about});
    add(menu, {Id::quit});
}

void fillVisualisation(QMenu &menu, Commands &commands) {
    const Adder add(commands);
    add(menu, {Id::spectrum, Id::oscilloscope, Id::visualizerOff});
    add(menu, {Id::wideBars, Id::thinBars, Id::peaks});
    add(menu, {Id::scopeDots, Id::scopeLines, Id::scopeSolid});
}

} // namespace vantor::MainMenu
