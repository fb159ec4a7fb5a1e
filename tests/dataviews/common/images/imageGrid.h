#pragma once

#include <dataviews/common/images/AsyncImageLoaderInterface.h>
#include <dataviews/common/images/ImageFileLoaderInterface.h>

#include <dataviews/platform/data/AuxFile.h>
#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QImage>
#include <QUndoStack>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkSmartPointer.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <boost/make_shared.hpp>

#include <map>
#include <set>
#include <string>
#include <vector>

/// Opens a study of twelve cases: x (1, 2, 3) by y (10, 20) by page (0, 1), cases counted in that order, the last
/// digit fastest. Each case has a file "/<case>-front" with the tag "front"; even cases have "/<case>-side" too, with
/// the tag "side". Case 12 has no files.
class ImageStudy
{
public:
    ImageStudy()
    {
        Project study;
        study.setCaseCount(caseCount);
        add(study, "x", [](std::size_t row) { return 1.0 + static_cast<double>(row / 4); });
        add(study, "y", [](std::size_t row) { return row / 2 % 2 == 0 ? 10.0 : 20.0; });
        add(study, "page", [](std::size_t row) { return static_cast<double>(row % 2); });
        study.addTagGroup("Images");
        study.addTag("Images", "front");
        study.addTag("Images", "side");
        for (std::size_t row = 0; row + 1 < caseCount; ++row) {
            addFile(study, row, "front");
            if (row % 2 == 1) {
                addFile(study, row, "side");
            }
        }
        Project::project().replaceStudy(study);
        UndoStack::history().clear();
    }

    ImageStudy(const ImageStudy&) = delete;
    ImageStudy& operator=(const ImageStudy&) = delete;

    ~ImageStudy()
    {
        UndoStack::history().clear();
        Project nothing;
        Project::project().replaceStudy(nothing);
    }

    static constexpr std::size_t caseCount = 12;

private:
    template <class Value>
    static void add(Project& study, const char* name, Value value)
    {
        vtkNew<vtkDoubleArray> column;
        column->SetName(name);
        for (std::size_t row = 0; row < caseCount; ++row) {
            column->InsertNextValue(value(row));
        }
        study.addVariable(column.Get(), Variable::Input);
    }

    static void addFile(Project& study, std::size_t row, const std::string& tag)
    {
        const auto file = study.addAuxFile(row, "/" + std::to_string(row + 1) + "-" + tag);
        study.tagAuxFile(*file, tag, true);
    }
};

/// Gives out the table of the open study.
class StudyTable : public vtkTableAlgorithm
{
public:
    static StudyTable* New();
    vtkTypeMacro(StudyTable, vtkTableAlgorithm) StudyTable(const StudyTable&) = delete;
    StudyTable& operator=(const StudyTable&) = delete;

protected:
    StudyTable() { SetNumberOfInputPorts(0); }

    ~StudyTable() override = default;

    int RequestData(
        vtkInformation* /*request*/,
        vtkInformationVector** /*inputs*/,
        vtkInformationVector* /*outputs*/) override
    {
        GetOutput()->ShallowCopy(&Project::project().table());
        return 1;
    }
};

inline StudyTable* StudyTable::New()
{
    VTK_STANDARD_NEW_BODY(StudyTable);
}

/// A color of its own for each path.
inline QImage pictureOf(const std::string& path, const QSize& size = {40, 20})
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor::fromHsv(static_cast<int>(std::hash<std::string>()(path) % 360), 200, 200));
    return image;
}

/// Paths in missing are no pictures.
class FakeLoader : public ImageFileLoaderInterface
{
public:
    [[nodiscard]] boost::shared_ptr<QImage> image(const std::string& path) const override
    {
        return boost::make_shared<QImage>(missing.count(path) != 0 ? QImage() : pictureOf(path));
    }

    std::set<std::string> missing;
};

/// Finishes pictures when it is told to.
class FakeAsyncLoader
    : public FakeLoader
    , public AsyncImageLoaderInterface
{
public:
    boost::shared_ptr<QImage> request(const std::string& path, const QSize& size) override
    {
        requested[path] = size;
        const auto place = finished.find(path);
        return place != finished.end() && place->second.first == size
            ? boost::make_shared<QImage>(place->second.second)
            : boost::shared_ptr<QImage>();
    }

    void setVisible(const std::vector<std::string>& paths) override { visible = paths; }

    void prefetch(const std::vector<std::string>& paths, const QSize& /*size*/) override
    {
        ahead = paths;
    }

    [[nodiscard]] std::string problem(const std::string& path) const override
    {
        const auto place = problems.find(path);
        return place == problems.end() ? std::string() : place->second;
    }

    void finish(const std::string& path)
    {
        const QSize size = requested[path];
        finished[path] = {size, problem(path).empty() ? pictureOf(path, size) : QImage()};
        emitImageArrived(path);
    }

    std::map<std::string, QSize> requested;
    std::map<std::string, std::pair<QSize, QImage>> finished;
    std::map<std::string, std::string> problems;
    std::vector<std::string> visible;
    std::vector<std::string> ahead;
};
