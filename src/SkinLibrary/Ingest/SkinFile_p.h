#pragma once

#include "SkinLibrary/Index/SkinRecord.h"

#include <QByteArray>
#include <QString>

#include <span>

namespace vantor {

/// A skin archive opened for reading, whatever the encoding of its name. Failures throw std::system_error;
/// what is not a regular file is one, so that a pipe in a skin's place cannot be waited for.
class SkinFile {
  public:
    /// `path` in NativePath's form.
    explicit SkinFile(const QString &path);
    ~SkinFile();
    SkinFile(const SkinFile &) = delete;
    SkinFile &operator=(const SkinFile &) = delete;

    [[nodiscard]] std::int64_t size() const { return m_size; }
    [[nodiscard]] double mtime() const { return m_mtime; }
    /// How many bytes were put into the buffer; 0 at the end.
    [[nodiscard]] std::size_t read(std::span<char> buffer);
    /// From where read() stands.
    [[nodiscard]] QByteArray readAll();
    /// A name under which this very file can be opened again while it is open here.
    [[nodiscard]] QString alias() const;

  private:
    int m_descriptor;
    std::int64_t m_size = 0;
    double m_mtime = 0;
};

} // namespace vantor
