#include "MusicBackendKit/ArtistName.h"

#include "MusicBackendKit/ArtistGroup.h"

#include <QStringList>

namespace vantor::ArtistName {

namespace {

/// Full-width letters and half-width katakana as their usual forms, by the Unicode decompositions that differ
/// in width only. Qt folds case, but not width.
QString foldedWidth(const QString &text) {
    QString folded;
    folded.reserve(text.size());
    for (const QChar c : text) {
        const QChar::Decomposition tag = c.decompositionTag();
        if (tag == QChar::Wide || tag == QChar::Narrow)
            folded += c.decomposition();
        else
            folded += c;
    }
    return folded;
}

} // namespace

QString unknown() {
    return QStringLiteral("Unknown Artist");
}

QString clean(const QString &name) {
    QString text = name.trimmed();
    while (text.endsWith(u';')) {
        text.chop(1);
        text = text.trimmed();
    }
    return text.simplified();
}

QString display(const QString &name) {
    const QString text = clean(name);
    return text.isEmpty() ? unknown() : text;
}

QString key(const QString &name) {
    QString text = clean(name).replace(u'&', QStringLiteral(" & ")).simplified();
    QStringList words = text.split(u' ', Qt::SkipEmptyParts);
    for (QString &word : words) {
        if (word.compare(QLatin1String("and"), Qt::CaseInsensitive) == 0)
            word = QStringLiteral("&");
    }
    // Qt folds one letter to one; the way over the capitals makes "ss" of "ß" too. The dotless "ı", whose
    // capital is that of "i", is no other case of it.
    QStringList parts = foldedWidth(words.join(u' ')).split(u'ı');
    for (QString &part : parts)
        part = part.toUpper().toCaseFolded();
    text = parts.join(u'ı').normalized(QString::NormalizationForm_C);
    // Somebody called like that is not nameless; no other key ends in a space.
    return text == ArtistGroup::unknownID() ? text + u' ' : text;
}

} // namespace vantor::ArtistName
