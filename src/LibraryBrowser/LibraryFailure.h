#pragma once

#include <QString>

#include <exception>

namespace vantor {

/// What went wrong in an operation of a music source.
struct LibraryFailure {
    QString sentence;     ///< for the user; never empty
    bool isSetup = false; ///< nothing is broken: something has to be set first, as the sentence says

    [[nodiscard]] static LibraryFailure of(const std::exception_ptr &error);
};

} // namespace vantor
