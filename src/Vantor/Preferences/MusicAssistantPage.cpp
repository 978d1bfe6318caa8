#include "Vantor/Preferences/MusicAssistantPage.h"

#include "Vantor/Preferences/ServerAdder.h"
#include "Vantor/Preferences/ServerEditor.h"
#include "Vantor/Windows/AskBefore.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QPainter>
#include <QShortcut>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QToolButton>

namespace vantor {

namespace {

constexpr int idRole = Qt::UserRole;
constexpr int stateRole = Qt::UserRole + 1;

/// The name at the left, how it stands at the right.
class ServerDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        const bool isSelected = option.state.testFlag(QStyle::State_Selected);
        QColor color = option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
        color.setAlphaF(0.62F);
        painter->save();
        painter->setPen(color);
        painter->drawText(option.rect.adjusted(8, 0, -8, 0), Qt::AlignRight | Qt::AlignVCenter,
                          index.data(stateRole).toString());
        painter->restore();
    }
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 6);
    }
};

QToolButton *makeButton(const QString &text, Qt::ArrowType arrow = Qt::NoArrow) {
    auto *const button = new QToolButton;
    button->setAutoRaise(true);
    button->setArrowType(arrow);
    button->setText(text);
    if (arrow != Qt::NoArrow)
        button->setToolTip(text);
    button->setAccessibleName(text);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

} // namespace

MusicAssistantPage::MusicAssistantPage(MusicAssistantServers &servers, QWidget *parent)
    : QWidget(parent), m_servers(servers), m_known(new QWidget), m_list(new QListWidget),
      m_up(makeButton(tr("Move up"), Qt::UpArrow)), m_down(makeButton(tr("Move down"), Qt::DownArrow)),
      m_remove(makeButton(tr("Remove…"))), m_below(new QStackedWidget), m_editor(new ServerEditor(servers)),
      m_adder(new ServerAdder(servers)) {
    m_list->setAccessibleName(tr("Servers"));
    m_list->setItemDelegate(new ServerDelegate(m_list));
    m_list->setDragDropMode(QAbstractItemView::InternalMove);
    m_list->setToolTip(
        tr("The first one that can be reached is used, those of the Wi-Fi network before the others"));
    auto *const known = new QVBoxLayout(m_known);
    known->setContentsMargins(0, 0, 0, 0);
    known->setSpacing(2);
    known->addWidget(m_list);
    known->addWidget(makeButtons());
    m_below->addWidget(m_editor);
    m_below->addWidget(m_adder);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 0, 0, 0);
    layout->addWidget(m_known);
    layout->addWidget(m_below, 1);

    connect(m_list, &QListWidget::itemSelectionChanged, this, &MusicAssistantPage::showSelected);
    // Not inside the drop, which still needs the rows.
    connect(m_list->model(), &QAbstractItemModel::rowsMoved, this, &MusicAssistantPage::takeOrder,
            Qt::QueuedConnection);
    connect(m_adder, &ServerAdder::added, this, [this](const QUuid &id) {
        select(id);
        m_editor->askForToken();
    });
    connect(m_adder, &ServerAdder::cancelled, this, &MusicAssistantPage::showSelected);
    connect(&servers.list(), &MusicAssistantServerList::changed, this, &MusicAssistantPage::fill);
    connect(&servers, &MusicAssistantServers::selectionChanged, this, &MusicAssistantPage::showStates);
    connect(&servers.settings(), &MusicAssistantSettingsModel::statusChanged, this,
            &MusicAssistantPage::showStates);
    fill();
    if (m_list->count() > 0)
        m_list->setCurrentRow(0);
}

QWidget *MusicAssistantPage::makeButtons() {
    auto *const add = makeButton(tr("Add…"));
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    for (QToolButton *const button : {add, m_remove})
        layout->addWidget(button);
    layout->addStretch(1);
    for (QToolButton *const button : {m_up, m_down})
        layout->addWidget(button);
    connect(add, &QToolButton::clicked, this, &MusicAssistantPage::showAdder);
    connect(m_remove, &QToolButton::clicked, this, &MusicAssistantPage::askToRemove);
    connect(m_up, &QToolButton::clicked, this, [this] { move(-1); });
    connect(m_down, &QToolButton::clicked, this, [this] { move(1); });
    auto *const removing = new QShortcut(QKeySequence::Delete, m_list);
    removing->setContext(Qt::WidgetShortcut);
    connect(removing, &QShortcut::activated, this, &MusicAssistantPage::askToRemove);
    return row;
}

// What is in the network is worth knowing while somebody looks at this page.
void MusicAssistantPage::showEvent(QShowEvent *event) {
    m_servers.wakeUp();
    QWidget::showEvent(event);
}

bool MusicAssistantPage::confirm() {
    return m_below->currentWidget() != m_editor || m_editor->confirm();
}

// The list

std::optional<QUuid> MusicAssistantPage::selected() const {
    const QListWidgetItem *const item = m_list->currentItem();
    return item && item->isSelected() ? std::optional(item->data(idRole).toUuid()) : std::nullopt;
}

void MusicAssistantPage::fill() {
    const auto before = selected();
    const int row = m_list->currentRow();
    {
        const QSignalBlocker blocker(m_list);
        m_list->clear();
        for (const auto &server : m_servers.list().servers()) {
            auto *const item = new QListWidgetItem(server.name, m_list);
            item->setData(idRole, server.id);
            item->setFlags(item->flags() & ~Qt::ItemIsDropEnabled);
            item->setToolTip(MusicAssistantAddressInput::displayText(server.address.baseURL));
            if (before == server.id)
                m_list->setCurrentItem(item);
        }
        if (before && !selected())
            m_list->setCurrentRow(std::min(row, m_list->count() - 1));
    }
    const int rows = std::clamp(m_list->count(), 2, 4);
    m_list->setFixedHeight(rows * std::max(m_list->sizeHintForRow(0), 1) + 2 * m_list->frameWidth());
    showStates();
    if (selected() != before || !selected())
        showSelected();
    m_up->setEnabled(m_list->currentRow() > 0);
    m_down->setEnabled(selected() && m_list->currentRow() < m_list->count() - 1);
}

void MusicAssistantPage::showStates() {
    const MusicAssistantSelectionController *const selection = m_servers.selection();
    for (int row = 0; row < m_list->count(); ++row) {
        QListWidgetItem &item = *m_list->item(row);
        const QUuid id = item.data(idRole).toUuid();
        const auto server = m_servers.list().server(id);
        QString state;
        if (server && !server->address.isVerified())
            state = tr("Not tested yet");
        else if (selection && selection->current() && selection->current()->id == id)
            state = tr("In use");
        else if (selection)
            state = selection->outcomeText(id);
        item.setData(stateRole, state);
        item.setData(Qt::AccessibleTextRole,
                     state.isEmpty() ? item.text() : item.text() + QStringLiteral(", ") + state);
    }
}

void MusicAssistantPage::showSelected() {
    const auto id = selected();
    m_known->setVisible(m_list->count() > 0);
    m_remove->setEnabled(id.has_value());
    m_up->setEnabled(id && m_list->currentRow() > 0);
    m_down->setEnabled(id && m_list->currentRow() < m_list->count() - 1);
    if (!id) {
        showAdder();
        return;
    }
    m_editor->edit(*id);
    m_below->setCurrentWidget(m_editor);
    m_servers.discovery().stop();
}

void MusicAssistantPage::showAdder() {
    m_known->setVisible(m_list->count() > 0);
    m_adder->begin();
    m_below->setCurrentWidget(m_adder);
    m_adder->setFocus();
}

void MusicAssistantPage::select(const QUuid &id) {
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->data(idRole).toUuid() == id)
            m_list->setCurrentRow(row);
    }
    showSelected();
}

// What is done to it

void MusicAssistantPage::takeOrder() {
    for (int row = 0; row < m_list->count(); ++row) {
        const QUuid id = m_list->item(row)->data(idRole).toUuid();
        if (m_servers.list().servers().at(static_cast<std::size_t>(row)).id != id) {
            m_servers.list().move(id, row);
            return; // which has had the list filled in its new order
        }
    }
}

void MusicAssistantPage::move(int step) {
    if (const auto id = selected())
        m_servers.list().move(*id, m_list->currentRow() + step);
}

void MusicAssistantPage::askToRemove() {
    const auto id = selected();
    const auto server = id ? m_servers.list().server(*id) : std::nullopt;
    if (!server)
        return;
    askBefore(this, tr("Remove “%1”?").arg(server->name),
              tr("Its token is forgotten. The server itself stays as it is."), tr("Remove"),
              [this, id] { m_servers.settings().remove(*id); });
}

} // namespace vantor
