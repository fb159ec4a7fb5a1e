#pragma once

#include <QColor>
#include <QDateTime>
#include <QFile>
#include <QImage>
#include <QSize>
#include <QString>

#include <gtest/gtest.h>

#include <string>

/// Files of pictures for the tests of thumbnails.
namespace pictureFiles {

constexpr int longAgo = 1'500'000'000; ///< seconds since 1970

/// Gives \p fileName the time stamp of \p seconds since 1970.
inline void setModified(const QString& fileName, qint64 seconds)
{
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(
        file.setFileTime(QDateTime::fromSecsSinceEpoch(seconds), QFile::FileModificationTime));
}

/// A picture of one color.
inline QImage plainPicture(const QSize& size, const QColor& color)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

/// Writes \p contents to \p fileName, as if long ago.
inline std::string write(const QString& fileName, const QByteArray& contents)
{
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(contents), contents.size());
    file.close();
    setModified(fileName, longAgo);
    return fileName.toStdString();
}

/// Saves \p image as \p fileName, as if long ago.
inline std::string save(const QString& fileName, const QImage& image)
{
    EXPECT_TRUE(image.save(fileName, nullptr, 95));
    setModified(fileName, longAgo);
    return fileName.toStdString();
}

} // namespace pictureFiles
