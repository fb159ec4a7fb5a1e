#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/ImageCanvasCaption.h>
#include <analyzer/views/ImageDiffView.h>
#include <analyzer/views/ImageDiffWidget.h>
#include <analyzer/views/SelectedImageGrid.h>

#include <dataviews/common/images/ImageCache.h>
#include <dataviews/common/views/DataViewVisitorAbstract.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/property/InvalidPropertyValueException.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/serialize/SerializerInterface.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QAction>
#include <QComboBox>
#include <QDomDocument>
#include <QEventLoop>
#include <QFile>
#include <QMenu>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>
#include <QThreadPool>
#include <QTimer>
#include <QToolButton>
#include <QWheelEvent>

#include <vtkDoubleArray.h>
#include <vtkNew.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace analyzer {

namespace {

constexpr int deadlineMs = 30000;

/// Of six cases 1 has no image; 2 to 5 have one tagged "front" and, but for 4, one tagged "top"; that of 4 is no image;
/// 6 has one tagged "top", which is larger.
class ImageDiffViewTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_folder.isValid());
        m_project.setCaseCount(6);
        m_project.setSource("study", path("data.csv").toStdString());
        vtkNew<vtkDoubleArray> speed;
        speed->SetName("Speed");
        for (int i = 1; i <= 6; ++i) {
            speed->InsertNextValue(10.0 * i);
        }
        m_project.addVariable(speed.Get(), Variable::Input);
        m_project.addTagGroup("Images");
        m_project.addTag("Images", "front");
        m_project.addTag("Images", "top");
        addImage(2, "front", "a.png", QColor(100, 100, 100));
        addImage(2, "top", "b.png", QColor(0, 0, 0));
        addImage(3, "front", "c.png", QColor(110, 100, 100));
        addImage(3, "top", "d.png", QColor(0, 0, 8));
        addImage(4, "front", "none.png", QColor());
        addImage(5, "top", "e.png", QColor(0, 50, 0)); // not in the order of the tags
        addImage(5, "front", "f.png", QColor(100, 100, 60));
        addImage(6, "top", "g.png", QColor(0, 0, 0), {80, 60});
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
        m_view = boost::make_shared<ImageDiffView>(
            m_pipeline, m_master, boost::make_shared<ImageCache>(), m_hovered);
        m_view->widget().resize(600, 300);
        m_view->widget().show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_view->widget()));
    }

    [[nodiscard]] QString path(const char* name) const
    {
        return m_folder.filePath(QString::fromLatin1(name));
    }

    /// A file that is no image for an invalid color.
    void addImage(
        unsigned long long caseID,
        const char* tag,
        const char* name,
        const QColor& color,
        const QSize& size = {40, 30})
    {
        if (color.isValid()) {
            QImage image(size, QImage::Format_RGB32);
            image.fill(color);
            ASSERT_TRUE(image.save(path(name)));
        } else {
            QFile file(path(name));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("text") > 0);
        }
        const boost::shared_ptr<AuxFile> added =
            m_project.addAuxFile(caseID - 1, path(name).toStdString());
        m_project.tagAuxFile(*added, tag, true);
    }

    [[nodiscard]] ImageDiffWidget& widget() const { return m_view->diffWidget(); }

    [[nodiscard]] ImageCanvas& canvas(std::size_t number = 0) const
    {
        return widget().canvas(number);
    }

    void settle()
    {
        QEventLoop loop;
        QTimer deadline;
        deadline.setSingleShot(true);
        QObject::connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
        for (const std::size_t number : {0, 1}) {
            QObject::connect(&canvas(number), &ImageCanvas::zoomChanged, &loop, [&] {
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

    [[nodiscard]] static QColor middle(ImageCanvas& shown)
    {
        const QImage picture = shown.grab().toImage();
        return picture.pixelColor(picture.rect().center());
    }

    /// What is compared, once it is there: "a.png c.png"; without pictures the message.
    std::string shown()
    {
        settle();
        if (!canvas().hasPicture() && widget().grid().usedCount() == 1) {
            return canvas().message().toStdString();
        }
        const auto name = [this](std::size_t number) {
            return widget().caption(number).text().section(QStringLiteral(": "), 1).toStdString();
        };
        return name(0) + " " + name(1);
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

    void press(Qt::Key key) { QTest::keyClick(&canvas(), key); }

    QTemporaryDir m_folder;
    Project m_project;
    DataPipelineManager m_pipeline{Project::project()};
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    boost::shared_ptr<HoveredCase> m_hovered = boost::make_shared<HoveredCase>();
    boost::shared_ptr<ImageDiffView> m_view;
};

} // namespace

TEST_F(ImageDiffViewTest, SaysWhatToSelect)
{
    const char two[] = "Select two cases with images to compare.";
    EXPECT_EQ(shown(), two);
    m_master->setSelection({1, 2});
    EXPECT_EQ(shown(), two);
    m_master->setSelection({4, 6});
    EXPECT_EQ(shown(), "The images of case 4 and case 6 have no tag in common.");
    m_view->tag()->setValue(std::string("top"));
    EXPECT_EQ(shown(), "Case 6 and case 4 do not both have an image tagged \"top\".");
    EXPECT_EQ(m_view->title(), "no images to compare");
    m_view->pinned()->setValue(2);
    m_master->setSelection({2});
    EXPECT_EQ(
        shown(), "Select another case with images, to compare it with case 2, the reference.");
    m_view->pinned()->setValue(std::nullopt);
    m_master->setSelection({2, 3});
    ASSERT_EQ(shown(), "b.png d.png");
    m_pipeline.addFilter(boost::make_shared<RangeFilter>(
        Project::project().variable("Speed"), ValueRange_s<double>{15.0, 25.0}, false));
    EXPECT_EQ(shown(), "Select two cases with images that pass the filters to compare.");

    Project study;
    study.setCaseCount(2);
    Project::project().replaceStudy(study);
    EXPECT_EQ(shown(), "This study has no images.");
    Project nothing;
    Project::project().replaceStudy(nothing);
    EXPECT_EQ(shown(), "Open a study with images to compare them here.");
}

TEST_F(ImageDiffViewTest, ComparesImagesOfOneTagAndWalksThroughTheOthers)
{
    m_master->setSelection({2, 3, 5, 6});
    EXPECT_EQ(shown(), "a.png c.png");
    EXPECT_EQ(widget().placeText(), QStringLiteral("1 of 3"));
    EXPECT_EQ(m_view->title(), "cases 2 and 3");
    press(Qt::Key_Right);
    EXPECT_EQ(shown(), "a.png f.png");
    QTest::mouseClick(&widget().nextButton(), Qt::LeftButton);
    EXPECT_EQ(shown(), "b.png g.png"); // the first tag that they have in common
    EXPECT_FALSE(widget().nextButton().isEnabled());

    m_master->setSelection({3, 5, 6}); // the other case stays
    EXPECT_EQ(shown(), "d.png g.png");
    press(Qt::Key_Home);
    setting("tag").setText("top");
    EXPECT_EQ(shown(), "d.png e.png");
    setting("swap").setText("on");
    EXPECT_EQ(shown(), "e.png d.png");
    EXPECT_EQ(middle(canvas(0)), QColor(0, 50, 0));
    EXPECT_EQ(middle(canvas(1)), QColor(0, 0, 8));
    UndoStack::history().undo();
    UndoStack::history().undo();
    EXPECT_EQ(shown(), "c.png f.png");
    EXPECT_THROW(setting("tag").setText("back"), ExceptionBase);
}

TEST_F(ImageDiffViewTest, PinnedReferenceStaysWhileTheSelectionChanges)
{
    m_master->setSelection({3, 5});
    ASSERT_EQ(shown(), "c.png f.png");

    QTest::mouseClick(&widget().pinButton(), Qt::LeftButton);
    EXPECT_TRUE(widget().pinButton().isChecked());
    EXPECT_EQ(setting("reference").text(), "3");
    m_master->setSelection({2});
    EXPECT_EQ(shown(), "c.png a.png");
    m_master->setSelection({2, 3, 5});
    EXPECT_EQ(shown(), "c.png a.png");
    EXPECT_EQ(widget().placeText(), QStringLiteral("1 of 2"));
    EXPECT_EQ(widget().caption(0).text(), QStringLiteral("Reference, case 3: c.png"));

    QTest::mousePress(&canvas(1), Qt::RightButton);
    QMenu menu;
    m_view->addContextActions(menu);
    ASSERT_EQ(menu.actions().size(), 2);
    menu.actions()[0]->trigger();
    EXPECT_EQ(m_view->pinned()->value(), 2U);
    EXPECT_EQ(shown(), "a.png c.png");
    menu.actions()[1]->trigger();
    EXPECT_FALSE(widget().pinButton().isChecked());
    UndoStack::history().undo();
    EXPECT_EQ(setting("reference").text(), "2");

    for (const char* refused : {"1", "77", "all", "-1", ""}) {
        SCOPED_TRACE(refused);
        EXPECT_THROW(setting("reference").setText(refused), ExceptionBase);
        EXPECT_EQ(setting("reference").text(), "2");
    }
}

TEST_F(ImageDiffViewTest, TellsAndDrawsTheDifference)
{
    m_master->setSelection({2, 3});
    settle();
    widget().modeBox().setCurrentIndex(2);
    Q_EMIT widget().modeBox().activated(2);
    EXPECT_EQ(shown(), "a.png c.png");
    EXPECT_EQ(middle(canvas()), QColor(10, 0, 0));
    EXPECT_EQ(
        widget().remark(), QStringLiteral("Difference per pixel, 0 to 255: mean 10, largest 10."));

    widget().gainSlider().setValue(4);
    widget().gainSlider().setValue(16);
    settle();
    EXPECT_EQ(middle(canvas()), QColor(160, 0, 0));
    EXPECT_EQ(
        widget().remark(),
        QStringLiteral(
            "Difference per pixel, 0 to 255: mean 10, largest 10; drawn 16 times brighter."));
    UndoStack::history().undo(); // the whole move of the slider
    EXPECT_EQ(m_view->gain()->value(), 1U);

    m_master->setSelection({2, 6});
    EXPECT_EQ(shown(), "b.png g.png");
    EXPECT_EQ(
        widget().remark(),
        QStringLiteral("The images do not differ in any pixel. The images have 40 × 30 and 80 × 60 "
                       "pixels; the second one is scaled to the size of the first."));
    EXPECT_EQ(canvas().pictureSize(), QSize(40, 30));
    EXPECT_THROW(m_view->gain()->setValue(17), corvane::InvalidPropertyValueException);
}

TEST_F(ImageDiffViewTest, BlendsAsTheSliderSays)
{
    m_master->setSelection({2, 5});
    m_view->tag()->setValue(std::string("top"));
    m_view->mode()->setValue(ImageDiffMode::Blend);
    settle();
    EXPECT_EQ(middle(canvas()), QColor(0, 25, 0));
    widget().blendSlider().setValue(100);
    settle();
    EXPECT_EQ(middle(canvas()), QColor(0, 50, 0));
    EXPECT_EQ(setting("blend").text(), "100");
    EXPECT_TRUE(widget().remark().isEmpty());
    m_view->mode()->setValue(ImageDiffMode::SideBySide);
    settle();
    EXPECT_EQ(middle(canvas(0)), QColor(0, 0, 0));
    EXPECT_EQ(middle(canvas(1)), QColor(0, 50, 0));
}

TEST_F(ImageDiffViewTest, PicturesBesideEachOtherAreZoomedInStepAndTellOtherSizes)
{
    m_master->setSelection({5, 6});
    settle();
    EXPECT_EQ(widget().remark(), QStringLiteral("The images have 40 × 30 and 80 × 60 pixels."));
    const QPointF place = QRectF(canvas(1).rect()).center();
    QWheelEvent event(
        place,
        canvas(1).mapToGlobal(place.toPoint()),
        QPoint(),
        QPoint(0, 480),
        Qt::NoButton,
        Qt::ControlModifier,
        Qt::NoScrollPhase,
        false);
    QCoreApplication::sendEvent(&canvas(1), &event);
    EXPECT_FALSE(canvas(0).isFitting());
    EXPECT_EQ(canvas(0).zoom(), canvas(1).zoom());
    EXPECT_EQ(setting("fit").text(), "off");
    UndoStack::history().undo();
    EXPECT_TRUE(canvas(0).isFitting());
}

TEST_F(ImageDiffViewTest, SaysWhichFileCannotBeShown)
{
    m_master->setSelection({3, 4});
    settle();
    EXPECT_TRUE(canvas(0).hasPicture());
    EXPECT_TRUE(canvas(1).message().startsWith(path("none.png") + QStringLiteral("\nNot shown: ")));

    QFile::remove(path("f.png")); // not read yet
    m_view->mode()->setValue(ImageDiffMode::Difference);
    settle();
    EXPECT_FALSE(canvas(0).hasPicture());
    EXPECT_TRUE(canvas(0).message().startsWith(path("none.png")));
    EXPECT_TRUE(widget().remark().isEmpty());
    m_master->setSelection({2, 5});
    settle();
    EXPECT_TRUE(canvas(0).message().contains(QStringLiteral("does not exist")))
        << canvas(0).message().toStdString();
}

TEST_F(ImageDiffViewTest, StateIsWrittenAsItWasRead)
{
    m_master->setSelection({2, 3, 5});
    m_view->mode()->setValue(ImageDiffMode::Difference);
    m_view->blend()->setValue(35);
    m_view->gain()->setValue(7);
    m_view->swapped()->setValue(true);
    m_view->tag()->setValue(std::string("top"));
    m_view->pinned()->setValue(3);
    press(Qt::Key_End);
    ASSERT_EQ(shown(), "e.png d.png");
    press(Qt::Key_Plus);
    const ImageCanvasZoom zoom = canvas().zoom();
    const QString written = state();

    for (const bool isSelectedFirst : {true, false}) {
        SCOPED_TRACE(isSelectedFirst);
        m_view.reset();
        m_master->setSelection(
            isSelectedFirst ? std::set<unsigned long long>{2, 3, 5}
                            : std::set<unsigned long long>{});
        makeView();
        read(written);
        m_master->setSelection({2, 3, 5});
        EXPECT_EQ(shown(), "e.png d.png");
        EXPECT_EQ(canvas().zoom(), zoom);
        EXPECT_EQ(state().toStdString(), written.toStdString());
    }

    // What names things that are gone leaves the view as it is; what says that there is none does not.
    for (const char* gone :
         {"<Tag Value=\"back\"/>", "<Reference Value=\"77\"/>", "<Other Value=\"77\"/>"}) {
        SCOPED_TRACE(gone);
        read(QStringLiteral("<V><ImageDiff>%1</ImageDiff></V>").arg(gone));
        EXPECT_EQ(state().toStdString(), written.toStdString());
    }
    for (const char* nonsense :
         {"<Mode>sideways</Mode>",
          "<Blend>101</Blend>",
          "<Gain>0</Gain>",
          "<Reference Value=\"one\"/>",
          "<Zoom><Scale>-1</Scale></Zoom>"}) {
        SCOPED_TRACE(nonsense);
        EXPECT_ANY_THROW(read(QStringLiteral("<V><ImageDiff>%1</ImageDiff></V>").arg(nonsense)));
        EXPECT_EQ(state().toStdString(), written.toStdString());
    }
    read(QStringLiteral("<V><ImageDiff><Tag/><Reference/></ImageDiff></V>"));
    EXPECT_EQ(setting("tag").text(), "(first in common)");
    EXPECT_EQ(setting("reference").text(), "none");
}

TEST_F(ImageDiffViewTest, SuspendedViewStandsStillAndForgetsAStudyThatGoes)
{
    m_master->setSelection({2, 3});
    ASSERT_EQ(shown(), "a.png c.png");
    m_view->suspend();
    m_master->setSelection({3, 5});
    m_view->swapped()->setValue(true);
    EXPECT_EQ(shown(), "a.png c.png");
    m_view->resume();
    EXPECT_EQ(shown(), "f.png c.png");

    m_view->pinned()->setValue(3);
    m_view->suspend();
    Project study;
    study.setCaseCount(3);
    study.addAuxFile(1, path("a.png").toStdString());
    study.addAuxFile(2, path("f.png").toStdString());
    Project::project().replaceStudy(study);
    press(Qt::Key_Right);
    EXPECT_FALSE(canvas().hasPicture());
    m_view->resume();
    EXPECT_EQ(m_view->pinned()->value(), std::nullopt);
    m_master->setSelection({2, 3});
    EXPECT_EQ(shown(), "f.png a.png"); // without any tags
}

TEST_F(ImageDiffViewTest, StudyMayBeReplacedAndViewMayGoWhilePicturesAreMade)
{
    m_view->mode()->setValue(ImageDiffMode::Difference);
    m_master->setSelection({2, 3});
    m_view->pinned()->setValue(2);
    Project study;
    study.setCaseCount(3);
    Project::project().replaceStudy(study);
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    EXPECT_EQ(shown(), "This study has no images.");
    EXPECT_EQ(m_view->title(), "no images to compare");

    Project other;
    other.setCaseCount(2);
    other.addAuxFile(0, path("a.png").toStdString());
    other.addAuxFile(1, path("b.png").toStdString());
    Project::project().replaceStudy(other);
    m_master->setSelection({1, 2});
    ASSERT_TRUE(m_view->isLoading());
    m_view.reset();
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
}

TEST_F(ImageDiffViewTest, TagsThatGoChangeThePair)
{
    m_master->setSelection({2, 3});
    ASSERT_EQ(shown(), "a.png c.png");
    Project::project().removeTag("front");
    EXPECT_EQ(shown(), "b.png d.png");
    EXPECT_EQ(setting("tag").choices(), (std::vector<std::string>{"(first in common)", "top"}));
}

TEST_F(ImageDiffViewTest, HoveredCaseAndKindAreThoseOfThePictures)
{
    class Visitor : public DataViewVisitorAbstract
    {
    public:
        using DataViewVisitorAbstract::visit;

        void visit(boost::shared_ptr<ImageDiffViewInterface> view) override { visited = view; }

        boost::shared_ptr<ImageDiffViewInterface> visited;
    } visitor;

    m_view->accept(visitor);
    EXPECT_EQ(visitor.visited, m_view);

    m_master->setSelection({2, 3});
    settle();
    m_hovered->setCaseID(3);
    EXPECT_FALSE(canvas(0).isOutlined());
    EXPECT_TRUE(canvas(1).isOutlined());
    m_view->mode()->setValue(ImageDiffMode::Blend);
    EXPECT_TRUE(canvas(0).isOutlined());
    m_master->setSelection({});
    EXPECT_FALSE(canvas(0).isOutlined());
}

TEST_F(ImageDiffViewTest, SurvivesItsWidget)
{
    m_master->setSelection({2, 3});
    delete &m_view->widget();
    m_hovered->setCaseID(2);
    m_master->setSelection({3, 5});
    m_view->mode()->setValue(ImageDiffMode::Blend);
    m_view->pinned()->setValue(5);
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    EXPECT_EQ(m_view->kind(), "image-diff");
}

} // namespace analyzer
