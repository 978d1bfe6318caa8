#pragma once

#include <zlib.h>

#include <array>
#include <cstdint>

struct zip;
struct zip_file;

namespace vantor {

/// Inflates the entries of a ZIP file one after the other. libzip hands over the packed bytes and leaves the
/// inflating to us, because its own reading cannot be told to skip the checksum: sheets with a wrong one are
/// common and perfectly sound, and summing costs a tenth of a skin's loading time.
class ZipEntryReader {
  public:
    ZipEntryReader();
    ~ZipEntryReader();
    ZipEntryReader(const ZipEntryReader &) = delete;
    ZipEntryReader &operator=(const ZipEntryReader &) = delete;

    /// False for an entry that cannot be opened, an encrypted one among them.
    [[nodiscard]] bool open(zip *archive, std::uint64_t index, bool deflated);

    /// Puts up to `size` bytes at `buffer` and returns how many, 0 at the end. Below 0: damaged or cut short.
    [[nodiscard]] std::int64_t read(char *buffer, std::int64_t size);

    /// Packed bytes taken out of the archive so far, over all entries.
    [[nodiscard]] std::int64_t packedBytes() const { return m_packedBytes; }

  private:
    [[nodiscard]] std::int64_t readStored(char *buffer, std::int64_t size);
    [[nodiscard]] bool refill();
    void close();

    zip_file *m_file = nullptr;
    z_stream m_stream{};
    std::int64_t m_packedBytes = 0;
    bool m_usable;
    bool m_deflated = false;
    bool m_ended = false;
    std::array<unsigned char, 16'384> m_packed;
};

} // namespace vantor
