#include "FolderBackendKit/WordIndex_p.h"
#include "Platform/TextFolding.h"

#include <algorithm>
#include <limits>

namespace vantor {

namespace {

constexpr qsizetype chunkSize = 8;
constexpr qsizetype longestText = 512; ///< what follows is not searched

/// Up to a zero or the end. With `filler` for what is missing.
std::uint64_t chunkOf(QByteArrayView word, unsigned char filler) {
    std::uint64_t chunk = 0;
    for (qsizetype i = 0; i < chunkSize; ++i)
        chunk = chunk << 8 | (i < word.size() ? static_cast<unsigned char>(word[i]) : filler);
    return chunk;
}

/// In scripts that set no blanks, a word may begin at every character.
bool isUnspaced(QByteArrayView word, qsizetype at) {
    const auto lead = static_cast<unsigned char>(word[at]);
    return lead >= 0xE3 && lead <= 0xE9; // Kana and the Han characters
}

/// Calls `take` with every word of a text, as UTF-8.
template <class Take>
void forEachWord(const QString &text, const Take &take) {
    QByteArray word;
    const auto end = [&] {
        if (!word.isEmpty())
            take(word);
        word.resize(0); // which keeps its memory
    };
    const QString folded = TextFolding::folded(text.left(longestText));
    for (qsizetype at = 0; at < folded.size(); ++at) {
        const QChar c = folded[at];
        if (c.isLetterOrNumber() && c.unicode() < 0x80) {
            word += c.toLatin1();
        } else if (c.isHighSurrogate() && at + 1 < folded.size()) {
            word += folded.mid(at++, 2).toUtf8();
        } else if (c.isLetterOrNumber() || c.isMark()) {
            word += QStringView(&c, 1).toUtf8();
        } else if (c != u'\'' && c != u'’') { // "don't" is one word, with or without it
            end();
        }
    }
    end();
}

} // namespace

QList<QByteArray> WordIndex::words(const QString &text) {
    QList<QByteArray> found;
    forEachWord(text,
                [&](const QByteArray &word) { found.append(QByteArray(word.constData(), word.size())); });
    return found;
}

void WordIndex::add(const QString &text) {
    const auto number = static_cast<std::uint32_t>(m_counts.size());
    int count = 0;
    forEachWord(text, [&](const QByteArray &word) {
        const qsizetype start = m_bytes.size();
        if (start + word.size() >= std::numeric_limits<std::int32_t>::max())
            return;
        ++count;
        m_bytes += word;
        m_bytes += '\0';
        for (qsizetype at = 0; at < word.size(); ++at) {
            if (at == 0 || isUnspaced(word, at))
                m_beginnings.push_back({chunkOf(QByteArrayView(word).sliced(at), 0), number,
                                        static_cast<std::uint32_t>(start + at)});
        }
    });
    m_counts.push_back(static_cast<std::uint8_t>(std::min(count, 255)));
}

void WordIndex::finish() {
    std::ranges::sort(m_beginnings, {}, &Beginning::chunk);
}

std::vector<WordIndex::Strength> WordIndex::find(const QByteArray &word) const {
    std::vector<Strength> found(m_counts.size(), missing);
    const auto first = std::ranges::lower_bound(m_beginnings, chunkOf(word, 0), {}, &Beginning::chunk);
    const auto last = std::ranges::upper_bound(m_beginnings, chunkOf(word, 0xFF), {}, &Beginning::chunk);
    for (auto at = first; at != last; ++at) {
        const QByteArrayView there(m_bytes.constData() + at->offset);
        if (there.startsWith(word)) {
            const Strength strength = there.size() == word.size() ? whole : begins;
            found[at->text] = std::max(found[at->text], strength);
        }
    }
    return found;
}

} // namespace vantor
