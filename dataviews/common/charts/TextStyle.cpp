#include <dataviews/common/charts/TextStyle.h>

#include <vtkTextProperty.h>

TextStyle::TextStyle(vtkTextProperty& source)
    : m_family(source.GetFontFamilyAsString())
    , m_fontFile(source.GetFontFile() != nullptr ? source.GetFontFile() : "")
    , m_size(source.GetFontSize())
    , m_bold(source.GetBold() != 0)
    , m_italic(source.GetItalic() != 0)
    , m_shadow(source.GetShadow() != 0)
    , m_color{source.GetColor()[0], source.GetColor()[1], source.GetColor()[2]}
{}

TextStyle::~TextStyle() = default;

void TextStyle::writeTo(vtkTextProperty& target) const
{
    if (!m_fontFile.empty()) {
        target.SetFontFile(m_fontFile.c_str());
    }
    target.SetFontFamilyAsString(m_family.c_str());
    target.SetFontSize(m_size);
    target.SetBold(m_bold ? 1 : 0);
    target.SetItalic(m_italic ? 1 : 0);
    target.SetShadow(m_shadow ? 1 : 0);
    target.SetColor(m_color[0], m_color[1], m_color[2]);
}
