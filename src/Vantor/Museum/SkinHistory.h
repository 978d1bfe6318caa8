#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

#include <optional>

namespace vantor {

class PlayerModel;

/// The skins worn one after another, for who tries many on and wants the one before back. Main thread;
/// borrows the model.
class SkinHistory : public QObject {
    Q_OBJECT

  public:
    static constexpr qsizetype maxLength = 200;

    explicit SkinHistory(PlayerModel &model, QObject *parent = nullptr);

    [[nodiscard]] bool canGoBack() const { return !m_before.isEmpty(); }
    /// Wears the skin before; again, the one before that.
    void goBack();

  Q_SIGNALS:
    void changed();

  private:
    PlayerModel &m_model;
    QList<QUrl> m_before; ///< the default skin's address is empty
    QUrl m_present;
    std::optional<QUrl> m_target; ///< of going back, until it is worn
};

} // namespace vantor
