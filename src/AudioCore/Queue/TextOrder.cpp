#include "AudioCore/Queue/TextOrder.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace vantor {

static constexpr qsizetype chunkSize = sizeof(std::uint64_t);

void TextOrder::add(const QString &text) {
    m_bytes += text.toUtf8();
    m_begins.push_back(m_bytes.size());
}

void TextOrder::add(const TextOrder &more) {
    const qsizetype begin = m_bytes.size();
    m_bytes += more.m_bytes;
    for (size_t text = 1; text < more.m_begins.size(); ++text)
        m_begins.push_back(begin + more.m_begins[text]);
}

void TextOrder::load(std::span<Entry> entries, qsizetype depth) const {
    for (Entry &entry : entries) {
        const auto number = static_cast<size_t>(entry.number);
        const qsizetype begin = std::min(m_begins[number] + depth, m_begins[number + 1]);
        const qsizetype left = m_begins[number + 1] - begin;
        std::array<char, chunkSize> bytes{};
        std::memcpy(bytes.data(), m_bytes.constData() + begin,
                    static_cast<size_t>(std::min(left, chunkSize)));
        entry.chunk = qFromBigEndian<std::uint64_t>(bytes.data());
        entry.left = static_cast<std::uint32_t>(std::min(left, chunkSize + 1));
    }
}

// Chunk by chunk: whole numbers lie beside each other and compare at once, while the texts are all over the
// memory. Those that are equal so far are sorted by what follows.
std::vector<int> TextOrder::sorted() const {
    std::vector<Entry> entries(m_begins.size() - 1);
    for (size_t number = 0; number < entries.size(); ++number)
        entries[number].number = static_cast<int>(number);

    struct Group {
        std::span<Entry> entries;
        qsizetype depth;
    };
    std::vector<Group> groups{{entries, 0}}; // no recursion: texts may be very long
    while (!groups.empty()) {
        const Group group = groups.back();
        groups.pop_back();
        load(group.entries, group.depth);
        const auto goesOnAlike = [](const Entry &left, const Entry &right) {
            return left.chunk == right.chunk && left.left > chunkSize && right.left > chunkSize;
        };
        const auto differs = [&](const Entry &entry) { return !goesOnAlike(group.entries.front(), entry); };
        if (std::ranges::any_of(group.entries, differs)) // a long beginning in common is passed over quickly
            std::ranges::sort(group.entries);
        for (auto first = group.entries.begin(); first != group.entries.end();) {
            const auto last = std::find_if(first, group.entries.end(),
                                           [&](const Entry &entry) { return !goesOnAlike(*first, entry); });
            if (last - first > 1)
                groups.push_back({{first, last}, group.depth + chunkSize});
            first = last == first ? first + 1 : last;
        }
    }

    std::vector<int> order(entries.size());
    std::ranges::transform(entries, order.begin(), &Entry::number);
    return order;
}

} // namespace vantor
