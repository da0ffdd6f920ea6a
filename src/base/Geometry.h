#pragma once

namespace tavi {

/// A position. The unit and the direction of y are those of the space it is in.
struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

/// An axis-aligned rectangle: origin (the corner with the smallest x and y) and size.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const Rect&) const = default;

    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    Point center() const { return {x + width * 0.5, y + height * 0.5}; }
    Size size() const { return {width, height}; }

    /// Half open: the edges at x and y are inside, those at maxX and maxY are not.
    bool contains(Point p) const { return p.x >= x && p.x < maxX() && p.y >= y && p.y < maxY(); }
};

} // namespace tavi
