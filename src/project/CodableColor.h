#pragma once

namespace tavi {

/// An sRGB colour as the files hold it; each part in 0..1, straight alpha.
struct CodableColor {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    bool operator==(const CodableColor&) const = default;
};

} // namespace tavi
