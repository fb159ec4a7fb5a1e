#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/PointRaster.h>

#include <vtkType.h>

#include <array>
#include <memory>

class PointPicture;

/// What devices of vtkContext2D implement beside the device that draw files and take very many points as one picture.
class DATAVIEWS_CHARTS_EXPORT PointPictureDeviceInterface
{
public:
    /// Where a picture of points goes: what is clipped, with the transformation of the device.
    struct Place
    {
        int width = 0; ///< in pixels of the picture
        int height = 0;
        float scale = 1.0F; ///< of them per pixel of the chart
        std::array<PointRaster::Axis, 2> axes = {};
    };

    PointPictureDeviceInterface(const PointPictureDeviceInterface&) = delete;
    PointPictureDeviceInterface& operator=(const PointPictureDeviceInterface&) = delete;
    virtual ~PointPictureDeviceInterface();

    /// Whether so many points shall come as a picture and not one by one.
    [[nodiscard]] virtual bool takesPicture(vtkIdType count) const = 0;

    [[nodiscard]] virtual Place picturePlace() const = 0;

    /// \p picture is for the present picturePlace().
    virtual void drawPicture(std::shared_ptr<const PointPicture> picture) = 0;

protected:
    PointPictureDeviceInterface() = default;
};
