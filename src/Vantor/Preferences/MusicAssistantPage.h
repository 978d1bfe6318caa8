#pragma once

#include "Vantor/Library/MusicAssistantServers.h"

#include <QWidget>

class QListWidget;
class QListWidgetItem;
class QStackedWidget;
class QToolButton;

namespace vantor {

class ServerAdder;
class ServerEditor;

/// The Music Assistant servers: a list in the user's order, and below it the one that is selected or a form
/// for another. Main thread; borrows the servers.
class MusicAssistantPage : public QWidget {
    Q_OBJECT

  public:
    explicit MusicAssistantPage(MusicAssistantServers &servers, QWidget *parent = nullptr);

    /// Takes what was typed; false if there is something that cannot be taken.
    [[nodiscard]] bool confirm();

  protected:
    void showEvent(QShowEvent *event) override;

  private:
    [[nodiscard]] QWidget *makeButtons();
    [[nodiscard]] std::optional<QUuid> selected() const;
    void fill();
    void showStates();
    void showSelected();
    void showAdder();
    void takeOrder();
    void move(int step);
    void askToRemove();
    void select(const QUuid &id);

    MusicAssistantServers &m_servers;
    QWidget *m_known; ///< the list with its buttons
    QListWidget *m_list;
    QToolButton *m_up;
    QToolButton *m_down;
    QToolButton *m_remove;
    QStackedWidget *m_below;
    ServerEditor *m_editor;
    ServerAdder *m_adder;
};

} // namespace vantor
