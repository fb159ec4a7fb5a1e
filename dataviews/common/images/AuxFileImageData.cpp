#include <dataviews/common/images/AuxFileImageData.h>

#include <dataviews/platform/data/AuxFile.h>

#include <utility>

AuxFileImageData::AuxFileImageData(WeakPtr<AuxFile> auxFile, const Record& record)
    : m_auxFile(std::move(auxFile))
    , m_record(record)
{}

std::string AuxFileImageData::filePath() const
{
    const boost::shared_ptr<AuxFile> file = m_auxFile.lock();
    return file ? file->filePath() : std::string();
}
