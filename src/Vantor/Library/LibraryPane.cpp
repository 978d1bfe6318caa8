#include "Vantor/Library/LibraryPane.h"

#include "Vantor/Windows/MessagePage.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStackedLayout>

namespace vantor {

namespace {

constexpr int patience = 400; // milliseconds

} // namespace

LibraryPane::LibraryPane(QWidget *list, LibraryModel &model, const EmptyText &empty, QWidget *parent)
    : QWidget(parent), m_model(model), m_empty(empty), m_list(list), m_trouble(new QWidget),
      m_sentence(new QLabel), m_message(new MessagePage), m_stack(new QStackedLayout) {
    auto *const again = new QPushButton(tr("Try Again"));
    auto *const bar = new QHBoxLayout(m_trouble);
    bar->setContentsMargins(12, 6, 12, 6);
    m_sentence->setWordWrap(true);
    bar->addWidget(m_sentence, 1);
    bar->addWidget(again);
    m_stack->addWidget(m_list);
    m_stack->addWidget(m_message);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(m_stack, 1);
    layout->addWidget(m_trouble);
    setFocusProxy(m_list);
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, this, [this] { m_message->say({}, tr("Loading…")); });
    connect(again, &QPushButton::clicked, this, [this] { m_model.retry(); });
    connect(&model, &LibraryModel::stateChanged, this, &LibraryPane::showState);
    for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(&model, signal, this, &LibraryPane::showState);
    connect(&model, &QAbstractItemModel::modelReset, this, &LibraryPane::showState);
    showState();
}

void LibraryPane::showState() {
    const std::optional<LibraryFailure> &failure = m_model.failure();
    const bool hasRows = m_model.rowCount({}) > 0;
    const bool isWaiting = !hasRows && !failure && (m_model.isLoading() || !m_model.hasAnswer());
    m_trouble->setVisible(failure && hasRows);
    m_sentence->setText(failure ? failure->sentence : QString());
    if (!isWaiting)
        m_patience.stop();
    if (hasRows) {
        m_stack->setCurrentWidget(m_list);
        return;
    }
    if (failure)
        m_message->say(failure->sentence, {}, tr("Try Again"), [this] { m_model.retry(); });
    else if (!isWaiting)
        m_message->say(m_empty.heading, m_empty.text, m_empty.button, m_empty.action);
    else if (!m_patience.isActive()) {
        m_message->say({}, {});
        m_patience.start(patience);
    }
    m_stack->setCurrentWidget(m_message);
}

} // namespace vantor
