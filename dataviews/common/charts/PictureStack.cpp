#include <dataviews/common/charts/PictureStack.h>
#include <dataviews/common/charts/forEachAtOnce.h>
#include <dataviews/common/charts/pixelsOver.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace {

constexpr int rowsAtOnce = 32;

} // namespace

PictureStack::PictureStack() = default;

PictureStack::~PictureStack() = default;

void PictureStack::draw(
    vtkOpenGLRenderWindow& window, const std::vector<Layer>& layers, int x, int y)
{
    std::vector<std::uint64_t> numbers;
    std::transform(
        layers.begin(), layers.end(), std::back_inserter(numbers), [](const Layer& layer) {
            return layer.number;
        });
    if (m_numbers != numbers || !m_texture.isIn(window)) {
        if (layers.size() > 1) {
            compose(m_picture, layers);
        }
        m_texture.update(window, layers.size() > 1 ? m_picture : *layers.front().picture);
        m_numbers = std::move(numbers);
    }
    m_texture.draw(x, y);
}

void PictureStack::compose(PixelPicture& result, const std::vector<Layer>& layers)
{
    const int width = layers.front().picture->width();
    const int height = layers.front().picture->height();
    result.resize(width, height, 0);
    const int blocks = (height + rowsAtOnce - 1) / rowsAtOnce;
    forEachAtOnce(static_cast<std::size_t>(blocks), [&](std::size_t block) {
        const int first = static_cast<int>(block) * rowsAtOnce;
        for (int y = first; y < std::min(height, first + rowsAtOnce); ++y) {
            std::uint32_t* const pixels = result.row(y);
            const auto rowOf = [y](const Layer& layer) {
                const int margin = layer.picture->margin();
                return layer.picture->row(margin + y) + margin;
            };
            std::copy_n(rowOf(layers.front()), width, pixels);
            for (std::size_t i = 1; i < layers.size(); ++i) {
                paintOver(pixels, rowOf(layers[i]), static_cast<std::size_t>(width));
            }
        }
    });
}
