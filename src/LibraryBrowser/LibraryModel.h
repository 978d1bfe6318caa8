#pragma once

#include "LibraryBrowser/LibraryFailure.h"
#include "LibraryBrowser/LibraryItem.h"

#include <QAbstractTableModel>

namespace vantor {

/// What all lists of the library have in common: they are filled by answers that come later, or not at all.
/// Main thread; nothing blocks.
class LibraryModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    using QAbstractTableModel::QAbstractTableModel;

    /// Whether something is being asked for.
    [[nodiscard]] virtual bool isLoading() const = 0;
    /// Whether the first answer has come, so that a list without rows is an empty one.
    [[nodiscard]] virtual bool hasAnswer() const = 0;
    /// What went wrong last; then nothing is asked for until retry().
    [[nodiscard]] const std::optional<LibraryFailure> &failure() const { return m_failure; }
    virtual void retry() = 0;

  Q_SIGNALS:
    /// isLoading(), hasAnswer() or failure().
    void stateChanged();

  protected:
    void setFailure(const std::optional<LibraryFailure> &failure) { m_failure = failure; }

  private:
    std::optional<LibraryFailure> m_failure;
};

/// A list of items, one a row.
class LibraryItemModel : public LibraryModel {
    Q_OBJECT

  public:
    using LibraryModel::LibraryModel;

    /// None for a row that is not there yet, which is asked for.
    [[nodiscard]] virtual const LibraryItem *item(int row) const = 0;

    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    /// The title, and for assistive tools what is known besides.
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] QStringList mimeTypes() const override;
    [[nodiscard]] QMimeData *mimeData(const QModelIndexList &indexes) const override;
};

} // namespace vantor
