#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace vantor::test {

/// One entry of a ZIP file. Sound by default; every optional field overwrites what the headers say.
struct ZipEntry {
    QByteArray name; ///< at least two bytes; may repeat
    QByteArray data;
    bool stored = false; ///< not deflated
    std::optional<std::uint32_t> declaredSize = {};
    std::optional<std::uint32_t> compressedSize = {};
    std::optional<std::uint32_t> crc = {};
    std::optional<std::uint16_t> method = {};
    std::optional<std::uint32_t> unixMode = {}; ///< with the file type, as in st_mode
    bool encryptedFlag = false;
    bool damaged = false; ///< the compressed data begins with an invalid block
};

[[nodiscard]] QByteArray zipFile(const std::vector<ZipEntry> &entries);

} // namespace vantor::test
