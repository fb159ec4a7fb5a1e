#include <analyzer/views/Chart3DBox.h>

#include <QString>

#include <vtkContext2D.h>
#include <vtkPen.h>
#include <vtkStdString.h>
#include <vtkVectorOperators.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace analyzer {

namespace {

constexpr int labelSize = 11; // points
constexpr int titleSize = 12;
constexpr float tickLength = 4.0F; // device-independent pixels, as all of the following
constexpr float gap = 4.0F; ///< between edge, numbers and title
constexpr float leastLength = 25.0F; ///< of an edge that carries numbers
constexpr float leastTitle = 90.0F; ///< that a title may be wide, however short its edge is
constexpr float roomForTexts = 34.0F;
constexpr float half = 0.5F; ///< of the box

/// What VTK draws as one line each.
class Segments
{
public:
    void add(const Chart3DProjection::Place& begin, const Chart3DProjection::Place& end)
    {
        m_points.insert(m_points.end(), {begin.x, begin.y, end.x, end.y});
    }

    void draw(vtkContext2D& painter)
    {
        if (!m_points.empty()) {
            painter.DrawLines(m_points.data(), static_cast<int>(m_points.size() / 2));
        }
    }

private:
    std::vector<float> m_points;
};

void setPen(vtkContext2D& painter, const ColorBytes& color, float width)
{
    vtkPen& pen = *painter.GetPen();
    pen.SetLineType(vtkPen::SOLID_LINE);
    pen.SetColor(color[0], color[1], color[2], 255);
    pen.SetWidth(width);
}

vtkVector2f sizeOf(vtkContext2D& painter, const std::string& text)
{
    float bounds[4] = {0.0F, 0.0F, 0.0F, 0.0F};
    painter.ComputeStringBounds(text, bounds);
    return {bounds[2], bounds[3]};
}

/// \p text, without as much of its middle as must go for it to be at most \p width wide.
std::string shortened(vtkContext2D& painter, const std::string& text, float width)
{
    const QString whole = QString::fromStdString(text);
    const auto keeping = [&whole](int count) {
        const int left = (count + 1) / 2;
        return (whole.left(left) + QChar(0x2026) + whole.right(count - left)).toStdString();
    };
    if (sizeOf(painter, text)[0] <= width) {
        return text;
    }
    int kept = 1; // characters; as many fit, or it is the least
    for (int tooMany = whole.size(); tooMany - kept > 1;) {
        const int middle = (kept + tooMany) / 2;
        (sizeOf(painter, keeping(middle))[0] <= width ? kept : tooMany) = middle;
    }
    return keeping(kept);
}

/// How far a text of \p size reaches along \p direction.
float reach(const vtkVector2f& size, const vtkVector2f& direction)
{
    return std::abs(size[0] * direction[0]) + std::abs(size[1] * direction[1]);
}

/// The middle of a text of \p size that lies beside \p place in the direction of \p outward: nearly always with a corner
/// there, so that the numbers of two axes that meet do not cover each other.
vtkVector2f beside(const vtkVector2f& place, const vtkVector2f& size, const vtkVector2f& outward)
{
    constexpr float steepness = 4.0F;
    const auto share = [](float along) {
        return std::clamp(along * steepness, -1.0F, 1.0F) / 2.0F;
    };
    return {place[0] + size[0] * share(outward[0]), place[1] + size[1] * share(outward[1])};
}

/// \p middle of a text of \p size that is written along \p direction, moved as little as it takes for all of the text to
/// be in \p area; where that is too small, the text has as much outside of it on both sides.
vtkVector2f movedInto(
    const vtkRectf& area,
    const vtkVector2f& middle,
    const vtkVector2f& size,
    const vtkVector2f& direction)
{
    const auto moved = [](float place, float begin, float end, float extent) {
        const float least = begin + extent / 2.0F;
        const float most = end - extent / 2.0F;
        return least < most ? std::clamp(place, least, most) : (begin + end) / 2.0F;
    };
    const vtkVector2f mirrored(direction[1], direction[0]);
    return {
        moved(middle[0], area.GetLeft(), area.GetRight(), reach(size, direction)),
        moved(middle[1], area.GetBottom(), area.GetTop(), reach(size, mirrored))};
}

/// How many ticks apart numbers of \p size do not touch, if ticks are \p spacing pixels apart along \p direction.
std::size_t strideFor(
    const vtkVector2f& size, const vtkVector2f& direction, float spacing, float room)
{
    // Beside each other or above each other.
    const float across =
        std::abs(direction[0]) > 0.0F ? (size[0] + room) / std::abs(direction[0]) : HUGE_VALF;
    const float up = std::abs(direction[1]) > 0.0F
        ? (size[1] + room / 2.0F) / std::abs(direction[1])
        : HUGE_VALF;
    const float ticks = std::ceil(std::min(across, up) / std::max(spacing, 1.0F));
    return static_cast<std::size_t>(std::clamp(ticks, 1.0F, 1000.0F));
}

void style(vtkTextProperty& text, const ColorBytes& color, int size)
{
    constexpr double full = 255.0;
    text.SetColor(color[0] / full, color[1] / full, color[2] / full);
    text.SetFontSize(size);
    text.SetJustificationToCentered();
    text.SetVerticalJustificationToCentered();
}

} // namespace

Chart3DBox::Chart3DBox()
{
    setLook({});
}

Chart3DBox::~Chart3DBox() = default;

void Chart3DBox::setAxes(Axes axes)
{
    m_axes = std::move(axes);
}

void Chart3DBox::setLook(const Look& look)
{
    m_look = look;
    style(*m_labelText, look.text, labelSize);
    style(*m_titleText, look.text, titleSize);
}

float Chart3DBox::margin() const
{
    return roomForTexts * m_look.pixelRatio;
}

void Chart3DBox::paint(vtkContext2D& painter, const Chart3DProjection& projection)
{
    Point back = {};
    for (std::size_t axis = 0; axis < back.size(); ++axis) {
        back[axis] = projection.nearness(axis) < 0.0F ? half : -half;
    }
    paintGrid(painter, projection, back);
    paintFaceEdges(painter, projection, back);
    for (std::size_t axis = 0; axis < back.size(); ++axis) {
        paintAxis(painter, projection, back, axis);
    }
}

void Chart3DBox::paintGrid(
    vtkContext2D& painter, const Chart3DProjection& projection, const Point& back)
{
    Segments lines;
    for (std::size_t axis = 0; axis < back.size(); ++axis) {
        // A line for each tick on the two faces that the axis runs along.
        for (std::size_t across = 0; across < back.size(); ++across) {
            if (across == axis) {
                continue;
            }
            for (const Chart3DAxis::Tick& tick : m_axes[axis].ticks()) {
                Point begin = back;
                begin[axis] = tick.place;
                begin[across] = -half;
                Point end = begin;
                end[across] = half;
                lines.add(projection.place(begin), projection.place(end));
            }
        }
    }
    setPen(painter, m_look.grid, m_look.pixelRatio);
    lines.draw(painter);
}

void Chart3DBox::paintFaceEdges(
    vtkContext2D& painter, const Chart3DProjection& projection, const Point& back)
{
    Segments edges;
    for (std::size_t axis = 0; axis < back.size(); ++axis) {
        const std::size_t second = (axis + 1) % 3;
        const std::size_t third = (axis + 2) % 3;
        for (const auto& [a, b] :
             {std::pair(back[second], back[third]),
              std::pair(-back[second], back[third]),
              std::pair(back[second], -back[third])}) {
            Point begin = {};
            begin[axis] = -half;
            begin[second] = a;
            begin[third] = b;
            Point end = begin;
            end[axis] = half;
            edges.add(projection.place(begin), projection.place(end));
        }
    }
    setPen(painter, m_look.edge, m_look.pixelRatio);
    edges.draw(painter);
}

void Chart3DBox::paintAxis(
    vtkContext2D& painter, const Chart3DProjection& projection, const Point& back, std::size_t axis)
{
    const float ratio = m_look.pixelRatio;
    const Edge edge = edgeOf(projection, back, axis);
    if (edge.length < leastLength * ratio) {
        return; // seen from its end
    }
    const auto at = [&](float place) {
        Point point = edge.begin;
        point[axis] = place;
        const Chart3DProjection::Place onScreen = projection.place(point);
        return vtkVector2f(onScreen.x, onScreen.y);
    };

    painter.ApplyTextProp(m_labelText);
    const std::vector<Chart3DAxis::Tick>& ticks = m_axes[axis].ticks();
    vtkVector2f largest(0.0F, 0.0F);
    for (const Chart3DAxis::Tick& tick : ticks) {
        const vtkVector2f size = sizeOf(painter, tick.label);
        largest = {std::max(largest[0], size[0]), std::max(largest[1], size[1])};
    }
    const float spacing =
        ticks.size() > 1 ? edge.length * (ticks[1].place - ticks[0].place) : edge.length;
    const std::size_t stride = strideFor(largest, edge.direction, spacing, gap * ratio);
    const float fromEdge = (tickLength + gap) * ratio;

    Segments marks;
    for (std::size_t i = 0; i < ticks.size(); ++i) {
        const vtkVector2f place = at(ticks[i].place);
        const vtkVector2f tip = place + edge.outward * (tickLength * ratio);
        marks.add({place[0], place[1], 0.0F}, {tip[0], tip[1], 0.0F});
        if (i % stride == 0) {
            const vtkVector2f middle = beside(
                place + edge.outward * fromEdge, sizeOf(painter, ticks[i].label), edge.outward);
            painter.DrawString(middle[0], middle[1], ticks[i].label);
        }
    }
    setPen(painter, m_look.edge, ratio);
    marks.draw(painter);

    // Along the edge and never upside down.
    float degrees = std::atan2(edge.direction[1], edge.direction[0]) * 180.0F / std::acos(-1.0F);
    if (degrees > 90.0F) {
        degrees -= 180.0F;
    } else if (degrees <= -90.0F) {
        degrees += 180.0F;
    }
    m_titleText->SetOrientation(0.0);
    painter.ApplyTextProp(m_titleText);
    const std::string title =
        shortened(painter, m_axes[axis].title(), std::max(edge.length, leastTitle * ratio));
    const vtkVector2f size = sizeOf(painter, title);
    const float distance =
        fromEdge + reach(largest, edge.outward) + 2.0F * gap * ratio + size[1] / 2.0F;
    const vtkVector2f onAxis = at(0.0F);
    vtkVector2f middle = onAxis + edge.outward * distance;
    // Of an axis that is not in sight, the title is not to be either.
    if (projection.contains(onAxis[0], onAxis[1])) {
        middle = movedInto(projection.area(), middle, size, edge.direction);
    }
    m_titleText->SetOrientation(degrees);
    painter.ApplyTextProp(m_titleText);
    painter.DrawString(middle[0], middle[1], title);
}

Chart3DBox::Edge Chart3DBox::edgeOf(
    const Chart3DProjection& projection, const Point& back, std::size_t axis)
{
    // Two of the four edges along an axis are at the outside of the picture: those between a face in front and one
    // behind. X and Y are read below the box, Z to the left of it.
    const std::size_t second = (axis + 1) % 3;
    const std::size_t third = (axis + 2) % 3;
    const auto edgeWith = [&](float a, float b) {
        Edge edge{};
        edge.begin[axis] = -half;
        edge.begin[second] = a;
        edge.begin[third] = b;
        edge.end = edge.begin;
        edge.end[axis] = half;
        return edge;
    };
    const auto middleOf = [&](const Edge& edge) {
        Point middle = edge.begin;
        middle[axis] = 0.0F;
        const Chart3DProjection::Place place = projection.place(middle);
        return vtkVector2f(place.x, place.y);
    };
    Edge edge = edgeWith(-back[second], back[third]);
    const Edge other = edgeWith(back[second], -back[third]);
    const vtkVector2f first = middleOf(edge);
    const vtkVector2f last = middleOf(other);
    const bool isOtherBetter = axis == 2 ? last[0] < first[0] : last[1] < first[1];
    if (isOtherBetter) {
        edge = other;
    }
    const Chart3DProjection::Place begin = projection.place(edge.begin);
    const Chart3DProjection::Place end = projection.place(edge.end);
    const vtkVector2f along(end.x - begin.x, end.y - begin.y);
    edge.length = std::hypot(along[0], along[1]);
    if (edge.length > 0.0F) {
        edge.direction = along * (1.0F / edge.length);
        edge.outward = {-edge.direction[1], edge.direction[0]};
        const Chart3DProjection::Place center = projection.place(0.0F, 0.0F, 0.0F);
        const vtkVector2f away = middleOf(edge) - vtkVector2f(center.x, center.y);
        if (away.Dot(edge.outward) < 0.0F) {
            edge.outward = edge.outward * -1.0F;
        }
    }
    return edge;
}

} // namespace analyzer
