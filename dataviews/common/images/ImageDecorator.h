#pragma once

#include <dataviews/common/images/ImagesExport.h>

#include <QImage>

/// Marks an image that stands for several.
class DATAVIEWS_IMAGES_EXPORT ImageDecorator
{
public:
    ImageDecorator();
    ImageDecorator(const ImageDecorator& other);
    ImageDecorator& operator=(const ImageDecorator& other);

    /// \p image with the stack mark, 16 by 16 device-independent pixels, at (2, 2); null for a null image. Formats that
    /// cannot hold the mark's colors come back as 32-bit images.
    [[nodiscard]] virtual QImage decorate(QImage image) const;

    virtual ~ImageDecorator();
};
