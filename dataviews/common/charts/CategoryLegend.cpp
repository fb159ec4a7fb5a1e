#include <dataviews/common/charts/CategoryLegend.h>

#include <vtkBrush.h>
#include <vtkChartXY.h>
#include <vtkContext2D.h>
#include <vtkObjectFactory.h>
#include <vtkPen.h>
#include <vtkTextProperty.h>
#include <vtkVector.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

/// What all letters fit in, whichever a name has.
constexpr char tallText[] = "Tgyf";

/// As tall, but for what hangs below the line.
constexpr char textOnLine[] = "The";

bool beginsCharacter(char byte)
{
    constexpr unsigned markMask = 0xC0;
    constexpr unsigned continuationMark = 0x80;
    return (static_cast<unsigned char>(byte) & markMask) != continuationMark;
}

/// \p name on one line and with at most CategoryLegend::longestName characters.
std::string forDisplay(std::string name)
{
    constexpr char firstPrintable = ' ';
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c >= 0 && c < firstPrintable; }, ' ');
    if (std::count_if(name.begin(), name.end(), beginsCharacter) <= CategoryLegend::longestName) {
        return name;
    }
    int characters = 0;
    const auto cut = std::find_if(name.begin(), name.end(), [&characters](char c) {
        return beginsCharacter(c) && ++characters == CategoryLegend::longestName;
    });
    name.erase(cut, name.end());
    while (!name.empty() && name.back() == ' ') {
        name.pop_back();
    }
    return name + "…";
}

vtkVector2f sizeOf(vtkContext2D& painter, const std::string& text)
{
    float bounds[4] = {0.0F, 0.0F, 0.0F, 0.0F};
    painter.ComputeStringBounds(text, bounds);
    return {bounds[2], bounds[3]};
}

} // namespace

vtkStandardNewMacro(CategoryLegend)

    CategoryLegend::CategoryLegend() = default;

CategoryLegend::~CategoryLegend() = default;

void CategoryLegend::setTitle(const std::string& title)
{
    m_title = forDisplay(title);
    Modified();
}

void CategoryLegend::setEntries(const std::vector<Entry>& entries)
{
    m_entries.clear();
    for (const Entry& entry : entries) {
        m_entries.push_back({forDisplay(entry.name), entry.color});
    }
    Modified();
}

void CategoryLegend::setMarkerSize(float size)
{
    m_markerSize = size;
    Modified();
}

bool CategoryLegend::GetVisible()
{
    return !m_entries.empty() && Superclass::GetVisible();
}

void CategoryLegend::Update()
{
    // Not the base's, which lists the plots of the chart and does not ask whether there is one.
    PlotTime.Modified();
}

bool CategoryLegend::Paint(vtkContext2D* painter)
{
    if (!GetVisible()) {
        return true;
    }
    GetBoundingRect(painter);

    painter->ApplyPen(Pen);
    painter->ApplyBrush(Brush);
    painter->DrawRect(Rect.GetX(), Rect.GetY(), Rect.GetWidth(), Rect.GetHeight());

    const auto padding = static_cast<float>(Padding);
    const float top = Rect.GetY() + Rect.GetHeight() - padding;
    float x = Rect.GetX() + padding;
    if (!m_title.empty()) {
        applyTitleProperties(*painter);
        painter->DrawString(x, top - m_layout.titleHeight + padding, m_title);
    }

    painter->ApplyTextProp(LabelProperties);
    painter->GetPen()->SetLineType(vtkPen::NO_PEN);
    const float onLine = sizeOf(*painter, textOnLine)[1];
    const float textHeight = sizeOf(*painter, tallText)[1];
    const float radius = 0.5F * m_markerSize;
    std::size_t next = 0;
    for (const float width : m_layout.columnWidths) {
        float bottom = top - m_layout.titleHeight - m_layout.rowHeight;
        for (std::size_t row = 0; row < m_layout.rows && next < m_entries.size(); ++row) {
            const Entry& entry = m_entries[next++];
            painter->GetBrush()->SetColor(entry.color[0], entry.color[1], entry.color[2]);
            painter->DrawEllipse(x + radius, bottom + 0.5F * m_layout.rowHeight, radius, radius);
            // VTK puts the lowest pixel of a text at the place given, so that letters that hang below the line would
            // lift the others.
            const float hanging = sizeOf(*painter, entry.name + "T")[1] - onLine;
            const float descent = textHeight - onLine;
            const float inRow = 0.5F * (m_layout.rowHeight - textHeight);
            painter->DrawString(
                x + m_markerSize + padding, bottom + inRow + descent - hanging, entry.name);
            bottom -= m_layout.rowHeight + padding;
        }
        x += width + 2.0F * padding;
    }
    return true;
}

vtkRectf CategoryLegend::GetBoundingRect(vtkContext2D* painter)
{
    if (!CacheBounds || RectTime < GetMTime() || RectTime < PlotTime
        || RectTime < LabelProperties->GetMTime()) {
        measure(*painter);
        RectTime.Modified();
    }
    return Rect;
}

void CategoryLegend::measure(vtkContext2D& painter)
{
    const auto padding = static_cast<float>(Padding);
    m_layout = Layout();
    float titleWidth = 0.0F;
    if (!m_title.empty()) {
        applyTitleProperties(painter);
        titleWidth = sizeOf(painter, m_title)[0];
        m_layout.titleHeight = sizeOf(painter, tallText)[1] + padding;
    }

    painter.ApplyTextProp(LabelProperties);
    m_layout.rowHeight = std::max(sizeOf(painter, tallText)[1], m_markerSize);
    const float room = availableHeight() - m_layout.titleHeight - padding;
    const float rowsInRoom = std::floor(room / (m_layout.rowHeight + padding));
    const std::size_t count = m_entries.size();
    const std::size_t mostRows =
        rowsInRoom >= static_cast<float>(count) ? count : std::size_t(std::max(rowsInRoom, 1.0F));
    const std::size_t columns = count == 0 ? 0 : (count + mostRows - 1) / mostRows;
    // As even as can be, and each column full but the last.
    m_layout.rows = columns == 0 ? 0 : (count + columns - 1) / columns;

    for (std::size_t i = 0; i < count; ++i) {
        if (i % m_layout.rows == 0) {
            m_layout.columnWidths.push_back(0.0F);
        }
        float& width = m_layout.columnWidths.back();
        width = std::max(width, m_markerSize + padding + sizeOf(painter, m_entries[i].name)[0]);
    }
    float width = -2.0F * padding;
    for (const float column : m_layout.columnWidths) {
        width += column + 2.0F * padding;
    }

    const float* point = GetPoint();
    const float height =
        m_layout.titleHeight + static_cast<float>(m_layout.rows) * (m_layout.rowHeight + padding);
    Rect = vtkRectf(
        std::floor(point[0]),
        std::floor(point[1]),
        std::ceil(std::max(width, titleWidth) + 2.0F * padding),
        std::ceil(height + padding));
}

void CategoryLegend::applyTitleProperties(vtkContext2D& painter)
{
    m_titleProperties->ShallowCopy(LabelProperties);
    m_titleProperties->BoldOn();
    painter.ApplyTextProp(m_titleProperties);
}

float CategoryLegend::availableHeight()
{
    constexpr float unlimited = 1e6F;
    auto* const chart = vtkChartXY::SafeDownCast(GetChart());
    const float height = chart == nullptr ? 0.0F : chart->GetSize().GetHeight();
    // Before its first layout the chart has no size.
    return height > 0.0F ? height - 2.0F * static_cast<float>(chart->GetHiddenAxisBorder())
                         : unlimited;
}
