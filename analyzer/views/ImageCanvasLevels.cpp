#include <analyzer/views/ImageCanvasLevels.h>

#include <algorithm>
#include <utility>

namespace analyzer {

namespace {

constexpr int smallestLevelPx = 256; ///< of the longer side; smaller ones are drawn from that

} // namespace

std::vector<QImage> imageCanvasLevels(QImage image)
{
    if (image.isNull()) {
        return {};
    }
    std::vector<QImage> levels{std::move(image)};
    while (std::max(levels.back().width(), levels.back().height()) > smallestLevelPx) {
        const QSize half = (levels.back().size() / 2).expandedTo({1, 1});
        QImage level = levels.back().scaled(half, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        if (level.isNull()) {
            break; // no memory: the larger ones do
        }
        levels.push_back(std::move(level));
    }
    return levels;
}

} // namespace analyzer
