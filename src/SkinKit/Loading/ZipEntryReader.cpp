#include "SkinKit/Loading/ZipEntryReader_p.h"

#include <zip.h>

#include <algorithm>

namespace vantor {

namespace {

constexpr int rawDeflate = -MAX_WBITS; // without the header that zlib itself would expect

} // namespace

ZipEntryReader::ZipEntryReader() : m_usable(inflateInit2(&m_stream, rawDeflate) == Z_OK) {}

ZipEntryReader::~ZipEntryReader() {
    close();
    if (m_usable)
        inflateEnd(&m_stream);
}

bool ZipEntryReader::open(zip *archive, std::uint64_t index, bool deflated) {
    close();
    m_deflated = deflated;
    m_ended = false;
    m_stream.avail_in = 0;
    if (m_usable && inflateReset(&m_stream) == Z_OK)
        m_file = zip_fopen_index(archive, index, ZIP_FL_COMPRESSED);
    return m_file != nullptr;
}

void ZipEntryReader::close() {
    if (m_file)
        zip_fclose(m_file);
    m_file = nullptr;
}

bool ZipEntryReader::refill() {
    const zip_int64_t count = zip_fread(m_file, m_packed.data(), m_packed.size());
    m_stream.next_in = m_packed.data();
    m_stream.avail_in = count > 0 ? static_cast<uInt>(count) : 0;
    m_packedBytes += m_stream.avail_in;
    return count > 0;
}

// libzip still sums what is stored, but complains only after it has delivered every byte.
std::int64_t ZipEntryReader::readStored(char *buffer, std::int64_t size) {
    const zip_int64_t count = zip_fread(m_file, buffer, static_cast<zip_uint64_t>(size));
    m_packedBytes += std::max<zip_int64_t>(count, 0);
    if (count >= 0)
        return count;
    const int code = zip_error_code_zip(zip_file_get_error(m_file));
    return code == ZIP_ER_CRC || code == ZIP_ER_INCONS ? 0 : count;
}

std::int64_t ZipEntryReader::read(char *buffer, std::int64_t size) {
    if (!m_deflated)
        return readStored(buffer, size);
    m_stream.next_out = reinterpret_cast<Bytef *>(buffer);
    m_stream.avail_out = static_cast<uInt>(size);
    while (!m_ended && m_stream.avail_out > 0) {
        if (m_stream.avail_in == 0 && !refill())
            return -1;
        const int result = inflate(&m_stream, Z_NO_FLUSH);
        if (result != Z_OK && result != Z_STREAM_END)
            return -1;
        m_ended = result == Z_STREAM_END;
    }
    return size - m_stream.avail_out;
}

} // namespace vantor
