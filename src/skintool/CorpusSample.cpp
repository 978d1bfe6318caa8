#include "skintool/CorpusSample.h"

#include "Platform/NativePath.h"

#include <QCryptographicHash>

namespace vantor {

QByteArray CorpusSample::rank(std::int64_t seed, const QString &path) {
    return QCryptographicHash::hash(QByteArray::number(static_cast<qlonglong>(seed)) + ':' +
                                        NativePath::bytes(path),
                                    QCryptographicHash::Sha256);
}

} // namespace vantor
