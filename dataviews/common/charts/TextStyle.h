#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <array>
#include <string>

class vtkTextProperty;

/// How a text looks: a copy of the family, size, bold, italic, shadow and color of a VTK text property, to be changed
/// and written to that or another one. A value without a tie to either.
class DATAVIEWS_CHARTS_EXPORT TextStyle
{
public:
    /// Red, green and blue, each from 0 to 1.
    using Color = std::array<double, 3>;

    explicit TextStyle(vtkTextProperty& source);
    TextStyle(const TextStyle&) = default;
    TextStyle(TextStyle&&) = default;
    TextStyle& operator=(const TextStyle&) = default;
    TextStyle& operator=(TextStyle&&) = default;
    virtual ~TextStyle();

    /// Leaves what is no part of a style, such as justification and opacity, as it is.
    void writeTo(vtkTextProperty& target) const;

    /// VTK's name of the font family.
    [[nodiscard]] const std::string& family() const { return m_family; }

    /// In points.
    [[nodiscard]] int size() const { return m_size; }

    [[nodiscard]] bool isBold() const { return m_bold; }

    [[nodiscard]] bool isItalic() const { return m_italic; }

    void setItalic(bool italic) { m_italic = italic; }

    [[nodiscard]] bool hasShadow() const { return m_shadow; }

    void setShadow(bool shadow) { m_shadow = shadow; }

    [[nodiscard]] const Color& color() const { return m_color; }

    void setColor(const Color& color) { m_color = color; }

private:
    std::string m_family;
    std::string m_fontFile; ///< of the family "File"
    int m_size;
    bool m_bold;
    bool m_italic;
    bool m_shadow;
    Color m_color;
};
