#pragma once

#include <dataviews/platform/property/ValidatorInterface.h>

namespace analyzer {

/// From where a chart in three dimensions is seen.
///
/// A parallel projection of the box that the points are in, with Z always upright. Places on the screen and distances
/// there are in sides of the box as it is drawn at a zoom of 1, to the right and upward from the middle of the chart.
struct Chart3DCamera
{
    static constexpr double largestAzimuth = 360.0;
    static constexpr double largestElevation = 90.0;
    static constexpr double smallestZoom = 0.1;
    static constexpr double largestZoom = 100.0;
    static constexpr double largestPan = 200.0;

    double azimuth =
        30.0; ///< degrees; 0 looks along Y with X to the right, 90 against X with Y to the right
    double elevation = 25.0; ///< degrees above the plane of X and Y; 90 looks straight down
    double zoom = 1.0;
    double panX = 0.0; ///< where the middle of the box is
    double panY = 0.0;

    /// Seen from farther to the right and above by so many degrees, as far as that goes. The azimuth stays from 0 to
    /// less than 360.
    [[nodiscard]] Chart3DCamera turned(double right, double up) const;

    /// With the box moved on the screen, as far as that goes.
    [[nodiscard]] Chart3DCamera moved(double right, double up) const;

    /// Nearer by \p factor, as far as that goes; what is seen at \p x and \p y stays there.
    [[nodiscard]] Chart3DCamera zoomedAt(double x, double y, double factor) const;
};

[[nodiscard]] bool operator==(const Chart3DCamera& left, const Chart3DCamera& right);
[[nodiscard]] bool operator!=(const Chart3DCamera& left, const Chart3DCamera& right);

/// Accepts what can be drawn: finite numbers within the limits of Chart3DCamera.
class Chart3DCameraValidator : public corvane::ValidatorInterface<Chart3DCamera>
{
public:
    [[nodiscard]] corvane::ValidationResult validate(const Chart3DCamera& camera) const override;
};

} // namespace analyzer
