// How keyboards and assistive tools reach the controls of the skinned windows.

#include "Vantor/Windows/SkinnedWindow.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vantor {

std::optional<SkinControl> SkinnedWindow::control(Control id) const {
    const std::vector<SkinControl> all = controls();
    const auto found = std::ranges::find(all, id, &SkinControl::id);
    return found == all.end() ? std::nullopt : std::optional(*found);
}

void SkinnedWindow::pressControl(Control id) {
    if (!control(id))
        return;
    click(id);
    refresh();
}

void SkinnedWindow::setControlValue(Control slider, double value) {
    const std::optional<SkinControl> known = control(slider);
    if (!known || known->kind != SkinControl::Kind::slider || !std::isfinite(value))
        return;
    setValue(slider, std::clamp(value, known->minimum, known->maximum));
    refresh();
}

void SkinnedWindow::focusControl(std::optional<Control> id) {
    if (id == m_focused)
        return;
    m_focused = id;
    update();
    if (!id || !QAccessible::isActive())
        return;
    if (QAccessibleInterface *const self = QAccessible::queryAccessibleInterface(this)) {
        QAccessibleEvent event(self->focusChild(), QAccessible::Focus);
        QAccessible::updateAccessibility(&event);
    }
}

bool SkinnedWindow::focusNextPrevChild(bool next) {
    std::vector<SkinControl> stops = controls();
    std::erase_if(stops, [](const SkinControl &control) { return !control.isTabStop(); });
    if (stops.empty())
        return false;
    const auto count = static_cast<std::ptrdiff_t>(stops.size());
    const auto present = m_focused ? std::ranges::find(stops, *m_focused, &SkinControl::id) : stops.end();
    std::ptrdiff_t to = next ? 0 : count - 1;
    if (present != stops.end())
        to = (present - stops.begin() + (next ? 1 : count - 1)) % count;
    focusControl(stops[static_cast<std::size_t>(to)].id);
    return true;
}

bool SkinnedWindow::isForFocus(const QKeyEvent &event) const {
    const std::optional<SkinControl> focused = m_focused ? control(*m_focused) : std::nullopt;
    if (!focused || (event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    switch (event.key()) {
    case Qt::Key_Escape:
        return true;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return focused->kind != SkinControl::Kind::slider;
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
        return focused->kind == SkinControl::Kind::slider;
    default:
        return false;
    }
}

void SkinnedWindow::keyPressEvent(QKeyEvent *event) {
    if (!isForFocus(*event)) {
        QWidget::keyPressEvent(event);
        return;
    }
    const SkinControl focused = *control(*m_focused);
    switch (event->key()) {
    case Qt::Key_Escape:
        focusControl(std::nullopt);
        break;
    case Qt::Key_Left:
    case Qt::Key_Down:
        setControlValue(focused.id, focused.value - focused.step);
        break;
    case Qt::Key_Right:
    case Qt::Key_Up:
        setControlValue(focused.id, focused.value + focused.step);
        break;
    case Qt::Key_Home:
        setControlValue(focused.id, focused.minimum);
        break;
    case Qt::Key_End:
        setControlValue(focused.id, focused.maximum);
        break;
    default:
        if (!event->isAutoRepeat())
            pressControl(focused.id);
        break;
    }
}

QPoint SkinnedWindow::menuPlace() const {
    const std::optional<SkinControl> focused = m_focused ? control(*m_focused) : std::nullopt;
    return focused ? focused->rect.center() : titleBar().bottomLeft();
}

// Black and white by turns shows on every skin.
void SkinnedWindow::drawFocus(QPainter &painter) const {
    const std::optional<SkinControl> focused = m_focused ? control(*m_focused) : std::nullopt;
    if (!focused || !isActiveWindow())
        return;
    const QRect frame(focused->rect.topLeft() * zoom(), focused->rect.size() * zoom());
    painter.setPen(Qt::black);
    painter.drawRect(frame.adjusted(0, 0, -1, -1));
    painter.setPen(QPen(Qt::white, 1, Qt::DotLine));
    painter.drawRect(frame.adjusted(0, 0, -1, -1));
}

void SkinnedWindow::tellAssistiveTools() {
    std::vector<SkinControl> now = controls();
    QAccessibleInterface *const self = QAccessible::queryAccessibleInterface(this);
    for (std::size_t i = 0; self && i < now.size(); ++i) {
        const auto before = std::ranges::find(m_told, now[i].id, &SkinControl::id);
        if (before == m_told.end() || *before == now[i])
            continue;
        QAccessibleInterface *const child = self->child(static_cast<int>(i));
        if (before->checked != now[i].checked) {
            QAccessible::State changed;
            changed.selected = now[i].kind == SkinControl::Kind::row;
            changed.checked = !changed.selected;
            QAccessibleStateChangeEvent event(child, changed);
            QAccessible::updateAccessibility(&event);
        } else if (before->value != now[i].value) {
            QAccessibleValueChangeEvent event(child, now[i].value);
            QAccessible::updateAccessibility(&event);
        } else if (before->name != now[i].name) {
            QAccessibleEvent event(child, QAccessible::NameChanged);
            QAccessible::updateAccessibility(&event);
        }
    }
    m_told = std::move(now);
}

} // namespace vantor
