#include "Vantor/Windows/JumpToFileDialog.h"

#include "MusicBackendKit/MarqueeText.h"
#include "Vantor/Model/TrackFinder.h"
#include "Vantor/Windows/FaintText.h"

#include <QAbstractListModel>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantor {

namespace {

constexpr std::chrono::milliseconds burstTime{100}; // an import changes the queue many times a second

} // namespace

/// The queue as it was when it was last looked at, and those of its rows that were found.
class JumpToFileDialog::FoundTracks : public QAbstractListModel {
  public:
    FoundTracks(const Player &player, QObject *parent) : QAbstractListModel(parent), m_player(player) {
        takeQueue();
    }

    /// False if it still has the same tracks.
    bool takeQueue() {
        const std::vector<Track> &tracks = m_player.queue().tracks();
        if (std::ranges::equal(tracks, m_ids, {}, &Track::id))
            return false;
        m_finder = TrackFinder(tracks);
        m_ids.clear();
        m_ids.reserve(tracks.size());
        for (const Track &track : tracks)
            m_ids.push_back(track.id);
        return true;
    }
    void find(const QString &query) {
        beginResetModel();
        m_rows = m_finder.find(query);
        endResetModel();
    }
    [[nodiscard]] int rowCount(const QModelIndex &) const override { return static_cast<int>(m_rows.size()); }
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override {
        const std::optional<int> row = queueRow(index);
        if (!row || role != Qt::DisplayRole)
            return {};
        const Track &track = m_player.queue().tracks()[static_cast<std::size_t>(*row)];
        return MarqueeText::track(track.artist, track.title, track.duration, *row + 1);
    }
    /// Where the track of a line is in the queue; none if the queue has become another.
    [[nodiscard]] std::optional<int> queueRow(const QModelIndex &index) const {
        if (!index.isValid())
            return std::nullopt;
        const int row = m_rows[static_cast<std::size_t>(index.row())];
        const std::vector<Track> &tracks = m_player.queue().tracks();
        const bool same =
            row < m_player.queue().count() && tracks[static_cast<std::size_t>(row)].id == idOf(row);
        return same ? std::optional(row) : std::nullopt;
    }
    [[nodiscard]] std::size_t total() const { return m_ids.size(); }
    /// The track of a line, and the line of a track: null, and invalid, for what there is not.
    [[nodiscard]] QUuid idAt(const QModelIndex &index) const {
        return index.isValid() ? idOf(m_rows[static_cast<std::size_t>(index.row())]) : QUuid();
    }
    [[nodiscard]] QModelIndex lineOf(const QUuid &id) const {
        const auto found = std::ranges::find(m_rows, id, [this](int row) { return idOf(row); });
        return found == m_rows.end() ? QModelIndex() : index(static_cast<int>(found - m_rows.begin()));
    }

  private:
    [[nodiscard]] QUuid idOf(int row) const { return m_ids[static_cast<std::size_t>(row)]; }

    const Player &m_player;
    TrackFinder m_finder{{}};
    std::vector<QUuid> m_ids;
    std::vector<int> m_rows; ///< of the queue, by line
};

JumpToFileDialog::JumpToFileDialog(PlayerModel &model, QWidget *parent)
    : QDialog(parent), m_model(model), m_tracks(new FoundTracks(model.player(), this)),
      m_query(new QLineEdit), m_list(new QListView), m_summary(new QLabel) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Jump to File"));
    resize(460, 360);
    giveFaintText(*this);
    m_query->setPlaceholderText(tr("Artist, title, album or file name"));
    m_query->setClearButtonEnabled(true);
    m_query->setAccessibleName(tr("Find"));
    m_query->installEventFilter(this);
    m_list->setModel(m_tracks);
    m_list->setUniformItemSizes(true);
    m_list->setAccessibleName(tr("Found tracks"));
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    QPushButton *play = buttons->addButton(tr("Play"), QDialogButtonBox::AcceptRole);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_query);
    layout->addWidget(m_list);
    layout->addWidget(m_summary);
    layout->addWidget(buttons);
    play->setDefault(true); // it must be in the dialog by now

    connect(m_query, &QLineEdit::textChanged, this, &JumpToFileDialog::search);
    connect(m_list, &QListView::doubleClicked, this, &JumpToFileDialog::playChosen);
    connect(buttons, &QDialogButtonBox::accepted, this, &JumpToFileDialog::playChosen);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    m_takeQueue.setSingleShot(true);
    m_takeQueue.setInterval(burstTime);
    connect(&m_takeQueue, &QTimer::timeout, this, &JumpToFileDialog::takeQueue);
    connect(&model.player(), &Player::queueChanged, this, [this] {
        if (!m_takeQueue.isActive())
            m_takeQueue.start();
    });
    search();
    if (const std::optional<int> current = model.player().queue().currentIndex()) {
        m_list->setCurrentIndex(m_tracks->index(*current));
        m_list->scrollTo(m_list->currentIndex(), QListView::PositionAtCenter);
    }
}

void JumpToFileDialog::search() {
    m_tracks->find(m_query->text());
    m_list->setCurrentIndex(m_tracks->index(0));
    const auto found = static_cast<qulonglong>(m_tracks->rowCount({}));
    m_summary->setText(tr("%L1 of %L2 tracks").arg(found).arg(static_cast<qulonglong>(m_tracks->total())));
}

// The user's choice outlives what happens to the queue.
void JumpToFileDialog::takeQueue() {
    m_takeQueue.stop();
    const QUuid chosen = m_tracks->idAt(m_list->currentIndex());
    if (!m_tracks->takeQueue())
        return;
    search();
    if (const QModelIndex line = m_tracks->lineOf(chosen); line.isValid())
        m_list->setCurrentIndex(line);
}

void JumpToFileDialog::playChosen() {
    if (m_takeQueue.isActive())
        takeQueue();
    const std::optional<int> row = m_tracks->queueRow(m_list->currentIndex());
    if (!row)
        return;
    m_model.player().play(*row);
    accept();
}

// The keys that walk through the list work while the query is typed.
bool JumpToFileDialog::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_query && event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        switch (key->key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            QCoreApplication::sendEvent(m_list, event);
            return true;
        default:
            break;
        }
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace vantor
