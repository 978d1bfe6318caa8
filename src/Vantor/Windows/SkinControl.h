#pragma once

#include <QRect>
#include <QString>

namespace vantor {

/// A painted control of a skinned window as keyboards and assistive tools meet it.
struct SkinControl {
    enum class Kind { button, toggle, slider, text, row };

    int id = 0; ///< the window's own number for it
    Kind kind = Kind::button;
    QString name; ///< as it is spoken
    QRect rect;   ///< in skin pixels

    bool checked = false; ///< of a toggle; of a row, whether it is selected

    // Of a slider, in its own units; the step is what an arrow key changes.
    double value = 0;
    double minimum = 0;
    double maximum = 1;
    double step = 0.05;

    QString text; ///< what a text shows, or a slider's value in words ("−3.5 dB")

    /// One of which no more is known yet.
    template <class Control>
    [[nodiscard]] static SkinControl at(Control control, const QRect &rect) {
        SkinControl made;
        made.id = static_cast<int>(control);
        made.rect = rect;
        return made;
    }

    /// A list's rows have the arrow keys.
    [[nodiscard]] bool isTabStop() const { return kind != Kind::text && kind != Kind::row; }

    bool operator==(const SkinControl &) const = default;
};

} // namespace vantor
