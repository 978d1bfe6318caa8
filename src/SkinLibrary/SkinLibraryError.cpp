#include "SkinLibrary/SkinLibraryError.h"

#include <sqlite3.h>

namespace vantor {

SkinLibraryError::SkinLibraryError(Case errorCase, std::int32_t code, std::int32_t supported,
                                   const QString &message)
    : m_case(errorCase), m_code(code), m_supported(supported), m_message(message),
      m_what(description().toUtf8()) {}

SkinLibraryError SkinLibraryError::sqlite(std::int32_t code, const QString &message) {
    return SkinLibraryError(Case::sqlite, code, 0, message);
}

SkinLibraryError SkinLibraryError::interruption() {
    return sqlite(SQLITE_INTERRUPT, QString::fromUtf8(sqlite3_errstr(SQLITE_INTERRUPT)));
}

SkinLibraryError SkinLibraryError::incompatibleDatabase(std::int32_t found, std::int32_t supported) {
    return SkinLibraryError(Case::incompatibleDatabase, found, supported);
}

SkinLibraryError SkinLibraryError::folderUnreadable(const QString &message) {
    return SkinLibraryError(Case::folderUnreadable, 0, 0, message);
}

SkinLibraryError SkinLibraryError::passAlreadyRunning() {
    return SkinLibraryError(Case::passAlreadyRunning);
}

bool SkinLibraryError::isInterruption() const {
    return m_case == Case::sqlite && m_code == SQLITE_INTERRUPT;
}

bool SkinLibraryError::isUnusableIndex() const {
    if (m_case != Case::sqlite)
        return m_case == Case::incompatibleDatabase;
    const int code = m_code & 0xFF; // without the detail that SQLite may add
    // The general error is what a file without our tables gives.
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB || code == SQLITE_ERROR;
}

QString SkinLibraryError::description() const {
    switch (m_case) {
    case Case::sqlite:
        return QStringLiteral("The skin index failed (SQLite %1): ").arg(m_code) + m_message;
    case Case::incompatibleDatabase:
        return QStringLiteral("The skin index is from a newer version (%1, this build reads %2). "
                              "Reset it to rebuild.")
            .arg(m_code)
            .arg(m_supported);
    case Case::folderUnreadable:
        return QStringLiteral("The skins folder cannot be read: ") + m_message;
    case Case::passAlreadyRunning:
        break;
    }
    return QStringLiteral("An index pass is already running.");
}

} // namespace vantor
