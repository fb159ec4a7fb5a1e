#pragma once

#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/ImageTableView.h>

#include <dataviews/platform/data/RowBitmap.h>
#include <dataviews/platform/pipeline/FilteredTableSource.h>
#include <dataviews/platform/selection/SelectionModel.h>

#include <QObject>
#include <QWidget>

#include <vtkNew.h>

#include <boost/function.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class ImageFileLoaderInterface;
class QImageTableView;

/// An image matrix over a study of its own, in a window, and the clock of its GUI thread.
class ImageMatrixWindow : public QObject
{
public:
    using Paths = std::vector<std::string>;

    /// A case for each of \p paths, laid out row by row in \p columns columns.
    [[nodiscard]] static std::unique_ptr<ImageMatrixWindow> ofPictures(
        const Paths& paths, int columns, const boost::shared_ptr<ImageFileLoaderInterface>& loader);

    /// Opens the study of ofPictures(), for ofOpenStudy().
    static void openStudyOfPictures(const Paths& paths, int columns);

    /// A matrix over the variables "row 0" and "column" of the open study, which is closed with it.
    [[nodiscard]] static std::unique_ptr<ImageMatrixWindow> ofOpenStudy(
        const boost::shared_ptr<ImageFileLoaderInterface>& loader);

    /// \p caseCount cases, each somewhere in a grid of \p side rows and columns; one in a hundred has a picture. There
    /// are two variables for the rows, "row 0" and "row 1".
    [[nodiscard]] static std::unique_ptr<ImageMatrixWindow> ofRandomCases(
        std::int64_t caseCount,
        int side,
        const Paths& paths,
        const boost::shared_ptr<ImageFileLoaderInterface>& loader);

    ImageMatrixWindow(const ImageMatrixWindow&) = delete;
    ImageMatrixWindow& operator=(const ImageMatrixWindow&) = delete;
    ~ImageMatrixWindow() override;

    /// Shows the window, with room for just \p rows rows and \p columns columns, and returns when they are painted.
    void show(int rows, int columns);

    /// Shows the window with \p size pixels and returns when it is painted for the first time, whatever of it is there.
    void showAtOnce(const QSize& size);

    /// How long something took, in milliseconds.
    struct Time
    {
        double wall;
        double busy; ///< of the processor, which others use too
    };

    /// Runs \p change and the events that are there, and paints what that makes necessary.
    Time paintFrame(const boost::function<void()>& change);

    /// Runs \p change, and then the event loop until everything visible is painted, pictures included.
    void paintAfter(const boost::function<void()>& change);

    /// paintAfter() the row \p row was scrolled to the upper edge.
    void scrollToRow(int row);

    /// The longest time since the last call in which the GUI thread took no events, in milliseconds.
    [[nodiscard]] double takeLongestTurnMs();

    [[nodiscard]] bool isLoading() const { return m_view->isLoading(); }

    [[nodiscard]] QImageTableView& grid() const { return m_view->grid(); }

    [[nodiscard]] ImageTableView& view() const { return *m_view; }

    [[nodiscard]] ImageMatrixViewProperties& properties() const { return *m_properties; }

    [[nodiscard]] SelectionModel& master() const { return *m_master; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Of the open study, which is closed in the end.
    explicit ImageMatrixWindow(const boost::shared_ptr<ImageFileLoaderInterface>& loader);

    Time runTurn(const boost::function<void()>& turn);

    RowBitmap m_allCases;
    vtkNew<FilteredTableSource> m_source;
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    boost::shared_ptr<ImageMatrixViewProperties> m_properties =
        boost::make_shared<ImageMatrixViewProperties>();
    QWidget m_window;
    std::unique_ptr<ImageTableView> m_view;
    bool m_isPainted = false;
    double m_longestTurnMs = 0.0;
};
