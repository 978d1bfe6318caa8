#include "Vantor/Windows/SkinAccessibility.h"

#include "Vantor/Windows/SkinnedWindow.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include <algorithm>
#include <map>

namespace vantor {

namespace {

using Kind = SkinControl::Kind;

class ControlInterface : public QAccessibleInterface,
                         public QAccessibleActionInterface,
                         public QAccessibleValueInterface {
  public:
    ControlInterface(SkinnedWindow &window, int id) : m_window(&window), m_id(id) {}

    [[nodiscard]] bool isValid() const override { return control().has_value(); }
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface *parent() const override {
        return QAccessible::queryAccessibleInterface(m_window);
    }
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }

    [[nodiscard]] QString text(QAccessible::Text what) const override;
    void setText(QAccessible::Text, const QString &) override {}
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessible::Role role() const override;
    [[nodiscard]] QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString &name) override;
    [[nodiscard]] QStringList keyBindingsForAction(const QString &) const override { return {}; }

    [[nodiscard]] QVariant currentValue() const override { return valueOf(&SkinControl::value); }
    void setCurrentValue(const QVariant &value) override {
        if (m_window)
            m_window->setControlValue(m_id, value.toDouble());
    }
    [[nodiscard]] QVariant maximumValue() const override { return valueOf(&SkinControl::maximum); }
    [[nodiscard]] QVariant minimumValue() const override { return valueOf(&SkinControl::minimum); }
    [[nodiscard]] QVariant minimumStepSize() const override { return valueOf(&SkinControl::step); }

  private:
    [[nodiscard]] std::optional<SkinControl> control() const {
        return m_window ? m_window->control(m_id) : std::nullopt;
    }
    [[nodiscard]] QVariant valueOf(double SkinControl::*member) const {
        const std::optional<SkinControl> shown = control();
        return shown ? QVariant((*shown).*member) : QVariant();
    }

    QPointer<SkinnedWindow> m_window;
    int m_id;
};

QString ControlInterface::text(QAccessible::Text what) const {
    const std::optional<SkinControl> shown = control();
    if (!shown)
        return {};
    if (what == QAccessible::Name)
        return shown->name;
    return what == QAccessible::Value || what == QAccessible::Description ? shown->text : QString();
}

QRect ControlInterface::rect() const {
    const std::optional<SkinControl> shown = control();
    if (!shown)
        return {};
    return {m_window->globalPoint(shown->rect.topLeft()), shown->rect.size() * m_window->zoom()};
}

QAccessible::Role ControlInterface::role() const {
    const std::optional<SkinControl> shown = control();
    switch (shown ? shown->kind : Kind::text) {
    case Kind::button:
        return QAccessible::Button;
    case Kind::toggle:
        return QAccessible::CheckBox;
    case Kind::slider:
        return QAccessible::Slider;
    case Kind::row:
        return QAccessible::ListItem;
    case Kind::text:
        break;
    }
    return QAccessible::StaticText;
}

QAccessible::State ControlInterface::state() const {
    QAccessible::State state;
    const std::optional<SkinControl> shown = control();
    if (!shown) {
        state.invalid = true;
        return state;
    }
    state.invisible = !m_window->isVisible();
    state.focusable = shown->isTabStop();
    state.focused = m_window->focusedControl() == m_id && m_window->isActiveWindow();
    state.checkable = shown->kind == Kind::toggle;
    state.checked = shown->kind == Kind::toggle && shown->checked;
    state.selectable = shown->kind == Kind::row;
    state.selected = shown->kind == Kind::row && shown->checked;
    return state;
}

void *ControlInterface::interface_cast(QAccessible::InterfaceType type) {
    const std::optional<SkinControl> shown = control();
    if (!shown)
        return nullptr;
    if (type == QAccessible::ActionInterface && shown->kind != Kind::text)
        return static_cast<QAccessibleActionInterface *>(this);
    if (type == QAccessible::ValueInterface && shown->kind == Kind::slider)
        return static_cast<QAccessibleValueInterface *>(this);
    return nullptr;
}

QStringList ControlInterface::actionNames() const {
    const std::optional<SkinControl> shown = control();
    switch (shown ? shown->kind : Kind::text) {
    case Kind::button:
        return {pressAction(), setFocusAction()};
    case Kind::toggle:
        return {toggleAction(), pressAction(), setFocusAction()};
    case Kind::slider:
        return {increaseAction(), decreaseAction(), setFocusAction()};
    case Kind::row:
        return {pressAction()};
    case Kind::text:
        break;
    }
    return {};
}

void ControlInterface::doAction(const QString &name) {
    const std::optional<SkinControl> shown = control();
    if (!shown)
        return;
    if (name == pressAction() || name == toggleAction())
        m_window->pressControl(m_id);
    else if (name == increaseAction() || name == decreaseAction())
        m_window->setControlValue(m_id,
                                  shown->value + (name == increaseAction() ? shown->step : -shown->step));
    else if (name == setFocusAction())
        m_window->focusControl(m_id);
}

/// The window itself; its children are the controls that it has just now.
class WindowInterface : public QAccessibleWidget {
  public:
    explicit WindowInterface(SkinnedWindow &window) : QAccessibleWidget(&window, QAccessible::Window) {}
    ~WindowInterface() override {
        for (const auto &[id, control] : m_controls)
            QAccessible::deleteAccessibleInterface(control);
    }
    Q_DISABLE_COPY_MOVE(WindowInterface)

    [[nodiscard]] int childCount() const override { return static_cast<int>(skinned().controls().size()); }
    [[nodiscard]] QAccessibleInterface *child(int index) const override {
        const std::vector<SkinControl> controls = skinned().controls();
        const bool exists = index >= 0 && index < static_cast<int>(controls.size());
        return exists ? interfaceOf(controls[static_cast<std::size_t>(index)].id) : nullptr;
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override {
        const std::vector<SkinControl> controls = skinned().controls();
        const auto same = [&](const SkinControl &control) { return interfaceOf(control.id) == child; };
        const auto found = std::ranges::find_if(controls, same);
        return found == controls.end() ? -1 : static_cast<int>(found - controls.begin());
    }
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override {
        for (const SkinControl &control : skinned().controls()) {
            if (QAccessibleInterface *const child = interfaceOf(control.id); child->rect().contains(x, y))
                return child;
        }
        return nullptr;
    }
    [[nodiscard]] QAccessibleInterface *focusChild() const override {
        const std::optional<int> focused = skinned().focusedControl();
        return focused ? interfaceOf(*focused) : QAccessibleWidget::focusChild();
    }

  private:
    [[nodiscard]] SkinnedWindow &skinned() const { return *static_cast<SkinnedWindow *>(widget()); }
    [[nodiscard]] QAccessibleInterface *interfaceOf(int id) const {
        auto found = m_controls.find(id);
        if (found == m_controls.end()) {
            auto *const made = new ControlInterface(skinned(), id);
            found = m_controls.emplace(id, QAccessible::registerAccessibleInterface(made)).first;
        }
        return QAccessible::accessibleInterface(found->second);
    }

    mutable std::map<int, QAccessible::Id> m_controls; ///< made when they are first asked for
};

QAccessibleInterface *makeInterface(const QString &className, QObject *object) {
    if (className != QLatin1String("vantor::SkinnedWindow"))
        return nullptr;
    return new WindowInterface(*static_cast<SkinnedWindow *>(object));
}

} // namespace

void installSkinAccessibility() {
    QAccessible::installFactory(makeInterface);
}

} // namespace vantor
