#include <analyzer/views/Chart3DColors.h>

#include <cmath>

namespace analyzer {

namespace {

// Okabe and Ito's blues for points, vermilion and yellow for selected ones, as in the charts over two variables.
constexpr ColorBytes pointColor = {0, 114, 178};
constexpr ColorBytes pointColorOnDark = {86, 180, 233};
constexpr ColorBytes selectedColor = {213, 94, 0};
constexpr ColorBytes selectedColorOnDark = {240, 228, 66};

constexpr double edgeShare = 0.5;
constexpr double gridShare = 0.12;

} // namespace

Chart3DColors::Chart3DColors(const QPalette& palette)
    : background(palette.color(QPalette::Base))
    , text(palette.color(QPalette::Text))
    , isDark(background.lightness() < text.lightness())
    , edge(mixed(edgeShare))
    , grid(mixed(gridShare))
    , point(isDark ? pointColorOnDark : pointColor)
{}

SelectionRing::Colors Chart3DColors::selection(bool isFilled) const
{
    SelectionRing::Colors colors{bytes(text), bytes(background), {}};
    if (isFilled) {
        colors.fill = isDark ? selectedColorOnDark : selectedColor;
    }
    return colors;
}

ColorBytes Chart3DColors::mixed(double share) const
{
    const auto channel = [share](int from, int to) {
        return static_cast<unsigned char>(std::lround(from + (to - from) * share));
    };
    return {
        channel(background.red(), text.red()),
        channel(background.green(), text.green()),
        channel(background.blue(), text.blue())};
}

ColorBytes Chart3DColors::bytes(const QColor& color)
{
    return {
        static_cast<unsigned char>(color.red()),
        static_cast<unsigned char>(color.green()),
        static_cast<unsigned char>(color.blue())};
}

} // namespace analyzer
