#include "Vantor/Windows/PresetsMenu.h"

#include "Vantor/Windows/AskBefore.h"

#include <QFileDialog>
#include <QInputDialog>

#include <algorithm>

namespace vantor {

namespace {

/// Asks for a preset's name without waiting; `existing` can be chosen from.
void askForName(QWidget &window, const QString &title, const QString &name, const QStringList &existing,
                const std::function<void(const QString &)> &take) {
    auto *dialog = new QInputDialog(&window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(title);
    dialog->setLabelText(PresetsMenu::tr("Name of the preset:"));
    if (!existing.isEmpty()) {
        dialog->setComboBoxEditable(true);
        dialog->setComboBoxItems(existing);
    }
    dialog->setTextValue(name);
    QObject::connect(dialog, &QInputDialog::textValueSelected, &window, take);
    dialog->open();
}

void askForFile(QWidget &window, const QString &title, QFileDialog::AcceptMode mode,
                const std::function<void(const QString &)> &take) {
    auto *dialog = new QFileDialog(&window, title);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(mode);
    dialog->setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog->setDefaultSuffix(QStringLiteral("eqf"));
    dialog->setNameFilters(
        {PresetsMenu::tr("Equalizer presets (%1)").arg(EqualizerModel::filePatterns().join(QLatin1Char(' '))),
         PresetsMenu::tr("All files (*)")});
    QObject::connect(dialog, &QFileDialog::fileSelected, &window, take);
    dialog->open();
}

/// An ampersand in a menu entry's text would mark a key.
QString entryText(const QString &name) {
    constexpr qsizetype longest = 60;
    QString text = name.size() > longest ? name.left(longest) + QStringLiteral("…") : name;
    return text.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

QStringList namesOf(const std::vector<EQPreset> &presets) {
    QStringList names;
    for (const EQPreset &preset : presets)
        names.append(preset.name());
    return names;
}

} // namespace

PresetsMenu::PresetsMenu(EqualizerModel &model, QWidget &window, QWidget &parent)
    : QMenu(tr("Presets"), &parent), m_model(model), m_window(window) {
    addPresets(*this, EQPreset::builtIn());
    addSeparator();
    addOwnPresets();
    addSeparator();
    addTrack();
    addSeparator();
    addFiles();
}

void PresetsMenu::popUp(EqualizerModel &model, QWidget &window, QPoint at) {
    auto *menu = new PresetsMenu(model, window, window);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(at);
}

void PresetsMenu::addPresets(QMenu &menu, const std::vector<EQPreset> &presets) {
    for (const EQPreset &preset : presets) {
        QAction *action = menu.addAction(entryText(preset.name()), &m_model,
                                         [&model = m_model, preset] { model.apply(preset); });
        // Only what sounds now has a tick; a box beside every name would be a thicket.
        const bool sounds = m_model.state().applying(preset) == m_model.state();
        action->setCheckable(sounds);
        action->setChecked(sounds);
    }
}

void PresetsMenu::addOwnPresets() {
    const std::vector<EQPreset> &own = m_model.presets();
    EqualizerModel &model = m_model;
    QWidget &window = m_window;
    QMenu *mine = addMenu(tr("My Presets"));
    addPresets(*mine, own);
    addAction(tr("Save Preset…"), &model, [&model, &window] {
        askForName(window, tr("Save Preset"), {}, namesOf(model.presets()),
                   [&model](const QString &name) { model.savePreset(name); });
    });
    QMenu *rename = addMenu(tr("Rename Preset"));
    QMenu *remove = addMenu(tr("Delete Preset"));
    for (const QString &name : namesOf(own)) {
        rename->addAction(entryText(name) + QStringLiteral("…"), &model, [&model, &window, name] {
            askForName(window, tr("Rename Preset"), name, {},
                       [&model, name](const QString &to) { model.renamePreset(name, to); });
        });
        remove->addAction(entryText(name) + QStringLiteral("…"), &model, [&model, &window, name] {
            askBefore(&window, tr("Delete the preset “%1”?").arg(name), tr("It cannot be brought back."),
                      tr("Delete"), [&model, name] { model.removePreset(name); });
        });
    }
    for (QMenu *menu : {mine, rename, remove})
        menu->setEnabled(!own.empty());
}

void PresetsMenu::addTrack() {
    addAction(tr("Keep for This Track"), &m_model, &EqualizerModel::keepForTrack)
        ->setEnabled(m_model.hasTrack());
    addAction(tr("Forget for This Track"), &m_model, &EqualizerModel::forgetTrack)
        ->setEnabled(m_model.hasTrackSetting());
}

void PresetsMenu::addFiles() {
    EqualizerModel &model = m_model;
    QWidget &window = m_window;
    addAction(tr("Load from File…"), &model, [&model, &window] {
        askForFile(window, tr("Load Presets"), QFileDialog::AcceptOpen,
                   [&model](const QString &path) { model.loadFile(path); });
    });
    addAction(tr("Save to File…"), &model, [&model, &window] {
        askForFile(window, tr("Save Setting"), QFileDialog::AcceptSave,
                   [&model](const QString &path) { model.saveFile(path); });
    });
    addAction(tr("Save My Presets to File…"), &model, [&model, &window] {
        askForFile(window, tr("Save My Presets"), QFileDialog::AcceptSave,
                   [&model](const QString &path) { model.saveLibrary(path); });
    })->setEnabled(!model.presets().empty());
}

} // namespace vantor
