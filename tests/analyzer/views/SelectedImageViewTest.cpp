#include <analyzer/views/CaseValuesTable.h>
#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/ImageCanvasCaption.h>
#include <analyzer/views/ImageCanvasZoomBar.h>
#include <analyzer/views/SelectedImageGrid.h>
#include <analyzer/views/SelectedImageView.h>
#include <analyzer/views/SelectedImageWidget.h>

#include <dataviews/common/images/ImageCache.h>
#include <dataviews/common/views/DataViewVisitorAbstract.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/property/InvalidPropertyValueException.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/serialize/SerializerInterface.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDomDocument>
#include <QEventLoop>
#include <QFile>
#include <QScrollBar>
#include <QSemaphore>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>
#include <QThreadPool>
#include <QTimer>
#include <QToolButton>
#include <QWheelEvent>

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
        m_project.setSource("study", path("data.csv").toStdString());
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

    [[nodiscard]] ImageCanvas& canvas(std::size_t cell = 0) const
    {
        return widget().grid().canvas(cell);
    }

    void settle()
    {
        QEventLoop loop;
        QTimer deadline;
        deadline.setSingleShot(true);
        QObject::connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
        for (const ImageCanvas* shown : widget().grid().canvases()) {
            QObject::connect(shown, &ImageCanvas::zoomChanged, &loop, [&] {
                if (!m_view->isLoading()) {
                    loop.quit();
                }
            });
        }
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

    /// The colors in the middle of the cells, those that are not shown left out.
    std::vector<QColor> colors()
    {
        settle();
        std::vector<QColor> result;
        for (std::size_t i = 0; i < widget().grid().usedCount(); ++i) {
            const QImage picture = canvas(i).grab().toImage();
            result.push_back(picture.pixelColor(picture.rect().center()));
        }
        return result;
    }

    [[nodiscard]] SettingInterface& setting(const std::string& name) const
    {
        for (const boost::shared_ptr<SettingInterface>& candidate : m_view->settings()) {
            if (candidate->name() == name) {
                return *candidate;
            }
        }
        throw ExceptionBase("There is no setting " + name + ".");
    }

    /// What a session keeps of the view.
    [[nodiscard]] QString state() const
    {
        QDomDocument document;
        QDomElement parent = document.createElement(QStringLiteral("Views"));
        m_view->serializer().serialize(parent);
        QString text;
        QTextStream stream(&text);
        parent.save(stream, 1);
        return text;
    }

    void read(const QString& text)
    {
        QDomDocument document;
        ASSERT_TRUE(document.setContent(text));
        const UndoStack::SuspendUndoRecording noRecording;
        m_view->serializer().deserialize(document.documentElement());
    }

    static void drag(QWidget& target, const QPoint& from, const QPoint& to)
    {
        QTest::mousePress(&target, Qt::LeftButton, {}, from);
        QMouseEvent event(
            QEvent::MouseMove,
            to,
            target.mapToGlobal(to),
            Qt::NoButton,
            Qt::LeftButton,
            Qt::NoModifier);
        QCoreApplication::sendEvent(&target, &event);
        QTest::mouseRelease(&target, Qt::LeftButton, {}, to);
    }

    void wheel(ImageCanvas& target, int angle, Qt::KeyboardModifiers keys = Qt::ControlModifier)
    {
        const QPointF middle = QRectF(target.rect()).center();
        QWheelEvent event(
            middle,
            target.mapToGlobal(middle.toPoint()),
            QPoint(),
            QPoint(0, angle),
            Qt::NoButton,
            keys,
            Qt::NoScrollPhase,
            false);
        QCoreApplication::sendEvent(&target, &event);
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

TEST_F(SelectedImageViewTest, FittingIsASettingThatZoomingEndsUntilItIsUndone)
{
    m_master->setSelection({2});
    settle();
    SettingInterface& fit = *m_view->settings().front();
    EXPECT_EQ(fit.text(), "on");

    fit.setText("off");
    EXPECT_EQ(canvas().scale(), 1.0);
    UndoStack::history().undo();
    EXPECT_TRUE(canvas().isFitting());
    EXPECT_TRUE(widget().zoomBar().fitButton().isChecked());

    press(Qt::Key_Plus);
    EXPECT_EQ(fit.text(), "off");
    EXPECT_GT(canvas().scale(), 1.0);
    press(Qt::Key_Plus);
    UndoStack::history().undo(); // both steps
    EXPECT_EQ(fit.text(), "on");
    EXPECT_TRUE(canvas().isFitting());
    UndoStack::history().redo();
    EXPECT_EQ(fit.text(), "off");
    press(Qt::Key_1);
    EXPECT_EQ(canvas().scale(), 1.0);
    QTest::mouseClick(&widget().zoomBar().fitButton(), Qt::LeftButton);
    EXPECT_EQ(fit.text(), "on");
    EXPECT_TRUE(canvas().isFitting());
}

TEST_F(SelectedImageViewTest, ShowsSeveralImagesSideBySidePageByPage)
{
    m_master->setSelection({5, 1, 2, 3});
    const auto images = [this](const char* count) {
        return [this, count] { setting("images").setText(count); };
    };
    const auto key = [this](Qt::Key code) { return [this, code] { press(code); }; };
    const QColor red(Qt::red);
    const QColor green(Qt::green);
    const QColor blue(Qt::blue);
    const QColor yellow(Qt::yellow);

    const struct
    {
        std::function<void()> step;
        const char* shown;
        std::vector<QColor> colors;
    } walk[] = {
        {images("2"), "red.png (mesh), 1 to 2 of 4", {red, green}},
        {key(Qt::Key_Right), "blue.png, 3 to 4 of 4", {blue, yellow}},
        {key(Qt::Key_Right), "blue.png, 3 to 4 of 4", {blue, yellow}},
        {images("3"), "blue.png, 1 to 3 of 4", {red, green, blue}}, // the current image stays
        {key(Qt::Key_End), "yellow.png, 4 of 4", {yellow}},
        {key(Qt::Key_Left), "red.png (mesh), 1 to 3 of 4", {red, green, blue}},
        {images("9"), "red.png (mesh), 1 to 4 of 4", {red, green, blue, yellow}},
        {[this] {
             m_master->setSelection({3, 5});
         },
         "blue.png, 1 to 2 of 2",
         {blue, yellow}},
        {[] { UndoStack::history().undo(); }, "blue.png, 1 to 2 of 2", {blue, yellow}},
        {images("1"), "blue.png, 1 of 2", {blue}}};

    for (const auto& [step, expected, colorsOfCells] : walk) {
        SCOPED_TRACE(expected);
        step();
        EXPECT_EQ(shown(), expected);
        EXPECT_EQ(colors(), colorsOfCells);
    }
    EXPECT_THROW(m_view->imagesAtOnce()->setValue(5), corvane::InvalidPropertyValueException);
    EXPECT_THROW(setting("images").setText("0"), ExceptionBase);
}

TEST_F(SelectedImageViewTest, ClickMakesAnImageTheCurrentOneAndCaptionsTellThemApart)
{
    m_master->setSelection({2, 3});
    setting("images").setText("4");
    settle();
    EXPECT_EQ(widget().grid().caption(0).text(), QStringLiteral("Case 2: red.png (mesh)"));
    EXPECT_EQ(widget().grid().caption(2).text(), QStringLiteral("Case 3: blue.png"));
    EXPECT_TRUE(widget().grid().caption(0).isCurrent());

    QTest::mouseClick(&canvas(2), Qt::LeftButton);
    EXPECT_TRUE(widget().grid().caption(2).isCurrent());
    EXPECT_FALSE(widget().grid().caption(0).isCurrent());
    EXPECT_EQ(shown(), "blue.png, 1 to 3 of 3");
    EXPECT_EQ(widget().values().item(0, 1)->text(), QStringLiteral("3"));
    EXPECT_EQ(m_view->title(), "blue.png");
    m_master->setSelection({3, 5});
    EXPECT_EQ(shown(), "blue.png, 1 to 2 of 2");
    EXPECT_TRUE(widget().grid().caption(0).isCurrent());

    m_hovered->setCaseID(5);
    EXPECT_FALSE(canvas(0).isOutlined());
    EXPECT_TRUE(canvas(1).isOutlined());
}

TEST_F(SelectedImageViewTest, SeveralImagesHaveMostOfTheRoomUnlessTheUserWantsItOtherwise)
{
    m_master->setSelection({2, 3});
    settle();
    const auto part = [this] {
        const QList<int> sizes = widget().splitter().sizes();
        return static_cast<double>(sizes[1]) / (sizes[0] + sizes[1]);
    };
    EXPECT_GT(part(), 0.5); // the window is small, and one picture leaves the values their width
    setting("images").setText("4");
    EXPECT_NEAR(part(), 1.0 / 3.0, 0.01);

    widget().setValuesShare(0.25);
    widget().resize(900, 300);
    EXPECT_NEAR(part(), 0.25, 0.01);
    setting("images").setText("1");
    EXPECT_NEAR(part(), 0.25, 0.01);
}

TEST_F(SelectedImageViewTest, BadFileAmongSeveralTakesOnlyItsOwnPlace)
{
    m_master->setSelection({3, 4, 5});
    setting("images").setText("4");
    settle();

    EXPECT_TRUE(canvas(0).hasPicture());
    EXPECT_TRUE(canvas(1).message().contains(QStringLiteral("Not shown: ")));
    EXPECT_TRUE(canvas(2).hasPicture());
    EXPECT_FALSE(canvas(1).hasPicture());
}

TEST_F(SelectedImageViewTest, StateIsWrittenAsItWasRead)
{
    m_master->setSelection({2, 3, 5});
    setting("images").setText("3");
    press(Qt::Key_End);
    settle();
    wheel(canvas(), 360);
    drag(canvas(), {50, 50}, {37, 41});
    widget().resize(600, 120);
    drag(*widget().splitter().handle(1), {1, 5}, {-32, 5});
    widget().values().setColumnWidth(0, 77);
    widget().values().verticalScrollBar()->setValue(2);
    const QString written = state();
    ASSERT_TRUE(written.contains(QStringLiteral("File=\"yellow.png\"")));
    ASSERT_TRUE(written.contains(QStringLiteral("<ValuesRow>2<")));
    ASSERT_FALSE(written.contains(QStringLiteral("automatic")));
    const ImageCanvasZoom zoom = canvas().zoom();
    ASSERT_NE(zoom.centerX, 0.5);

    for (const bool isSelectedFirst : {true, false}) {
        SCOPED_TRACE(isSelectedFirst);
        m_view.reset();
        m_master->setSelection(
            isSelectedFirst ? std::set<unsigned long long>{2, 3, 5}
                            : std::set<unsigned long long>{});
        makeView();
        read(written);
        m_master->setSelection({2, 3, 5});
        EXPECT_EQ(shown(), "yellow.png, 4 of 4");
        EXPECT_EQ(canvas().zoom(), zoom);
        EXPECT_EQ(widget().values().columnWidth(0), 77);
        EXPECT_EQ(state().toStdString(), written.toStdString());
    }
}

TEST_F(SelectedImageViewTest, StateWithAnImageThatIsGoneOrWithNonsenseLeavesTheViewAsItIs)
{
    m_master->setSelection({2, 3});
    press(Qt::Key_End);
    const QString frame = QStringLiteral("<V><SelectedImage>%1</SelectedImage></V>");
    for (const char* gone :
         {"<CurrentImage File=\"gone.png\">2</CurrentImage>",
          "<CurrentImage File=\"red.png\">3</CurrentImage>",
          "<CurrentImage File=\"red.png\">77</CurrentImage>",
          "<CurrentImage/>"}) {
        SCOPED_TRACE(gone);
        read(frame.arg(gone));
        EXPECT_EQ(shown(), "blue.png, 3 of 3");
    }
    const ImageCanvasZoom zoom = canvas().zoom();
    for (const char* nonsense :
         {"<Images>5</Images>",
          "<Zoom><Scale>0</Scale></Zoom>",
          "<Zoom><Scale>nan</Scale></Zoom>",
          "<Zoom><CenterX>1.5</CenterX></Zoom>",
          "<Zoom><CenterY>-inf</CenterY></Zoom>",
          "<ValuesShare>2</ValuesShare>",
          "<NamesWidth>-7</NamesWidth>",
          "<CurrentImage File=\"red.png\">two</CurrentImage>"}) {
        SCOPED_TRACE(nonsense);
        EXPECT_ANY_THROW(read(frame.arg(nonsense)));
        EXPECT_EQ(shown(), "blue.png, 3 of 3");
        EXPECT_EQ(canvas().zoom(), zoom);
    }
}

TEST_F(SelectedImageViewTest, SuspendedViewStandsStillAndForgetsAStudyThatGoes)
{
    m_master->setSelection({2});
    ASSERT_EQ(shown(), "red.png (mesh), 1 of 2");

    m_view->suspend();
    m_master->setSelection({3});
    m_view->imagesAtOnce()->setValue(2);
    EXPECT_EQ(shown(), "red.png (mesh), 1 of 2");
    m_view->showImage(file(3));
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
