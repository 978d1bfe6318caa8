#include "SkinKit/Decoding/CursorBitmap.h"

#include <QLoggingCategory>

#include <cstdlib>

// -max_len=4096. Qt's picture formats complain about every broken picture, which costs more than the
// decoding.
extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const auto frame = vantor::CursorBitmap::decode(QByteArrayView(data, static_cast<qsizetype>(size)));
    if (!frame)
        return 0;
    const QImage &image = frame->image;
    if (image.format() != QImage::Format_RGBA8888_Premultiplied || image.isNull() || image.width() > 256 ||
        image.height() > 256)
        std::abort();
    for (int y = 0; y < image.height(); ++y) {
        const uchar *pixel = image.constScanLine(y);
        for (int x = 0; x < image.width(); ++x, pixel += 4) {
            if (pixel[0] > pixel[3] || pixel[1] > pixel[3] || pixel[2] > pixel[3])
                std::abort();
        }
    }
    return 0;
}
