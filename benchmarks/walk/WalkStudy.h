#pragma once

#include <QString>

#include <cstddef>

#include <benchmarks/images/ImageFiles.h>

/// A generated study on disk, which goes with the object: ten columns of numbers, one of them with gaps, two with few
/// different values, a column of categories, and pictures for the first cases.
class WalkStudy
{
public:
    explicit WalkStudy(std::size_t caseCount);
    WalkStudy(const WalkStudy&) = delete;
    WalkStudy& operator=(const WalkStudy&) = delete;
    ~WalkStudy() = default;

    /// Of its table.
    [[nodiscard]] const QString& path() const { return m_path; }

private:
    ImageFiles m_images;
    QString m_path;
};
