#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <vector>

namespace vantor {

/// The words of a list of texts, found by their beginnings. A value; once finished, any thread.
class WordIndex {
  public:
    /// How a text holds a word: not at all, as the beginning of one of its words, or as one of them.
    enum Strength : std::uint8_t { missing, begins, whole };

    /// The words of a text, without case, accents and punctuation.
    [[nodiscard]] static QList<QByteArray> words(const QString &text);

    /// Texts are numbered from 0 as they are added.
    void add(const QString &text);
    void finish();

    /// By the texts' numbers.
    [[nodiscard]] std::vector<Strength> find(const QByteArray &word) const;
    /// How many words a text has, 255 for many.
    [[nodiscard]] int wordCount(std::size_t text) const { return m_counts[text]; }
    [[nodiscard]] std::size_t size() const { return m_counts.size(); }

  private:
    struct Beginning {
        std::uint64_t chunk = 0; ///< the first eight bytes as one number, the first weighs most
        std::uint32_t text = 0;
        std::uint32_t offset = 0; ///< in m_bytes
    };

    QByteArray m_bytes; ///< each word ends with a zero
    std::vector<Beginning> m_beginnings;
    std::vector<std::uint8_t> m_counts;
};

} // namespace vantor
