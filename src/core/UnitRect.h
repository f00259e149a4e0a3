#pragma once

namespace velmora {

// A rectangle in unit coordinates of a screen's usable rectangle, y = 0 at the top: what a zone is.
struct UnitRect {
    double x = 0;
    double y = 0;
    double w = 0;
    double h = 0;

    bool operator==(const UnitRect&) const = default;
};

} // namespace velmora
