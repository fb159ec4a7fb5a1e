// The pictures of a small study in a grid: its rows and columns stand for the values of two variables.

#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageLoader.h>
#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/ImageTableView.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/selection/SelectionModel.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QWidget>

#include <vtkDoubleArray.h>
#include <vtkNew.h>

#include <boost/make_shared.hpp>

#include <string>

namespace {

constexpr int widths = 6;
constexpr int heights = 5;

void addVariable(Project& project, const char* name, int divisor, int modulus)
{
    vtkNew<vtkDoubleArray> column;
    column->SetName(name);
    for (int i = 0; i < widths * heights; ++i) {
        column->InsertNextValue(i / divisor % modulus + 1);
    }
    project.addVariable(column.Get(), Variable::Input);
}

/// A picture of an ellipse for each width and height.
void fillProject(Project& project, const QTemporaryDir& folder)
{
    project.setCaseCount(std::size_t{widths} * heights);
    addVariable(project, "Width", 1, widths);
    addVariable(project, "Height", widths, heights);
    for (int i = 0; i < widths * heights; ++i) {
        QImage picture(600, 600, QImage::Format_RGB32);
        picture.fill(Qt::white);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(QColor(0, 114, 178));
        painter.drawEllipse(
            QPoint(300, 300), 45 * (i % widths + 1), 55 * (i / widths % heights + 1));
        painter.end();
        const QString file = folder.filePath(QString::number(i) + QStringLiteral(".png"));
        picture.save(file);
        project.addAuxFile(static_cast<std::size_t>(i), file.toStdString());
    }
}

} // namespace

int main(int argc, char** argv)
{
    QApplication::setApplicationName(QStringLiteral("Image matrix"));
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps); // sharp pictures on fine screens
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    fillProject(Project::project(), folder);

    const auto pipeline = boost::make_shared<DataPipelineManager>(Project::project());
    const auto selection = boost::make_shared<SelectionModel>(); // that all views share
    const auto properties = boost::make_shared<ImageMatrixViewProperties>();
    const AsyncImageCache images;
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    ImageTableView matrix(window, pipeline, selection, images.imageLoader(), properties);
    layout->addWidget(&matrix.widget());
    properties->variablesInLabel()->setValue(Project::project().variables());
    properties->showLabels()->setValue(true);
    properties->zoom()->setValue(10);
    window.resize(1000, 800);
    window.show();
    return QApplication::exec();
}
