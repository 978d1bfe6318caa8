#include "SkinKit/Decoding/BMPDecoder.h"

#include <cstdlib>
#include <memory>

// -max_len=4096 covers every layout. Run lengths can ask for 32 MB with a hundred bytes, which would leave
// nothing but filling memory to measure: pictures claiming more than 512 × 512 pixels are left out unless
// FUZZ_LARGE is set in the environment.
namespace {

bool claimsLargePicture(const uint8_t *data, size_t size) {
    const auto u16 = [data](size_t at) { return data[at] | data[at + 1] << 8; };
    if (size < 26)
        return false;
    const bool core = data[14] == 12;
    const auto side = [&](size_t core16, size_t info32) {
        if (core)
            return u16(core16);
        const int low = u16(info32);
        return u16(info32 + 2) == 0xFFFF ? 0x10000 - low : low;
    };
    return side(18, 18) * std::int64_t{side(20, 22)} > 512 * 512;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const bool allowLarge = std::getenv("FUZZ_LARGE") != nullptr;
    if (!allowLarge && claimsLargePicture(data, size))
        return -1;
    const QImage image = vantor::BMPDecoder::decode(QByteArrayView(data, static_cast<qsizetype>(size)));
    if (image.isNull())
        return 0;
    if (image.format() != QImage::Format_RGBX8888 || image.width() > 4096 || image.height() > 4096)
        std::abort();
    for (int y = 0; y < image.height(); y += image.height() > 64 ? 61 : 1) {
        const uchar *line = image.constScanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            if (line[x * 4 + 3] != 255)
                std::abort();
        }
    }
    return 0;
}
