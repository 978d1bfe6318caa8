#include "SkinKit/Texts/IniParser.h"

#include "Platform/TextLines.h"

namespace vantor::IniParser {

namespace {

bool isQuote(QChar character) {
    return character == u'"' || character == u'\'';
}

QString unquoted(QStringView value) {
    if (value.isEmpty() || !isQuote(value.front()) || value.front() != value.back())
        return value.toString();
    // A lone quote is its own partner.
    return value.size() < 2 ? QString() : value.sliced(1, value.size() - 2).toString();
}

} // namespace

IniDocument parse(const QString &text) {
    IniDocument document;
    auto section = document.end();
    int entries = 0;
    forEachLine(text, [&](QStringView wholeLine) {
        const QStringView line = wholeLine.trimmed();
        if (line.size() >= 3 && line.startsWith(u'[') && line.endsWith(u']')) {
            const QString name = line.sliced(1, line.size() - 2).toString().toLower();
            section = document.find(name);
            if (section == document.end())
                section = document.insert(name, {});
            return ++entries < maxEntries;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (line.startsWith(u';') || equals < 0 || section == document.end())
            return true;
        const QString key = line.first(equals).trimmed().toString().toLower();
        section->insert(key, unquoted(line.sliced(equals + 1).trimmed()));
        return ++entries < maxEntries;
    });
    return document;
}

} // namespace vantor::IniParser
