#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/PictureTexture.h>
#include <dataviews/common/charts/PixelPicture.h>

#include <cstdint>
#include <vector>

class vtkOpenGLRenderWindow;

/// Draws pictures that lie over one another as one.
///
/// Without a graphics card a texture takes longer than putting a picture over another in memory. What is made of the
/// pictures is kept while they stay the same.
class DATAVIEWS_CHARTS_EXPORT PictureStack
{
public:
    struct Layer
    {
        const PixelPicture* picture = nullptr;
        std::uint64_t number = 0; ///< another for each content that a picture has ever had
    };

    PictureStack();
    PictureStack(const PictureStack&) = delete;
    PictureStack& operator=(const PictureStack&) = delete;
    ~PictureStack();

    /// Draws \p layers, the lowest first, at least one and all of one size without their margins, while the context of
    /// \p window is current. Their lower left corner lies at \p x and \p y in pixels of the current viewport.
    void draw(vtkOpenGLRenderWindow& window, const std::vector<Layer>& layers, int x, int y);

    /// Makes \p result, without a margin, of \p layers.
    static void compose(PixelPicture& result, const std::vector<Layer>& layers);

private:
    std::vector<std::uint64_t> m_numbers; ///< of what the texture shows
    PixelPicture m_picture;
    PictureTexture m_texture;
};
