#pragma once

#include "AudioCore/Decoding/AudioInput.h"

#include <QFile>

namespace vantor {

/// A regular local file.
class FileInput final : public AudioInput {
  public:
    /// Throws AudioCoreError::readFailure for what cannot be read, openFailure for what is no file.
    explicit FileInput(const QString &path); ///< in NativePath's form

    [[nodiscard]] std::size_t read(std::span<char> bytes) override;
    [[nodiscard]] bool seek(qint64 position) override { return m_file.seek(position); }
    [[nodiscard]] qint64 position() const override { return m_file.pos(); }
    [[nodiscard]] std::optional<qint64> size() override { return m_file.size(); }
    [[nodiscard]] bool isSeekable() override { return true; }
    [[nodiscard]] QString name() const override;

  private:
    QFile m_file;
};

} // namespace vantor
