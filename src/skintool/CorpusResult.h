#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>

class QFile;
class QJsonObject;

namespace vantor {

/// What keeps a corpus run or a report from going on; its description is printed as it stands.
class CorpusError : public std::exception {
  public:
    explicit CorpusError(const QString &description)
        : m_description(description), m_what(description.toUtf8()) {}

    [[nodiscard]] const QString &description() const { return m_description; }
    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

  private:
    QString m_description;
    QByteArray m_what;
};

/// The first three are the loader's verdicts (partial: with warnings, failed: refused); with the others the
/// worker was lost.
enum class CorpusStatus { ok, partial, failed, crashed, timeout, outOfMemory };

inline constexpr std::array allCorpusStatuses{CorpusStatus::ok,      CorpusStatus::partial,
                                              CorpusStatus::failed,  CorpusStatus::crashed,
                                              CorpusStatus::timeout, CorpusStatus::outOfMemory};

[[nodiscard]] QString rawValue(CorpusStatus status);
[[nodiscard]] inline bool isLost(CorpusStatus status) {
    return status >= CorpusStatus::crashed;
}

/// What came of one skin: a line of results.jsonl. A name that is no UTF-8 keeps each odd byte as the escape
/// \udc80 … \udcff, which JSON allows and which other tools turn back in the same way.
struct CorpusResult {
    QString path;          ///< relative to the folder, in NativePath's form
    QString hash = {};     ///< SHA-256; empty when the file could not be read
    std::int64_t size = 0; ///< of the archive, in bytes
    CorpusStatus status = CorpusStatus::ok;
    QStringList warnings = {};
    QStringList fallbacks = {};
    QString refused = {};     ///< why there is no skin; empty when there is one
    double milliseconds = 0;  ///< from the worker's start to its end
    std::int64_t peakKiB = 0; ///< the most memory that the worker had, the tool's own included
    QString signal = {};      ///< of a crash, such as SIGSEGV

    [[nodiscard]] QJsonObject toObject() const;
    /// Ends in a line feed.
    [[nodiscard]] QByteArray toLine() const;
    [[nodiscard]] static std::optional<CorpusResult> fromLine(const QByteArray &line);

    bool operator==(const CorpusResult &) const = default;
};

/// Goes through a results file from its beginning. `malformed` gets the number of a line that is no result. A
/// last line without a line feed was torn off by a kill and is passed over; returns where the whole ones end.
/// Throws CorpusError when the file cannot be read.
qint64 readCorpusResults(QFile &file, const std::function<void(const CorpusResult &)> &take,
                         const std::function<void(qint64)> &malformed);

} // namespace vantor
