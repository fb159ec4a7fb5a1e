#include <analyzer/views/CaseValuesTable.h>
#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/SelectedImageView.h>
#include <analyzer/views/SelectedImageWidget.h>

#include <dataviews/common/images/ImageCache.h>
#include <dataviews/common/views/DataViewVisitorAbstract.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QEventLoop>
#include <QFile>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QTimer>
#include <QToolButton>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkStringArray.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace analyzer {

namespace {

constexpr int deadlineMs = 30000;

/// Nothing is read in the background as long as this lives.
class HeldBackground
{
public:
    HeldBackground()
    {
        for (int i = QThreadPool::globalInstance()->maxThreadCount(); i > 0; --i) {
            QThreadPool::globalInstance()->start([this] { m_gate.acquire(); });
            ++m_held;
        }
    }

    HeldBackground(const HeldBackground&) = delete;
    HeldBackground& operator=(const HeldBackground&) = delete;

    ~HeldBackground()
    {
        m_gate.release(m_held);
        QThreadPool::globalInstance()->waitForDone();
    }

private:
    QSemaphore m_gate;
    int m_held = 0;
};

/// Case 1 has no image, 2 has red and green, 3 blue, 4 a file that is no image, 5 yellow.
class SelectedImageViewTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_folder.isValid());
        m_project.setCaseCount(5);
        vtkNew<vtkDoubleArray> speed;
        vtkNew<vtkStringArray> note;
        speed->SetName("Speed");
        note->SetName("Note");
        for (const double value : {10.0, 20.0, 30.5, 40.0, 50.0}) {
            speed->InsertNextValue(value);
            note->InsertNextValue(value == 20.0 ? "said \"so\"" : "");
        }
        m_project.addVariable(speed.Get(), Variable::Input);
        m_project.addVariable(note.Get(), Variable::Output);
        m_project.addTagGroup("Images");
        m_project.addTag("Images", "mesh");
        m_project.tagAuxFile(*addImage(1, "red.png", Qt::red), "mesh", true);
        addImage(1, "green.png", Qt::green);
        addImage(2, "blue.png", Qt::blue);
        QFile noImage(path("none.png"));
        ASSERT_TRUE(noImage.open(QIODevice::WriteOnly) && noImage.write("text") > 0);
        m_project.addAuxFile(3, path("none.png").toStdString());
        addImage(4, "yellow.png", Qt::yellow);
        Project::project().replaceStudy(m_project);
        makeView();
    }

    void TearDown() override
    {
        m_view.reset();
        Project nothing;
        Project::project().replaceStudy(nothing);
        UndoStack::history().clear();
    }

    void makeView()
    {
        m_view = boost::make_shared<SelectedImageView>(
            m_pipeline, m_master, boost::make_shared<ImageCache>(), m_hovered);
        m_view->widget().resize(600, 300);
        m_view->widget().show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_view->widget()));
    }

    [[nodiscard]] QString path(const char* name) const
    {
        return m_folder.filePath(QString::fromLatin1(name));
    }

    boost::shared_ptr<AuxFile> addImage(std::size_t row, const char* name, const QColor& color)
    {
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(color);
        EXPECT_TRUE(image.save(path(name)));
        return m_project.addAuxFile(row, path(name).toStdString());
    }

    [[nodiscard]] static WeakPtr<AuxFile> file(unsigned long long caseID, std::size_t number = 0)
    {
        return Project::project().record(caseID)->auxFiles()[number];
    }

    [[nodiscard]] SelectedImageWidget& widget() const { return m_view->imageWidget(); }

    [[nodiscard]] ImageCanvas& canvas() const { return widget().canvas(); }

    void settle()
    {
        QEventLoop loop;
        QTimer deadline;
        deadline.setSingleShot(true);
        QObject::connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
        QObject::connect(&canvas(), &ImageCanvas::zoomChanged, &loop, [&] {
            if (!m_view->isLoading()) {
                loop.quit();
            }
        });
        deadline.start(deadlineMs);
        if (m_view->isLoading()) {
            loop.exec();
        }
        ASSERT_FALSE(m_view->isLoading());
    }

    /// What is said of the image, once it is there: "red.png (mesh), 1 of 4"; of no image the first line.
    std::string shown()
    {
        settle();
        if (widget().placeText().isEmpty()) {
            return canvas().message().section(QLatin1Char('\n'), 0, 0).toStdString();
        }
        return (widget().fileText() + QStringLiteral(", ") + widget().placeText()).toStdString();
    }

    void press(Qt::Key key) { QTest::keyClick(&canvas(), key); }

    QTemporaryDir m_folder;
    Project m_project;
    DataPipelineManager m_pipeline{Project::project()};
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    boost::shared_ptr<HoveredCase> m_hovered = boost::make_shared<HoveredCase>();
    boost::shared_ptr<SelectedImageView> m_view;
};

} // namespace

TEST_F(SelectedImageViewTest, WalksThroughTheImagesOfTheSelectedCasesByKeysAndButtons)
{
    m_master->setSelection({5, 1, 2, 3});
    const auto click = [](QToolButton& button) {
        return [&button] { QTest::mouseClick(&button, Qt::LeftButton); };
    };
    const auto key = [this](Qt::Key code) { return [this, code] { press(code); }; };

    const struct
    {
        std::function<void()> step;
        const char* shown;
        QColor color;
    } walk[] = {
        {[] {}, "red.png (mesh), 1 of 4", Qt::red},
        {key(Qt::Key_Left), "red.png (mesh), 1 of 4", Qt::red},
        {key(Qt::Key_Right), "green.png, 2 of 4", Qt::green},
        {key(Qt::Key_PageDown), "blue.png, 3 of 4", Qt::blue},
        {click(widget().nextButton()), "yellow.png, 4 of 4", Qt::yellow},
        {key(Qt::Key_Right), "yellow.png, 4 of 4", Qt::yellow},
        {click(widget().previousButton()), "blue.png, 3 of 4", Qt::blue},
        {key(Qt::Key_PageUp), "green.png, 2 of 4", Qt::green},
        {key(Qt::Key_End), "yellow.png, 4 of 4", Qt::yellow},
        {key(Qt::Key_Home), "red.png (mesh), 1 of 4", Qt::red}};

    for (const auto& [step, expected, color] : walk) {
        SCOPED_TRACE(expected);
        step();
        EXPECT_EQ(shown(), expected);
        const QImage picture = canvas().grab().toImage();
        EXPECT_EQ(picture.pixelColor(picture.rect().center()), color);
    }
}

TEST_F(SelectedImageViewTest, ChangedSelectionAndFiltersKeepTheImageIfTheyCan)
{
    m_master->setSelection({2, 3});
    press(Qt::Key_End);
    ASSERT_EQ(shown(), "blue.png, 3 of 3");

    m_master->setSelection({3, 5});
    EXPECT_EQ(shown(), "blue.png, 1 of 2");
    m_master->setSelection({2, 5});
    EXPECT_EQ(shown(), "red.png (mesh), 1 of 3");

    const auto filter = boost::make_shared<RangeFilter>(
        Project::project().variable("Speed"), ValueRange_s<double>{45.0, 60.0}, false);
    m_pipeline.addFilter(filter);
    EXPECT_EQ(shown(), "yellow.png, 1 of 1");
    filter->setRange({0.0, 60.0});
    EXPECT_EQ(shown(), "yellow.png, 3 of 3");
}

TEST_F(SelectedImageViewTest, SaysWhatToDoWithoutAnImage)
{
    EXPECT_EQ(shown(), "Nothing is selected.");
    m_master->setSelection({1, 77});
    EXPECT_EQ(shown(), "None of the selected cases has an image.");
    m_master->setSelection({2});
    ASSERT_EQ(shown(), "red.png (mesh), 1 of 2");
    m_pipeline.addFilter(boost::make_shared<RangeFilter>(
        Project::project().variable("Speed"), ValueRange_s<double>{45.0, 60.0}, false));
    EXPECT_EQ(shown(), "None of the selected cases that pass the filters has an image.");
    EXPECT_FALSE(widget().values().isVisible());
    EXPECT_EQ(m_view->title(), "no image");

    Project study;
    study.setCaseCount(2);
    Project::project().replaceStudy(study);
    EXPECT_EQ(shown(), "This study has no images.");
    Project nothing;
    Project::project().replaceStudy(nothing);
    EXPECT_EQ(shown(), "Open a study with images to see them here.");
}

TEST_F(SelectedImageViewTest, SaysWhyAFileCannotBeShownAndGoesOn)
{
    m_master->setSelection({4, 5});
    settle();

    EXPECT_FALSE(canvas().hasPicture());
    EXPECT_TRUE(canvas().message().startsWith(path("none.png") + QStringLiteral("\nNot shown: ")))
        << canvas().message().toStdString();
    EXPECT_EQ(shown(), "none.png, 1 of 2");
    press(Qt::Key_Right);
    EXPECT_EQ(shown(), "yellow.png, 2 of 2");
    EXPECT_TRUE(canvas().hasPicture());
}

TEST_F(SelectedImageViewTest, ShowsTheWantedImageNowOrWhenItIsSelected)
{
    m_master->setSelection({2, 3});
    m_view->showImage(file(2, 1));
    EXPECT_EQ(shown(), "green.png, 2 of 3");

    m_view->showImage(file(5));
    EXPECT_EQ(shown(), "green.png, 2 of 3");
    m_master->setSelection({}); // as by a view that clears before it selects
    m_master->setSelection({2, 5});
    EXPECT_EQ(shown(), "yellow.png, 3 of 3");

    // Overtaken by another selection, and by the user.
    m_master->setSelection({2});
    m_view->showImage(file(5));
    m_master->setSelection({2, 3});
    m_master->setSelection({2, 3, 5});
    EXPECT_EQ(shown(), "red.png (mesh), 1 of 4");
    m_master->setSelection({2});
    m_view->showImage(file(5));
    press(Qt::Key_Right);
    m_master->setSelection({2, 5});
    EXPECT_EQ(shown(), "green.png, 2 of 3");

    m_view->showImage({});
    EXPECT_EQ(shown(), "green.png, 2 of 3");
}

TEST_F(SelectedImageViewTest, QuickWalkShowsTheLastImageAndKeepsTheOldOneMeanwhile)
{
    m_master->setSelection({2, 3, 5});
    ASSERT_EQ(shown(), "red.png (mesh), 1 of 4");
    {
        const HeldBackground held;
        press(Qt::Key_Right);
        press(Qt::Key_Right);
        press(Qt::Key_Right);
        EXPECT_TRUE(m_view->isLoading());
        EXPECT_TRUE(canvas().hasPicture());
    }
    EXPECT_EQ(shown(), "yellow.png, 4 of 4");
    const QImage picture = canvas().grab().toImage();
    EXPECT_EQ(picture.pixelColor(picture.rect().center()), QColor(Qt::yellow));
}

TEST_F(SelectedImageViewTest, MayGoWhileAnImageIsBeingRead)
{
    {
        const HeldBackground held;
        m_master->setSelection({2});
        ASSERT_TRUE(m_view->isLoading());
        m_view.reset();
    }
    QCoreApplication::processEvents();

    makeView();
    {
        const HeldBackground held;
        m_master->setSelection({3});
        m_master->setSelection({});
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(shown(), "Nothing is selected.");
}

TEST_F(SelectedImageViewTest, ShowsTheValuesOfTheCaseAndCopiesThem)
{
    m_master->setSelection({2, 3});
    settle();
    CaseValuesTable& values = widget().values();
    const auto text = [&values](int row) {
        return (values.item(row, 0)->text() + QStringLiteral("=") + values.item(row, 1)->text())
            .toStdString();
    };
    EXPECT_EQ(text(0), "Case ID=2");
    EXPECT_EQ(text(1), "Tags=mesh");
    EXPECT_EQ(text(2), "File=" + path("red.png").toStdString());
    EXPECT_EQ(text(3), "Speed=20");
    EXPECT_EQ(text(4), "Note=said \"so\"");

    values.setRangeSelected(QTableWidgetSelectionRange(3, 0, 4, 1), true);
    QTest::keyClick(&values, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(
        QApplication::clipboard()->text().toStdString(), "Speed\t20\nNote\t\"said \"\"so\"\"\"");
    values.clearSelection();
    values.setRangeSelected(QTableWidgetSelectionRange(4, 1, 4, 1), true);
    QTest::keyClick(&values, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), "said \"so\"");

    m_view->showImage(file(3));
    EXPECT_EQ(text(3), "Speed=30.5");
    EXPECT_EQ(text(4), "Note=(missing)");
    Project::project().tagAuxFile(*file(3).lock(), "mesh", true);
    EXPECT_EQ(text(1), "Tags=mesh");
}

TEST_F(SelectedImageViewTest, FittingIsASettingThatZoomingLeavesWithoutAnUndoStep)
{
    m_master->setSelection({2});
    settle();
    SettingInterface& fit = *m_view->settings().front();
    EXPECT_EQ(fit.text(), "on");

    fit.setText("off");
    EXPECT_EQ(canvas().scale(), 1.0);
    UndoStack::history().undo();
    EXPECT_TRUE(canvas().isFitting());
    EXPECT_TRUE(widget().fitButton().isChecked());

    const int steps = UndoStack::history().index();
    press(Qt::Key_Plus);
    EXPECT_EQ(fit.text(), "off");
    EXPECT_GT(canvas().scale(), 1.0);
    EXPECT_EQ(UndoStack::history().index(), steps);
    press(Qt::Key_1);
    EXPECT_EQ(canvas().scale(), 1.0);
    QTest::mouseClick(&widget().fitButton(), Qt::LeftButton);
    EXPECT_EQ(fit.text(), "on");
    EXPECT_TRUE(canvas().isFitting());
}

TEST_F(SelectedImageViewTest, SuspendedViewStandsStillAndForgetsAStudyThatGoes)
{
    m_master->setSelection({2});
    ASSERT_EQ(shown(), "red.png (mesh), 1 of 2");

    m_view->suspend();
    m_master->setSelection({3});
    EXPECT_EQ(shown(), "red.png (mesh), 1 of 2");
    m_view->resume();
    EXPECT_EQ(shown(), "blue.png, 1 of 1");

    m_view->suspend();
    Project study;
    study.setCaseCount(3);
    study.addAuxFile(2, path("green.png").toStdString());
    Project::project().replaceStudy(study);
    press(Qt::Key_Right);
    EXPECT_FALSE(canvas().hasPicture());
    m_view->resume();
    EXPECT_EQ(shown(), "green.png, 1 of 1");
}

TEST_F(SelectedImageViewTest, TellsItsKindItsTitleAndItsMenu)
{
    class Visitor : public DataViewVisitorAbstract
    {
    public:
        using DataViewVisitorAbstract::visit;

        void visit(boost::shared_ptr<SelectedImageViewInterface> view) override { visited = view; }

        boost::shared_ptr<SelectedImageViewInterface> visited;
    } visitor;

    std::vector<std::string> titles;
    const boost::signals2::scoped_connection titleConnection =
        m_view->signalTitleChanged.connect([&] { titles.push_back(m_view->title()); });
    int menus = 0;
    const boost::signals2::scoped_connection menuConnection =
        m_view->signalContextMenuRequested.connect([&](const QPoint&) { ++menus; });

    m_view->accept(visitor);
    m_master->setSelection({3});
    m_master->setSelection({3, 5});
    m_master->setSelection({1});
    m_master->setSelection({3});
    QContextMenuEvent menu(QContextMenuEvent::Mouse, {5, 5}, canvas().mapToGlobal({5, 5}));
    QCoreApplication::sendEvent(&canvas(), &menu);
    m_view->adjustSelectionForMouseClickAtPoint();

    EXPECT_EQ(visitor.visited, m_view);
    EXPECT_EQ(titles, (std::vector<std::string>{"blue.png", "no image", "blue.png"}));
    EXPECT_EQ(menus, 1);
    EXPECT_EQ(m_master->getSelections(), std::set<unsigned long long>{3});
}

TEST_F(SelectedImageViewTest, ImageOfTheHoveredCaseHasAnOutline)
{
    m_master->setSelection({2, 3});
    settle();
    const auto corner = [this] { return canvas().grab().toImage().pixelColor(0, 0); };
    ASSERT_NE(corner(), QColor(Qt::black));

    m_hovered->setCaseID(2);
    EXPECT_TRUE(canvas().isOutlined());
    EXPECT_EQ(corner(), QColor(Qt::black));
    press(Qt::Key_Right);
    EXPECT_TRUE(canvas().isOutlined()); // the other image of the case
    press(Qt::Key_Right);
    EXPECT_FALSE(canvas().isOutlined());
    m_hovered->setCaseID(3);
    EXPECT_TRUE(canvas().isOutlined());
    m_master->setSelection({});
    EXPECT_FALSE(canvas().isOutlined());
    m_master->setSelection({3});
    EXPECT_TRUE(canvas().isOutlined());
    m_hovered->setCaseID(std::nullopt);
    EXPECT_FALSE(canvas().isOutlined());
    EXPECT_TRUE(m_view->leftOut().empty());
}

TEST_F(SelectedImageViewTest, SurvivesItsWidget)
{
    m_master->setSelection({2});
    delete &m_view->widget();
    m_hovered->setCaseID(2);

    m_master->setSelection({3});
    m_view->fitToWindow()->setValue(false);
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();

    EXPECT_EQ(m_view->title(), "blue.png");
}

} // namespace analyzer
