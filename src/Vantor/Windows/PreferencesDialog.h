#pragma once

#include "Vantor/Preferences/PreferencesPage.h"

#include <QDialog>

class QListWidget;
class QStackedWidget;

namespace vantor {

class MusicAssistantPage;
class MusicLibrary;
class NetworkSpeaker;
class PlayerModel;

/// Everything that the user can set, a page a subject. What is changed holds at once. Its button does not
/// close it over a folder or an address that is none; Escape does. Deletes itself when closed. Main thread;
/// borrows what it is given.
class PreferencesDialog : public QDialog {
    Q_OBJECT

  public:
    /// `library`: none where there is none to be looked through, and no servers. `speaker`: none likewise.
    PreferencesDialog(PlayerModel &model, MusicLibrary *library, NetworkSpeaker *speaker, QWidget *parent);

    void showPage(PreferencesPage page);

  protected:
    void resizeEvent(QResizeEvent *event) override;

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
