#pragma once

#include <dataviews/common/charts/ColorPalette.h>

#include <vtkNew.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

class vtkImageData;

namespace analyzer {

/// A picture of very many points as discs with soft edges, drawn without the graphics system.
///
/// Without a graphics card, that takes more than a second for the sprites of a million points, whatever they hide. Here
/// points are drawn from front to back, and a pixel that shows enough of them is left alone by those behind: the same
/// picture in a tenth of the time. Used on the GUI thread.
class Scatter3DPicture
{
public:
    /// Many points, each row one.
    struct Points
    {
        const float*
            places; ///< X and Y of each row, in pixels from the lower left corner of the picture
        const std::vector<std::uint32_t>& order; ///< the rows to be drawn, the one in front last
        const unsigned char*
            colors; ///< red, green, blue and opacity of each row; null if all have the plain one
        std::array<unsigned char, 4> plain;
    };

    Scatter3DPicture();
    Scatter3DPicture(const Scatter3DPicture&) = delete;
    Scatter3DPicture& operator=(const Scatter3DPicture&) = delete;
    ~Scatter3DPicture();

    /// Draws \p points as discs of \p diameter into a picture of \p width by \p height pixels. The places of the rows
    /// in the order are finite.
    void draw(const Points& points, float diameter, int width, int height);

    /// Red, green, blue and opacity, not multiplied; transparent beside the points.
    [[nodiscard]] vtkImageData& image() const { return *m_image; }

private:
    /// How much of each pixel around it a disc covers, for one place of its center within a pixel.
    struct Disc
    {
        struct Line
        {
            int begin =
                0; ///< of the pixels that are covered at all, to the right of the one with the center
            int end = 0; ///< behind the last
            std::size_t coverage = 0; ///< index of that of the first
        };

        std::vector<Line> lines; ///< from bottom to top, the one with the center in the middle
        std::vector<std::uint32_t> coverage; ///< from 0 to 256
    };

    /// What has been drawn of a pixel, from front to back.
    struct Pixel
    {
        std::array<std::uint16_t, 3> color; ///< multiplied by the opacity, in 256th
        std::uint16_t rest; ///< what what is behind would still show of itself, from 0 to 65535
    };

    void makeDiscs(float diameter);
    void drawDisc(const Disc& disc, int x, int y, const unsigned char* color);
    void fillImage();
    [[nodiscard]] static int firstOpen(std::uint16_t* next, int x);

    static constexpr int placesInPixel = 4; ///< that are told apart, along each side

    int m_width = 0;
    int m_height = 0;
    float m_diameter = 0.0F; ///< of the discs
    std::vector<Disc> m_discs;
    std::vector<Pixel> m_pixels;
    std::vector<std::uint16_t>
        m_next; ///< leads from each pixel to the first one at or behind it that is not full
    vtkNew<vtkImageData> m_image;
};

} // namespace analyzer
