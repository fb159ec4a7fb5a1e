#include <analyzer/views/Chart3DCamera.h>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace analyzer {

namespace {

double clampedPan(double pan)
{
    return std::clamp(pan, -Chart3DCamera::largestPan, Chart3DCamera::largestPan);
}

} // namespace

Chart3DCamera Chart3DCamera::turned(double right, double up) const
{
    constexpr double fullTurn = 360.0;
    Chart3DCamera camera = *this;
    camera.azimuth = std::fmod(azimuth + right, fullTurn);
    if (camera.azimuth < 0.0) {
        camera.azimuth += fullTurn;
    }
    camera.elevation = std::clamp(elevation + up, -largestElevation, largestElevation);
    return camera;
}

Chart3DCamera Chart3DCamera::moved(double right, double up) const
{
    Chart3DCamera camera = *this;
    camera.panX = clampedPan(panX + right);
    camera.panY = clampedPan(panY + up);
    return camera;
}

Chart3DCamera Chart3DCamera::zoomedAt(double x, double y, double factor) const
{
    Chart3DCamera camera = *this;
    camera.zoom = std::clamp(zoom * factor, smallestZoom, largestZoom);
    const double growth = camera.zoom / zoom;
    camera.panX = clampedPan(x - (x - panX) * growth);
    camera.panY = clampedPan(y - (y - panY) * growth);
    return camera;
}

bool operator==(const Chart3DCamera& left, const Chart3DCamera& right)
{
    return left.azimuth == right.azimuth && left.elevation == right.elevation
        && left.zoom == right.zoom && left.panX == right.panX && left.panY == right.panY;
}

bool operator!=(const Chart3DCamera& left, const Chart3DCamera& right)
{
    return !(left == right);
}

corvane::ValidationResult Chart3DCameraValidator::validate(const Chart3DCamera& camera) const
{
    const struct
    {
        const char* name;
        double value;
        double smallest;
        double largest;
    } parts[] = {
        {"azimuth", camera.azimuth, -Chart3DCamera::largestAzimuth, Chart3DCamera::largestAzimuth},
        {"elevation",
         camera.elevation,
         -Chart3DCamera::largestElevation,
         Chart3DCamera::largestElevation},
        {"zoom", camera.zoom, Chart3DCamera::smallestZoom, Chart3DCamera::largestZoom},
        {"horizontal place", camera.panX, -Chart3DCamera::largestPan, Chart3DCamera::largestPan},
        {"vertical place", camera.panY, -Chart3DCamera::largestPan, Chart3DCamera::largestPan}};

    for (const auto& part : parts) {
        // Written so that NaN fails.
        if (!(part.value >= part.smallest && part.value <= part.largest)) {
            std::ostringstream message;
            message << "The " << part.name << " must be from " << part.smallest << " to "
                    << part.largest << ", not " << part.value << ".";
            return corvane::ValidationResult(message.str());
        }
    }
    return {};
}

} // namespace analyzer
