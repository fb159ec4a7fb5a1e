#pragma once

#include <dataviews/common/images/ImagesExport.h>

#include <dataviews/platform/data/Record.h>
#include <dataviews/platform/data/WeakPtr.h>

#include <string>

class AuxFile;

/// One image of an image view: the file and the case it belongs to.
class DATAVIEWS_IMAGES_EXPORT AuxFileImageData
{
public:
    AuxFileImageData(WeakPtr<AuxFile> auxFile, const Record& record);

    /// Expired once the study is closed; the record is not to be used then.
    [[nodiscard]] const WeakPtr<AuxFile>& auxFile() const { return m_auxFile; }

    [[nodiscard]] const Record& record() const { return m_record; }

    /// The absolute path of the file, UTF-8; empty once it has expired.
    [[nodiscard]] std::string filePath() const;

private:
    WeakPtr<AuxFile> m_auxFile;
    Record m_record;
};
