#include "WindowDocking/Box.h"

#include <QHashFunctions>

#include <algorithm>

namespace vantor {

Offset overlap(const Box &a, const Box &b) {
    return {std::min(a.right(), b.right()) - std::max(a.x, b.x),
            std::min(a.bottom(), b.bottom()) - std::max(a.y, b.y)};
}

} // namespace vantor

std::size_t std::hash<vantor::Box>::operator()(const vantor::Box &box) const noexcept {
    return qHashMulti(0, box.x, box.y, box.width, box.height);
}
