#include <analyzer/views/Scatter3DPlot.h>

#include <vtkBrush.h>
#include <vtkContext2D.h>
#include <vtkContextDevice2D.h>
#include <vtkDataArray.h>
#include <vtkFloatArray.h>
#include <vtkIdTypeArray.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkOpenGLContextDevice2D.h>
#include <vtkOpenGLRenderWindow.h>
#include <vtkPen.h>
#include <vtkPoints2D.h>
#include <vtkScalarsToColors.h>
#include <vtkTable.h>
#include <vtkTransform2D.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <utility>
#include <vector>

namespace analyzer {

namespace {

constexpr std::size_t coarseCount = 100000; ///< points that are painted in passing
constexpr std::size_t coarseMarkCount = 50000; ///< likewise of marks
constexpr std::chrono::milliseconds slice(25); ///< of drawing on
constexpr std::size_t channelCount = 4;
constexpr vtkIdType manySelected = 20000; ///< marks that are not all painted
constexpr vtkIdType manyMarks = 2000; ///< that are painted faster as a picture

std::array<int, 4> pixels(const vtkRectf& rect)
{
    return {
        static_cast<int>(std::floor(rect.GetX())),
        static_cast<int>(std::floor(rect.GetY())),
        static_cast<int>(std::ceil(rect.GetWidth())),
        static_cast<int>(std::ceil(rect.GetHeight()))};
}

} // namespace

vtkStandardNewMacro(Scatter3DPlot)

    Scatter3DPlot::Scatter3DPlot()
{
    Points = vtkPoints2D::New(); // the base's to delete
}

Scatter3DPlot::~Scatter3DPlot() = default;

void Scatter3DPlot::setPoints(Chart3DBox::Axes axes, Scatter3DPoints::Columns columns)
{
    m_box.setAxes(std::move(axes));
    m_points.setColumns(std::move(columns));
}

void Scatter3DPlot::setView(const Chart3DCamera& camera, const vtkRectf& area)
{
    m_projection = Chart3DProjection(camera, area, m_box.margin());
}

void Scatter3DPlot::Update()
{
    // Not the base's, which would make points of two columns.
    if (GetVisible()) {
        mapColors();
    }
}

bool Scatter3DPlot::Paint(vtkContext2D* painter)
{
    if (!GetVisible()) {
        return false;
    }
    updatePoints();

    // The chart has set both for points within its axes.
    const vtkNew<vtkTransform2D> identity;
    painter->PushMatrix();
    painter->SetTransform(identity);
    std::array<int, 4> clip = pixels(m_projection.area());
    painter->GetDevice()->SetClipping(clip.data());
    m_box.paint(*painter, m_projection);

    auto* const device = vtkOpenGLContextDevice2D::SafeDownCast(painter->GetDevice());
    bool isPainted = true;
    if (device != nullptr && Selection != nullptr && Selection->GetNumberOfValues() > manyMarks) {
        drawMarks(!m_isPrompt);
        // Nobody would see the points behind filled marks of their own.
        const bool areHidden = ring()->coversPoints() && m_marks.isWhole() && areAllMarked();
        isPainted = areHidden || paintUnmarked(painter);
        m_marks.paint(*device, m_projection.area());
    } else {
        m_marks.stopRefining();
        const vtkSmartPointer<vtkIdTypeArray> all = Selection;
        const vtkSmartPointer<vtkIdTypeArray> visible = visibleSelection();
        Selection = visible;
        isPainted = paintShapes(painter);
        Selection = all;
    }
    painter->PopMatrix();
    return isPainted;
}

void Scatter3DPlot::GetBounds(double bounds[4])
{
    bounds[0] = 0.0;
    bounds[1] = 1.0;
    bounds[2] = 0.0;
    bounds[3] = 1.0;
}

bool Scatter3DPlot::Hit(const vtkContextMouseEvent& /*mouse*/)
{
    return false;
}

bool Scatter3DPlot::paintUnmarked(vtkContext2D* painter)
{
    auto* const device = vtkOpenGLContextDevice2D::SafeDownCast(painter->GetDevice());
    drawPicture(device == nullptr || !m_isPrompt);
    if (m_points.count() == 0) {
        return true;
    }
    if (device != nullptr) {
        m_cloud.paint(*device, m_projection.area());
    } else {
        const vtkRectf& area = m_projection.area();
        painter->DrawImage(area.GetX(), area.GetY(), &m_cloud.picture().image());
    }
    return true;
}

void Scatter3DPlot::updatePoints()
{
    m_points.project(m_projection);
    const void* const places = m_points.places().data();
    if (m_shownPlaces == places && m_shownVersion == m_points.version()) {
        return;
    }
    m_shownPlaces = places;
    m_shownVersion = m_points.version();
    // The same memory: a copy takes as long as the projection.
    const vtkNew<vtkFloatArray> coordinates;
    coordinates->SetNumberOfComponents(2);
    constexpr int keepsOwner = 1;
    coordinates->SetArray(
        const_cast<float*>(m_points.places().data()),
        static_cast<vtkIdType>(m_points.places().size()),
        keepsOwner);
    Points->SetData(coordinates);
}

void Scatter3DPlot::mapColors()
{
    vtkTable* table = GetInput();
    vtkDataArray* column = table == nullptr || ScalarVisibility == 0
        ? nullptr
        : vtkDataArray::SafeDownCast(table->GetColumnByName(ColorArrayName.c_str()));
    if (column == nullptr) {
        if (Colors != nullptr) {
            std::exchange(Colors, nullptr)->UnRegister(this);
        }
        m_colorsFrom = 0;
        return;
    }
    if (LookupTable == nullptr) {
        CreateDefaultLookupTable();
    }
    // Times are never given twice, so that the latest tells all of them.
    const vtkMTimeType from =
        std::max({table->GetMTime(), column->GetMTime(), LookupTable->GetMTime()});
    if (Colors != nullptr && from == m_colorsFrom) {
        return;
    }
    if (Colors != nullptr) {
        Colors->UnRegister(this);
    }
    Colors = LookupTable->MapScalars(column, VTK_COLOR_MODE_MAP_SCALARS, -1);
    Colors->Register(this);
    Colors->Delete();
    m_colorsFrom = from;
}

Scatter3DPlot::Drawn Scatter3DPlot::wanted() const
{
    const bool isColored = ScalarVisibility != 0 && Colors != nullptr
        && Colors->GetNumberOfComponents() == static_cast<int>(channelCount)
        && Colors->GetNumberOfTuples() == static_cast<vtkIdType>(m_points.count());
    Drawn drawn;
    drawn.points = m_points.version();
    drawn.stride = m_isCoarse ? coarseStride() : 1;
    drawn.colors = isColored ? m_colorsFrom : 0;
    Pen->GetColor(drawn.plain.data());
    drawn.plain[3] = Pen->GetOpacity();
    drawn.size = MarkerSize;
    const std::array<int, 4> area = pixels(m_projection.area());
    drawn.pixels = {area[2], area[3]};
    return drawn;
}

Scatter3DPicture::Cloud Scatter3DPlot::cloud(const Drawn& drawn) const
{
    return {
        m_points.places().data(),
        m_points.nearness().data(),
        m_points.count(),
        drawn.colors != 0 ? Colors->GetPointer(0) : nullptr,
        drawn.plain,
        drawn.stride};
}

void Scatter3DPlot::drawPicture(bool isWhole)
{
    m_cloud.update(
        wanted(), coarseStride(), isWhole, [this](Scatter3DPicture& picture, const Drawn& drawn) {
            picture.draw(cloud(drawn), drawn.size, drawn.pixels[0], drawn.pixels[1]);
        });
}

void Scatter3DPlot::drawMarks(bool isWhole)
{
    Drawn all = wanted();
    all.stride = 1; // While the mouse is dragged, too.
    // The values and not the time of their change, for plots write into the array without telling.
    const vtkIdType* const rows = Selection->GetPointer(0);
    const auto count = static_cast<std::size_t>(Selection->GetNumberOfValues());
    SelectionRing& mark = *ring();
    const bool isSame = m_marked.size() == count
        && std::equal(m_marked.begin(), m_marked.end(), rows) && m_marksColors == mark.colors();
    if (!isSame) {
        m_marks.forget();
        m_marked.assign(rows, rows + count);
        m_marksColors = mark.colors();
    }
    m_marks.update(
        all,
        (count + coarseMarkCount - 1) / coarseMarkCount,
        isWhole,
        [&](Scatter3DPicture& picture, const Drawn& drawn) {
            m_fewMarked.clear();
            for (std::size_t i = 0; i < count; i += drawn.stride) {
                m_fewMarked.push_back(m_marked[i]);
            }
            picture.drawMarks(
                cloud(drawn),
                {m_fewMarked.data(),
                 m_fewMarked.size(),
                 mark.raster(drawn.size).sprite,
                 !mark.coversPoints()},
                drawn.size,
                drawn.pixels[0],
                drawn.pixels[1]);
        });
}

bool Scatter3DPlot::refine()
{
    const auto startCloud = [this](Scatter3DPicture& picture, const Drawn& drawn) {
        picture.startDrawing(cloud(drawn), drawn.size, drawn.pixels[0], drawn.pixels[1]);
    };
    const auto startMarks = [this](Scatter3DPicture& picture, const Drawn& drawn) {
        SelectionRing& mark = *ring();
        picture.startDrawingMarks(
            cloud(drawn),
            {m_marked.data(),
             m_marked.size(),
             mark.raster(drawn.size).sprite,
             !mark.coversPoints()},
            drawn.size,
            drawn.pixels[0],
            drawn.pixels[1]);
    };
    Drawn all = wanted();
    if (m_cloud.isUnrefined()) {
        return m_cloud.refine(all, Colors, startCloud);
    }
    all.stride = 1;
    return m_marks.isUnrefined() && m_marks.refine(all, Colors, startMarks);
}

bool Scatter3DPlot::areAllMarked() const
{
    // As a selection of everything is written. What else it may be, such as with rows in it twice, does not matter here.
    const auto row = [this](std::size_t i) { return static_cast<std::size_t>(m_marked[i]); };
    if (m_marked.size() != m_points.count()) {
        return false;
    }
    std::size_t i = 0;
    while (i < m_marked.size() && row(i) == i) {
        ++i;
    }
    return i == m_marked.size();
}

bool Scatter3DPlot::Drawn::operator==(const Drawn& other) const
{
    return points == other.points && stride == other.stride && colors == other.colors
        && plain == other.plain && size == other.size && pixels == other.pixels;
}

void Scatter3DPlot::Layer::forget()
{
    m_drawn.reset();
    stopRefining();
}

void Scatter3DPlot::Layer::stopRefining()
{
    m_refining.reset();
    m_isRefiningStarted = false;
    m_colors = nullptr;
}

template <class Draw>
void Scatter3DPlot::Layer::update(
    const Drawn& wanted, std::size_t coarseStride, bool isWhole, const Draw& draw)
{
    const bool isRefined = !isWhole && !(m_drawn == wanted) && wanted.stride != coarseStride;
    if (!isRefined || !(m_refining == wanted)) {
        stopRefining();
    }
    Drawn now = wanted;
    if (isRefined) {
        m_refining = wanted;
        now.stride = coarseStride;
    }
    if (!(m_drawn == now)) {
        m_drawn = now;
        draw(*m_picture, now);
    }
}

template <class Start>
bool Scatter3DPlot::Layer::refine(
    const Drawn& wanted, vtkUnsignedCharArray* colors, const Start& start)
{
    if (!(*m_refining == wanted)) {
        stopRefining(); // to be painted anew, which will ask for it again
        return true;
    }
    if (!std::exchange(m_isRefiningStarted, true)) {
        m_colors = colors;
        start(*m_finer, wanted);
    }
    if (!m_finer->drawMore(Scatter3DPicture::Clock::now() + slice)) {
        return false;
    }
    std::swap(m_picture, m_finer);
    m_textureVersion = 0;
    m_drawn = wanted;
    stopRefining();
    return true;
}

void Scatter3DPlot::Layer::paint(vtkOpenGLContextDevice2D& device, const vtkRectf& area)
{
    if (m_picture->pixels().width() == 0 || m_picture->pixels().height() == 0) {
        return;
    }
    vtkOpenGLRenderWindow& window = *device.GetRenderWindow();
    if (m_textureVersion != m_picture->version() || !m_texture.isIn(window)) {
        m_texture.update(window, m_picture->pixels());
        m_textureVersion = m_picture->version();
    }
    m_texture.draw(
        static_cast<int>(std::lround(area.GetX())), static_cast<int>(std::lround(area.GetY())));
}

std::size_t Scatter3DPlot::coarseStride() const
{
    return std::max<std::size_t>(1, (m_points.count() + coarseCount - 1) / coarseCount);
}

vtkSmartPointer<vtkIdTypeArray> Scatter3DPlot::visibleSelection() const
{
    if (Selection == nullptr || Selection->GetNumberOfValues() <= manySelected) {
        return Selection;
    }
    // Of rings that nearly cover each other, those behind show nothing that the one in front does not.
    const float cell = std::max(1.0F, MarkerSize / 4.0F);
    const vtkRectf& area = m_projection.area();
    const auto columns = static_cast<std::size_t>(area.GetWidth() / cell) + 1;
    const auto lines = static_cast<std::size_t>(area.GetHeight() / cell) + 1;
    std::vector<vtkIdType> front(columns * lines, -1);
    const std::vector<float>& places = m_points.places();
    for (vtkIdType i = 0; i < Selection->GetNumberOfValues(); ++i) {
        const vtkIdType row = Selection->GetValue(i);
        const auto index = static_cast<std::size_t>(row);
        if (index >= m_points.count()
            || !m_projection.contains(places[2 * index], places[2 * index + 1])) {
            continue;
        }
        const auto column = static_cast<std::size_t>((places[2 * index] - area.GetX()) / cell);
        const auto line = static_cast<std::size_t>((places[2 * index + 1] - area.GetY()) / cell);
        vtkIdType& there = front[line * columns + column];
        if (there < 0
            || m_points.nearness()[static_cast<std::size_t>(there)] <= m_points.nearness()[index]) {
            there = row;
        }
    }
    auto visible = vtkSmartPointer<vtkIdTypeArray>::New();
    for (const vtkIdType row : front) {
        if (row >= 0) {
            visible->InsertNextValue(row);
        }
    }
    return visible;
}

} // namespace analyzer
