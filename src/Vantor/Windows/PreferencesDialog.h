#pragma once

#include "Vantor/Preferences/PreferencesPage.h"

#include <QDialog>

class QListWidget;
class QStackedWidget;

namespace vantor {

class MusicAssistantPage;
class MusicLibrary;
class PlayerModel;

/// Everything that the user can set, a page a subject. What is changed holds at once. Its button does not
/// close it over a folder or an address that is none; Escape does. Deletes itself when closed. Main thread;
/// borrows the model and the library.
class PreferencesDialog : public QDialog {
    Q_OBJECT

  public:
    /// `library`: none where there is none to be looked through, and no servers.
    PreferencesDialog(PlayerModel &model, MusicLibrary *library, QWidget *parent);

    void showPage(PreferencesPage page);

  private:
    void addPage(PreferencesPage page, const QString &title, QWidget *widget);
    [[nodiscard]] QWidget *generalPage();
    [[nodiscard]] QWidget *skinsPage();
    [[nodiscard]] QWidget *libraryPage();
    [[nodiscard]] QWidget *rescanField();
    [[nodiscard]] QWidget *outputPage();
    [[nodiscard]] QWidget *playbackPage();
    void closeIfConfirmed();

    PlayerModel &m_model;
    MusicLibrary *m_library;
    QListWidget *m_titles;
    QStackedWidget *m_pages;
    MusicAssistantPage *m_servers = nullptr;
};

} // namespace vantor
