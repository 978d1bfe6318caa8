#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <span>
#include <vector>

namespace vantor {

/// Puts texts into the order of their code points, a hundred thousand of them while nobody notices. A value;
/// any thread.
class TextOrder {
  public:
    void add(const QString &text);
    void add(const TextOrder &more);
    /// The numbers of the texts, from 0 as they were added; of equal ones the earlier is first.
    [[nodiscard]] std::vector<int> sorted() const;

  private:
    struct Entry {
        std::uint64_t chunk = 0; ///< the next eight bytes as one number, the first weighs most
        std::uint32_t left = 0;  ///< how many of them there are, 9 if more follow
        int number = 0;

        auto operator<=>(const Entry &) const = default;
    };

    /// Takes the chunks at `depth` bytes.
    void load(std::span<Entry> entries, qsizetype depth) const;

    QByteArray m_bytes; ///< in UTF-8, whose bytes are in the order of the code points
    std::vector<qsizetype> m_begins{0};
};

} // namespace vantor
