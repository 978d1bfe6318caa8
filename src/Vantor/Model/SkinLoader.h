#pragma once

#include "SkinKit/Loading/Skin.h"

#include <QObject>
#include <QUrl>

namespace vantor {

/// Loads skins on a worker thread. Main thread; when several are asked for, only the newest is reported.
class SkinLoader : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

    /// The skin that ships inside the program. Loaded at once; cannot fail in a sound build.
    [[nodiscard]] static Skin defaultSkin();

    void load(const QUrl &url);
    /// What is still loading is not reported.
    void cancel() { ++m_newest; }

  Q_SIGNALS:
    void loaded(const QUrl &url, const vantor::Skin &skin);
    /// `message`: the sentence that says why.
    void refused(const QUrl &url, const QString &message);

  private:
    quint64 m_newest = 0;
};

} // namespace vantor
