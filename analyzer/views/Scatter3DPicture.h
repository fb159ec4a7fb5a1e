#pragma once

#include <dataviews/common/charts/PixelPicture.h>

#include <vtkNew.h>
#include <vtkType.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

class vtkImageData;

namespace analyzer {

/// A picture of very many points as discs with soft edges, drawn without the graphics system.
///
/// Without a graphics card, that takes more than a second for the sprites of a million points, whatever they hide. Here
/// points are drawn from front to back, and a pixel that shows enough of them is left alone by those behind: the same
/// picture in some hundredths of a second. Works with some threads, and keeps its memory for the next picture. Used on
/// the GUI thread.
class Scatter3DPicture
{
public:
    using Clock = std::chrono::steady_clock;

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

    /// Many points of which the picture finds out by itself which are in front.
    struct Cloud
    {
        const float* places; ///< as of Points; rows with a place that is NaN are not drawn
        const float*
            nearness; ///< of each row, from -1 to 1; of those nearly as near the later row is in front
        std::size_t count; ///< of the rows
        const unsigned char* colors; ///< as of Points
        std::array<unsigned char, 4> plain;
        std::size_t stride = 1; ///< of so many rows only the first is drawn
    };

    /// Marks around some of the points, in front of the discs, which are none of the marks' business if they lie beside.
    struct Marks
    {
        const vtkIdType* rows; ///< those that there are not are left out
        std::size_t count;
        const std::vector<std::uint32_t>& sprite; ///< square, as the pixels of PixelPicture
        bool withDiscs; ///< whether the marked points are drawn in front of all marks
    };

    Scatter3DPicture();
    Scatter3DPicture(const Scatter3DPicture&) = delete;
    Scatter3DPicture& operator=(const Scatter3DPicture&) = delete;
    ~Scatter3DPicture();

    /// Draws \p points as discs of \p diameter into a picture of \p width by \p height pixels. The places of the rows
    /// in the order are finite.
    void draw(const Points& points, float diameter, int width, int height);

    /// The same for \p cloud.
    void draw(const Cloud& cloud, float diameter, int width, int height);

    /// Begins to draw \p cloud: for drawMore(). What the cloud points to stays there, unchanged, until that says that it
    /// is done or another drawing begins.
    void startDrawing(const Cloud& cloud, float diameter, int width, int height);

    /// The same for what drawMarks() draws. The rows of the marks stay, too; their sprite need not.
    void startDrawingMarks(
        const Cloud& cloud, const Marks& marks, float diameter, int width, int height);

    /// Goes on until \p end, or a little longer, by some hundred points at least. Whether all is drawn; the picture has
    /// parts of it before.
    bool drawMore(Clock::time_point end);

    /// Draws \p marks around points of \p cloud, and nothing else but the discs of these if the marks want them.
    void drawMarks(const Cloud& cloud, const Marks& marks, float diameter, int width, int height);

    /// Without a margin.
    [[nodiscard]] const PixelPicture& pixels() const { return m_picture; }

    /// Counts the drawings.
    [[nodiscard]] std::uint64_t version() const { return m_version; }

    /// Red, green, blue and opacity, not multiplied; transparent beside the points. Valid until the next drawing.
    [[nodiscard]] vtkImageData& image() const;

private:
    class Band;
    class Bins;
    class Worker;
    struct Part;
    class ByOrder;
    class ByNearness;

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

    /// A point in a band of the picture's lines.
    struct Entry
    {
        std::uint32_t row;
        std::uint32_t column; ///< in quarters of pixels, from so far left that none is negative
        std::uint16_t line; ///< likewise upward, from below the band
        std::uint16_t depth; ///< the larger, the nearer
    };

    /// What is drawn of the entries, in front of what follows.
    struct Layer
    {
        int reach = 0; ///< pixels around the one with the center
        const std::vector<std::uint32_t>* sprite = nullptr; ///< null for discs
    };

    void begin(float diameter, int width, int height, int reach);
    void makeDiscs(float diameter);

    /// To draw \p layers, the first one in front, of all that \p source has.
    template <class Source>
    void start(const Source& source, std::vector<Layer> layers);

    /// All at once.
    void finish();

    /// Fills the bins. Whether they have everything.
    bool sortMore(Clock::time_point end);

    /// Puts the points from \p begin up to \p end into \p bins, as often as there are bands that they reach into.
    template <class Source>
    void sortEntries(const Source& source, std::size_t begin, std::size_t end, Bins& bins) const;

    /// Pixels of the picture, and lines of the band that the entry is in.
    [[nodiscard]] int columnOf(const Entry& entry) const;
    [[nodiscard]] int lineOf(const Entry& entry) const;
    [[nodiscard]] const Disc& discOf(const Entry& entry) const;
    [[nodiscard]] const unsigned char* colorOf(const Entry& entry) const;

    int m_width = 0;
    int m_height = 0;
    float m_diameter = 0.0F; ///< of the discs
    int m_discReach = 0;
    std::vector<Disc> m_discs;
    int m_reach = 0; ///< the largest one of any layer
    int m_bandLines = 1;
    int m_bandCount = 0;
    int m_nextBand = 0; ///< the first one that is not begun
    const unsigned char* m_colors = nullptr; ///< of what is drawn; see Points
    std::array<unsigned char, 4> m_plain = {};
    std::vector<Layer> m_layers;
    std::vector<std::uint32_t> m_sprite; ///< of a layer
    std::function<void(std::size_t begin, std::size_t end, Bins& bins)> m_sort;
    std::vector<Part> m_parts;
    std::vector<Worker> m_workers;
    PixelPicture m_picture;
    std::uint64_t m_version = 0;
    mutable bool m_isImageOld = true;
    vtkNew<vtkImageData> m_image;
};

} // namespace analyzer
