#pragma once

#include "SkinBrowser/SkinIndexReader.h"

#include <QObject>

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace vantor {

class PlayerModel;
class SkinLibraryModel;

/// Goes from skin to skin through the index of the skins folder, and knows the first few for the menu. Skins
/// that cannot be read are passed over; one that turns out so while it is loaded is said to be and skipped.
/// Main thread; nothing blocks. Borrows both models.
class SkinSwitcher : public QObject {
    Q_OBJECT

  public:
    enum class Step { next, previous, random };
    static constexpr int menuLength = 60; ///< as many as a menu can bear
    static constexpr int maxSkips = 4;

    SkinSwitcher(PlayerModel &model, SkinLibraryModel &library, QObject *parent = nullptr);
    ~SkinSwitcher() override;

    /// Wears the skin after or before the one worn, in name order and from the end on to the beginning, or
    /// any. From a skin that is not in the index, the next one is the first.
    void step(Step step);

    /// The first skins by name.
    [[nodiscard]] const std::vector<SkinRecord> &first() const { return m_first; }
    void wear(const SkinRecord &skin);

    /// The skin worn, when it is in the index.
    [[nodiscard]] std::optional<std::int64_t> worn() const { return m_worn; }

    /// For other questions that are answered quickly; not to be kept. interrupt() is not for them.
    [[nodiscard]] SkinIndexReader &reader();

  Q_SIGNALS:
    void wornChanged();

  private:
    void readContent();
    void stepOn();
    void take(const std::optional<SkinRecord> &skin);

    PlayerModel &m_model;
    SkinLibraryModel &m_library;
    std::unique_ptr<SkinIndexReader> m_reader; ///< none while the index's file is let go
    std::vector<SkinRecord> m_first;
    std::optional<std::int64_t> m_worn;
    bool m_isReadingContent = false;
    bool m_hasNewContent = false;

    std::deque<Step> m_steps; ///< the one at the front is being looked up
    bool m_isLookingUp = false;
    std::optional<SkinRecord> m_target; ///< until it is worn or given up
    Step m_lastStep = Step::next;
    int m_skipsLeft = 0;
};

} // namespace vantor
