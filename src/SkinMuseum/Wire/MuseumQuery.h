#pragma once

#include "SkinMuseum/Wire/GraphQLRequest.h"

#include <optional>

namespace vantor {

/// Which page of the museum is asked for: of a search, or of everything there is. A value; any thread.
class MuseumQuery {
  public:
    static constexpr int pageSize = 60;

    [[nodiscard]] static MuseumQuery search(const QString &text, bool includeNSFW, int first = pageSize,
                                            int offset = 0);
    [[nodiscard]] static MuseumQuery browse(bool includeNSFW, int first = pageSize, int offset = 0);

    /// What is searched for; none when browsing.
    [[nodiscard]] const std::optional<QString> &text() const { return m_text; }
    [[nodiscard]] bool includeNSFW() const { return m_includeNSFW; }
    /// How many skins at most.
    [[nodiscard]] int first() const { return m_first; }
    /// How many skins before them.
    [[nodiscard]] int offset() const { return m_offset; }
    [[nodiscard]] MuseumQuery at(int offset) const;

    /// Different for different queries.
    [[nodiscard]] QString cacheKey() const;
    [[nodiscard]] GraphQLRequest request() const;

    bool operator==(const MuseumQuery &) const = default;

  private:
    MuseumQuery(std::optional<QString> text, bool includeNSFW, int first, int offset)
        : m_text(std::move(text)), m_includeNSFW(includeNSFW), m_first(first), m_offset(offset) {}

    std::optional<QString> m_text;
    bool m_includeNSFW;
    int m_first;
    int m_offset;
};

} // namespace vantor
