#pragma once

#include "Canvas.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <vector>

namespace vantor::art {

/// A sheet bitmap in the making, exactly as large as the catalogue's sprites need.
class Sheet {
  public:
    explicit Sheet(const char *name);

    /// Where to draw a sprite. The name must be one of this sheet's.
    [[nodiscard]] Canvas sprite(const char *name);
    [[nodiscard]] Canvas sprite(const QString &name);
    /// A sprite that starts as a copy of what lies under it in its window, so that no seam shows.
    [[nodiscard]] Canvas sprite(const char *name, const QImage &window, QPoint at);

    [[nodiscard]] Canvas whole() { return Canvas(m_image); }
    [[nodiscard]] const QString &name() const { return m_name; }
    [[nodiscard]] const QImage &image() const { return m_image; }

  private:
    QString m_name;
    QImage m_image;
};

/// A file of the skin archive.
struct SkinFile {
    QByteArray name;
    QByteArray bytes;
};

// What each source file contributes. `window` is the main window that the parts are laid on.
[[nodiscard]] QImage mainWindow();
[[nodiscard]] Sheet mainSheet(const QImage &window);
[[nodiscard]] Sheet titleBarSheet(const QImage &window);
[[nodiscard]] std::vector<Sheet> buttonSheets(const QImage &window);
[[nodiscard]] std::vector<Sheet> sliderSheets(const QImage &window);
[[nodiscard]] std::vector<Sheet> textSheets();
[[nodiscard]] std::vector<Sheet> equalizerSheets();
[[nodiscard]] Sheet playlistSheet();
[[nodiscard]] Sheet generalSheet();
[[nodiscard]] std::vector<SkinFile> cursorFiles();
[[nodiscard]] std::vector<SkinFile> textFiles();

} // namespace vantor::art
