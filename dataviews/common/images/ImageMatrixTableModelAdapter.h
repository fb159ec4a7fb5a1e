#pragma once

#include <dataviews/common/images/ImageTableModel.h>
#include <dataviews/common/images/ImagesExport.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QAbstractTableModel>
#include <QHash>
#include <QImage>
#include <QSize>

#include <boost/shared_ptr.hpp>

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

class AsyncImageLoaderInterface;
class ImageDecorator;
class ImageFileLoaderInterface;
class ImageMatrixViewProperties;
class LabelMaker;

/// Shows an ImageTableModel to Qt's views: an image, a text and a tool tip for each cell.
class DATAVIEWS_IMAGES_EXPORT ImageMatrixTableModelAdapter : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// What can be seen in a cell.
    enum class State
    {
        NoCases, ///< no case belongs to it
        NoImages, ///< cases, but no image of theirs
        Loading, ///< the picture is not there yet
        Unreadable, ///< there will be no picture; the tool tip says why if the loader knows
        Shown
    };

    /// \p loader gives pictures at the size in which they are shown. If it is an AsyncImageLoaderInterface too, it is
    /// asked as such, with the size of setImageSize(), and cells change as their pictures arrive.
    ImageMatrixTableModelAdapter(
        boost::shared_ptr<ImageTableModel> model,
        boost::shared_ptr<ImageFileLoaderInterface> loader,
        boost::shared_ptr<ImageMatrixViewProperties> properties,
        boost::shared_ptr<LabelMaker> labelMaker,
        boost::shared_ptr<ImageDecorator> decorator,
        QObject* parent = nullptr);
    ImageMatrixTableModelAdapter(const ImageMatrixTableModelAdapter&) = delete;
    ImageMatrixTableModelAdapter& operator=(const ImageMatrixTableModelAdapter&) = delete;
    ~ImageMatrixTableModelAdapter() override;

    [[nodiscard]] int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] QVariant data(
        const QModelIndex& index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// For an asynchronous loader: the box of the images, in device-independent pixels, and the device pixels in the
    /// side of one of these.
    void setImageSize(const QSize& size, double devicePixelRatio);

    /// For an asynchronous loader: the cells on the screen, most important first. What else was asked for need not be
    /// decoded any more.
    void setVisibleCells(const std::vector<ImageTableModel::Cell>& cells);

    /// For an asynchronous loader: the cells that may be on the screen next, most likely first.
    void prefetchCells(const std::vector<ImageTableModel::Cell>& cells);

    [[nodiscard]] State state(const QModelIndex& index) const;

    /// Whether the cell stands for several images.
    [[nodiscard]] bool isStack(const QModelIndex& index) const;

    /// While a cell is loading: its picture as it was shown last, at another size; null if it never was.
    [[nodiscard]] QImage formerPicture(const QModelIndex& index) const;

    /// The text of the first cell that has an image, for whose height all cells make room; empty with labels off.
    [[nodiscard]] QString labelText() const;

    /// The texts have changed: tells views.
    void labelsChanged();

private:
    /// From an asynchronous loader.
    struct ShownPicture
    {
        qint64 source = 0; ///< the key of the loader's picture
        QImage plain;
        QImage marked; ///< for cells that stand for several; null until it is needed
    };

    [[nodiscard]] static ImageTableModel::Cell cellOf(const QModelIndex& index);
    [[nodiscard]] const AuxFileImageData* firstImage(const ImageTableModel::Cell& cell) const;
    [[nodiscard]] std::vector<std::string> firstPaths(
        const std::vector<ImageTableModel::Cell>& cells) const;
    [[nodiscard]] boost::shared_ptr<QImage> picture(
        const std::string& path, const ImageTableModel::Cell& cell) const;
    [[nodiscard]] QVariant decoration(const ImageTableModel::Cell& cell) const;
    [[nodiscard]] QString label(const AuxFileImageData& image) const;
    [[nodiscard]] QString toolTip(const ImageTableModel::Cell& cell) const;
    [[nodiscard]] QString headerText(int section, Qt::Orientation orientation, int role) const;
    void modelChanged();
    void imagesChanged();
    void imageArrived(const std::string& path);

    boost::shared_ptr<ImageTableModel> m_model;
    boost::shared_ptr<ImageFileLoaderInterface> m_loader;
    boost::shared_ptr<AsyncImageLoaderInterface> m_asyncLoader; ///< m_loader, or empty
    boost::shared_ptr<ImageMatrixViewProperties> m_properties;
    boost::shared_ptr<LabelMaker> m_labelMaker;
    boost::shared_ptr<ImageDecorator> m_decorator;
    QSize m_size; ///< of pictures from an asynchronous loader, in device pixels
    double m_devicePixelRatio = 1.0;
    mutable std::optional<QString> m_labelText;
    mutable std::unordered_map<std::string, std::vector<ImageTableModel::Cell>> m_awaited;
    mutable std::unordered_map<std::string, ShownPicture> m_lastPictures; ///< of what is visible
    SignalConnectionCollection m_connections;
};
