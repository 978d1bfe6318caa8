#pragma once

namespace vantor {

/// A gain that moves to its target in a straight line, one step per frame, so that changes never click.
/// Belongs to the thread that renders.
class Ramp {
  public:
    explicit Ramp(float value = 0) : m_value(value), m_target(value) {}

    /// Jumps.
    void set(float value) {
        m_value = m_target = value;
        m_remaining = 0;
    }
    /// Begins to move to `target`, which is reached after `frames` steps. A move to the same target goes on.
    void moveTo(float target, int frames) {
        if (target == m_target)
            return;
        m_target = target;
        m_remaining = frames > 0 ? frames : 1;
        m_step = (target - m_value) / static_cast<float>(m_remaining);
    }
    /// The gain of the next frame.
    float next() {
        if (m_remaining > 0) {
            m_value += m_step;
            if (--m_remaining == 0)
                m_value = m_target;
        }
        return m_value;
    }
    [[nodiscard]] float value() const { return m_value; }
    [[nodiscard]] bool isMoving() const { return m_remaining > 0; }

  private:
    float m_value;
    float m_target;
    float m_step = 0;
    int m_remaining = 0;
};

} // namespace vantor
