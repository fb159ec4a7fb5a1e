#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>

#include <benchmarks/walk/WalkStudy.h>

namespace {

constexpr std::size_t pictureCount = 400;
constexpr int realColumns = 8;

void append(std::string& line, double number)
{
    constexpr int digits = 7;
    std::array<char, 32> text{};
    const auto end = std::to_chars(
        text.data(), text.data() + text.size(), number, std::chars_format::general, digits);
    line.append(text.data(), end.ptr);
    line += ',';
}

} // namespace

WalkStudy::WalkStudy(std::size_t caseCount)
    : m_images(pictureCount, QSize(1024, 768), "jpg")
{
    const QFileInfo firstPicture(QString::fromStdString(m_images.paths().front()));
    m_path = firstPicture.dir().filePath(QStringLiteral("walk.csv"));
    std::ofstream file(m_path.toStdString(), std::ios::binary);
    file << "Step,Level,v0,v1,v2,v3,v4,v5,v6,v7,Material,FILE\n";
    std::mt19937 random(9);
    std::normal_distribution<double> noise;
    const char* const materials[] = {
        "steel", "oak", "glass", "brick", "copper", "concrete", "paper", "cork"};
    std::string line;
    for (std::size_t i = 0; i < caseCount; ++i) {
        line.clear();
        line += std::to_string(i % 20) + ',' + std::to_string(i / 20 % 20) + ',';
        const double shared = noise(random);
        for (int column = 0; column < realColumns; ++column) {
            const double value = column * shared + noise(random);
            if (column == 3 && i % 50 == 7) {
                line += ','; // a missing value
            } else {
                append(line, column == 5 ? std::exp(value / 4) : value);
            }
        }
        line += materials[random() % std::size(materials)];
        line += ',';
        if (i < pictureCount) {
            line += QFileInfo(QString::fromStdString(m_images.paths()[i])).fileName().toStdString();
        }
        line += '\n';
        file << line;
    }
    file.close();
    if (!file) {
        throw std::runtime_error("The study cannot be written.");
    }
}
