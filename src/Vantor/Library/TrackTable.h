#pragma once

#include "LibraryBrowser/TrackListModel.h"

#include <QTableView>

class QSettings;

namespace vantor {

class LibraryActions;
class LibraryNowPlaying;

/// The tracks of a model as lines with columns that sort. The tracks of an album with several discs stand
/// under a heading for each. Main thread; borrows
/// model and actions.
class TrackTable : public QTableView {
    Q_OBJECT

  public:
    static constexpr int textMargin = 8;

    TrackTable(TrackListModel &tracks, LibraryActions &actions, QWidget *parent = nullptr);

    [[nodiscard]] TrackListModel &tracks() const { return m_tracks; }
    /// The tracks that are selected, in the order of the rows.
    [[nodiscard]] QList<LibraryTrack> selected() const;

    /// Columns that this list does without, whatever the user chose.
    void setUnneeded(const QSet<int> &columns);
    /// As tall as all its rows, inside a page that scrolls.
    void setShowsAll();

    // What its lines are drawn by.
    [[nodiscard]] const LibraryNowPlaying &playing() const;
    [[nodiscard]] bool offersFavorites() const;
    [[nodiscard]] int hoveredRow() const { return m_hovered; }
    /// The column with the mark of what plays.
    [[nodiscard]] int markedColumn() const {
        return isColumnHidden(TrackListModel::numberColumn) ? TrackListModel::titleColumn
                                                            : TrackListModel::numberColumn;
    }
    /// The disc that begins with this row; none when there is nothing to be told apart.
    [[nodiscard]] std::optional<int> discAt(int row) const;

    /// The user's choice of columns and their widths, kept under a name.
    void restoreColumns(QSettings &settings, const QString &key);

  Q_SIGNALS:
    void opened(const QModelIndex &index); ///< by a double click or Enter
    void menuAsked(const QPoint &global);  ///< about what is selected

  protected:
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void startDrag(Qt::DropActions actions) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    [[nodiscard]] QSize sizeHint() const override;

  public:
    void keyboardSearch(const QString &letters) override;

  private:
    void takeRows();
    void fitColumns();
    void takeSorting(int column);
    void showColumns();
    void takeWidths(int resized, int size);
    void popUpColumns(const QPoint &at);
    void storeColumns() const;
    void setHovered(int row);

    TrackListModel &m_tracks;
    LibraryActions &m_actions;
    QSet<int> m_unneeded;
    QSet<int> m_hidden;                                   ///< by the user
    std::array<double, TrackListModel::columns> m_shares; ///< of the width, of those that give way
    bool m_isFitting = false;
    bool m_showsAll = false;
    bool m_hasDiscs = false;
    int m_hovered = -1;
    QSettings *m_settings = nullptr;
    QString m_key;
};

} // namespace vantor
