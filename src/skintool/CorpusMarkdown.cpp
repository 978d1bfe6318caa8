#include "skintool/CorpusMarkdown.h"

#include "Platform/NativePath.h"
#include "skintool/CorpusOutput.h"
#include "skintool/CorpusSummary.h"

#include <QDir>
#include <QFileInfo>

namespace vantor::CorpusMarkdown {

namespace {

constexpr qsizetype maxCell = 160;
constexpr std::size_t maxRows = 200; ///< of a list of lost skins; the summary has more

/// Grows section by section.
class Page {
  public:
    void title(const QString &text) {
        line((m_text.isEmpty() ? QStringLiteral("# ") : QStringLiteral("\n## ")) + text + u'\n');
    }
    void line(const QString &text) { m_text += text + u'\n'; }
    /// Numbers stand right, under a head that ends in a colon.
    void head(const QStringList &columns) {
        QStringList names, rules;
        for (const QString &column : columns) {
            const bool isNumber = column.endsWith(u':');
            names.append(isNumber ? column.chopped(1) : column);
            rules.append(isNumber ? QStringLiteral("---:") : QStringLiteral("---"));
        }
        row(names);
        row(rules);
    }
    void row(const QStringList &cells) {
        line(QStringLiteral("| ") + cells.join(QStringLiteral(" | ")) + QStringLiteral(" |"));
    }
    [[nodiscard]] QString take() { return std::move(m_text); }

  private:
    QString m_text;
};

QString percent(std::int64_t part, std::int64_t whole) {
    const double share = whole > 0 ? 100.0 * static_cast<double>(part) / static_cast<double>(whole) : 0;
    return QString::number(share, 'f', 2) + QStringLiteral(" %");
}

QString milliseconds(double value) {
    return QString::number(value, 'f', 1);
}

QString mebibytes(double kib) {
    return QString::number(kib / 1024, 'f', 1);
}

void addEnvironment(Page &page, const QJsonObject &environment, const QString &prefix = {}) {
    for (auto it = environment.begin(); it != environment.end(); ++it) {
        if (it->isObject())
            addEnvironment(page, it->toObject(), it.key() + u' ');
        else if (!it->isNull())
            page.row({escaped(prefix + it.key()), escaped(it->toVariant().toString())});
    }
}

void addCounts(Page &page, const CorpusSummary &summary) {
    page.title(QStringLiteral("Results"));
    page.head({QStringLiteral("status"), QStringLiteral("skins:"), QStringLiteral("share:")});
    for (const CorpusStatus status : allCorpusStatuses) {
        const auto found = summary.counts.find(status);
        const std::int64_t count = found == summary.counts.end() ? 0 : found->second;
        page.row({rawValue(status), QString::number(count), percent(count, summary.total)});
    }
    page.row(
        {QStringLiteral("**all**"), QString::number(summary.total), percent(summary.total, summary.total)});
    page.line(
        QStringLiteral("\nOk: loaded and drawn without a warning. Partial: with warnings. Failed: refused. "
                       "%1 of the skins differ in their bytes.")
            .arg(summary.distinct));
    if (summary.malformed > 0)
        page.line(QStringLiteral("\n%1 lines of the results were no results.").arg(summary.malformed));
}

void addPercentiles(Page &page, const CorpusSummary &summary) {
    page.title(QStringLiteral("Time and memory"));
    page.head({QString(), QStringLiteral("p50:"), QStringLiteral("p90:"), QStringLiteral("p95:"),
               QStringLiteral("p99:"), QStringLiteral("max:")});
    const auto add = [&](const char *name, const CorpusPercentiles &values, QString (*shown)(double)) {
        page.row({QLatin1String(name), shown(values.p50), shown(values.p90), shown(values.p95),
                  shown(values.p99), shown(values.max)});
    };
    add("time in ms", summary.milliseconds, milliseconds);
    add("peak memory in MiB", summary.peakKiB, mebibytes);
}

void addMessages(Page &page, const char *title, const std::vector<CorpusMessageCount> &messages,
                 std::int64_t total) {
    page.title(QLatin1String(title));
    if (messages.empty())
        return page.line(QStringLiteral("None."));
    page.head({QStringLiteral("skins:"), QStringLiteral("share:"), QStringLiteral("message")});
    for (const auto &[message, skins] : messages)
        page.row({QString::number(skins), percent(skins, total), escaped(message)});
}

void addExtremes(Page &page, const char *title, const std::vector<CorpusResult> &skins) {
    page.title(QLatin1String(title));
    page.head(
        {QStringLiteral("ms:"), QStringLiteral("MiB:"), QStringLiteral("status"), QStringLiteral("skin")});
    for (const CorpusResult &skin : skins) {
        page.row({milliseconds(skin.milliseconds), mebibytes(static_cast<double>(skin.peakKiB)),
                  rawValue(skin.status), escaped(skin.path)});
    }
}

QString copyOf(const CorpusResult &skin, const std::optional<QString> &crashes) {
    const QString name = CorpusOutput::crashCopyName(skin);
    return crashes && QFileInfo::exists(QDir(*crashes).filePath(name)) ? escaped(name) : QString();
}

void addLost(Page &page, const CorpusSummary &summary, CorpusStatus status, const char *title,
             const std::optional<QString> &crashes) {
    page.title(QLatin1String(title));
    const auto found = summary.lost.find(status);
    if (found == summary.lost.end())
        return page.line(QStringLiteral("None."));
    page.head({QStringLiteral("skin"), QStringLiteral("signal"), QStringLiteral("SHA-256"),
               QStringLiteral("copy"), QStringLiteral("remark")});
    const std::vector<CorpusResult> &skins = found->second;
    for (const CorpusResult &skin : std::span(skins).first(std::min(skins.size(), maxRows))) {
        page.row({escaped(skin.path), escaped(skin.signal), escaped(skin.hash), copyOf(skin, crashes),
                  escaped(skin.refused)});
    }
    const std::int64_t more = summary.counts.at(status) - static_cast<std::int64_t>(maxRows);
    if (more > 0)
        page.line(QStringLiteral("\n… and %1 more.").arg(more));
}

void addSample(Page &page, const CorpusSummary &summary) {
    page.title(QStringLiteral("Sample to look at"));
    page.line(QStringLiteral("%1 of the skins that loaded, drawn with the seed %2.\n")
                  .arg(summary.sample.size())
                  .arg(summary.seed));
    page.head({QStringLiteral("looks right"), QStringLiteral("status"), QStringLiteral("skin"),
               QStringLiteral("SHA-256")});
    for (const CorpusResult &skin : summary.sample)
        page.row({QString(), rawValue(skin.status), escaped(skin.path), escaped(skin.hash.left(16))});
}

bool steersScreen(QChar c) {
    const auto category = c.category();
    return category == QChar::Other_Control || category == QChar::Other_Format ||
           category == QChar::Separator_Line || category == QChar::Separator_Paragraph;
}

} // namespace

QString escaped(const QString &text) {
    static const QString markup = QStringLiteral("\\`*_{}[]<>()#|~&!$");
    QString result;
    const QString cut = text.size() <= maxCell ? text : text.left(maxCell) + QChar(u'…');
    for (qsizetype at = 0; at < cut.size(); ++at) {
        const QChar unit = cut[at];
        const bool isPair = unit.isHighSurrogate() && at + 1 < cut.size() && cut[at + 1].isLowSurrogate();
        if (isPair)
            result += cut.mid(at++, 2);
        else if (unit.isSurrogate())
            result +=
                QStringLiteral("\\\\x") + QString::fromLatin1(NativePath::bytes(unit).toHex().toUpper());
        else if (steersScreen(unit))
            result += QChar::ReplacementCharacter;
        else if (markup.contains(unit))
            result += QStringLiteral("\\") + unit;
        else
            result += unit;
    }
    return result;
}

QString report(const CorpusSummary &summary, const std::optional<QString> &crashes) {
    Page page;
    page.title(QStringLiteral("Skin corpus"));
    if (!summary.environment.isEmpty()) {
        page.head({QStringLiteral("run"), QString()});
        addEnvironment(page, summary.environment);
    }
    addCounts(page, summary);
    addPercentiles(page, summary);
    addMessages(page, "Commonest warnings", summary.warnings, summary.total);
    addMessages(page, "Commonest fallbacks", summary.fallbacks, summary.total);
    addMessages(page, "Refusals", summary.refusals, summary.total);
    addLost(page, summary, CorpusStatus::crashed, "Crashes", crashes);
    addLost(page, summary, CorpusStatus::timeout, "Timeouts", crashes);
    addLost(page, summary, CorpusStatus::outOfMemory, "Out of memory", crashes);
    addExtremes(page, "Slowest", summary.slowest);
    addExtremes(page, "Most memory", summary.largest);
    addSample(page, summary);
    return page.take();
}

} // namespace vantor::CorpusMarkdown
