#include <analyzer/MainWindow.h>
#include <analyzer/ViewArea.h>
#include <analyzer/filters/FilterList.h>
#include <analyzer/tags/TagEditor.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/ScatterPlotView.h>
#include <analyzer/views/viewKinds.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QDomDocument>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include <tests/support/openStudy.h>

namespace {

using analyzer::MainWindow;
using Cases = std::set<unsigned long long>;

constexpr const char* oddName = "Drag, <total> \"1\"";

class MainWindowSessionTest : public testing::Test
{
protected:
    MainWindowSessionTest()
    {
        qSetGlobalQHashSeed(0); // attributes in the same order
        newWindow();
    }

    ~MainWindowSessionTest() override
    {
        m_window.reset();
        Project nothing;
        Project::project().replaceStudy(nothing);
    }

    void newWindow()
    {
        m_window.reset();
        m_window = std::make_unique<MainWindow>();
        m_window->setTellsErrorsInDialogs(false);
    }

    [[nodiscard]] QString path(const QString& name) const { return m_folder.filePath(name); }

    void write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    [[nodiscard]] QByteArray read(const QString& name) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    /// The study with views of all kinds, tags, filters, a selection and settings that are not those at first.
    void openEverything()
    {
        ASSERT_TRUE(openStudyIn(*m_window, writeSmallImageStudy(m_folder.path())));
        for (const std::string& kind : analyzer::viewKinds()) {
            m_window->addView(kind);
        }
        analyzer::TagEditor& tags = m_window->tags();
        tags.addGroup("Mine & yours");
        tags.addTag("Mine & yours", " good, \"very\" ");
        tags.addTag("Mine & yours", "bad");
        tags.tagCases("bad", rows({0, 3, 4}), true);
        tags.tagFiles(" good, \"very\" ", {Project::project().auxFiles(2).front()}, true);
        m_window->filters().addRangeFilter(oddName, {-0.7, 3.0});
        m_window->filters().addValuesFilter("Material")->inverted()->setValue(true);
        m_window->filters().filters().back()->enabled()->setValue(false);
        m_window->filters().addTagFilter("bad")->enabled()->setValue(false);
        m_window->assign({"scatter", 1, "x", oddName});
        m_window->assign({"scatter", 1, "color", "Material"});
        m_window->assign({"scatter", 1, "y-min", "-3.25"});
        m_window->assign({"images", 1, "rows-by", "tag"});
        m_window->assign({"images", 1, "labels", "on"});
        m_window->assign({"images", 1, "zoom", "31"});
        m_window->selection().setSelection({2, 5, 6});
    }

    static RowBitmap rows(const std::set<std::size_t>& rows)
    {
        RowBitmap bitmap(Project::project().caseCount());
        for (const std::size_t row : rows) {
            bitmap.set(row);
        }
        return bitmap;
    }

    /// What was told: the refusal, or the remarks; nothing for a session that was restored as it was.
    QString openSession(const QString& name)
    {
        QString told;
        bool isOver = false;
        QObject context;
        QObject::connect(
            m_window.get(),
            &MainWindow::openingFailed,
            &context,
            [&](const QString&, const QString& message) {
                told = "refused: " + message;
                isOver = true;
            });
        QObject::connect(
            m_window.get(),
            &MainWindow::sessionOpened,
            &context,
            [&](const QString&, const QStringList& remarks) {
                told = remarks.join(QLatin1Char('\n'));
                isOver = true;
            });
        m_window->openSession(path(name));
        while (!isOver) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return told;
    }

    /// Of the first view of the kind.
    [[nodiscard]] std::string setting(const std::string& kind, const std::string& name) const
    {
        for (const auto& view : m_window->views()) {
            for (const auto& setting : view->settings()) {
                if (view->kind() == kind && setting->name() == name) {
                    return setting->text();
                }
            }
        }
        return "there is none";
    }

    [[nodiscard]] std::string present() const
    {
        return withoutLayout(m_window->sessionText(m_folder.path()));
    }

    /// The layout holds the least sizes of the views, which depend on the pictures that have come by then.
    static std::string withoutLayout(QByteArray session)
    {
        const int begin = session.indexOf(" <Window");
        session.remove(begin, session.indexOf(" <Selection", begin) - begin);
        return session.toStdString();
    }

    QTemporaryDir m_folder;
    std::unique_ptr<MainWindow> m_window;
};

TEST_F(MainWindowSessionTest, RestoresEverythingInAnotherWindow)
{
    openEverything();
    m_window->resize(1100, 1000);
    m_window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
    QTest::qWait(50);
    for (const auto& view : m_window->views()) {
        view->render();
    }
    const QSize size = m_window->size();
    m_window->saveSession(path("a.dvsession"));
    const std::string saved = withoutLayout(read("a.dvsession"));
    EXPECT_EQ(saved, present());

    newWindow();
    m_window->show();
    ASSERT_EQ(openSession("a.dvsession"), QString());
    QTest::qWait(50);
    for (const auto& view : m_window->views()) {
        view->render();
    }
    EXPECT_EQ(present(), saved);
    EXPECT_EQ(UndoStack::history().count(), 0);
    EXPECT_EQ(m_window->size(), size);
    EXPECT_TRUE(m_window->tags().isUserTag("bad"));
    // What is restored is as alive as it was.
    m_window->tags().removeTag("bad");
    EXPECT_EQ(m_window->filters().filters().size(), 2U);
    UndoStack::history().undo();
    EXPECT_EQ(present(), saved);
}

TEST_F(MainWindowSessionTest, RefusesWhatIsDamagedAndChangesNothing)
{
    openEverything();
    m_window->saveSession(path("good.dvsession"));
    const QByteArray good = read("good.dvsession");
    m_window->assign({"scatter", 1, "x", "Span"});
    const std::string before = present();
    const auto views = m_window->views();
    const int steps = UndoStack::history().count();
    const WeakPtr<Variable> variable = Project::project().variable("Span");

    const struct
    {
        const char* what;
        QByteArray from;
        QByteArray to;
    } damages[] = {
        {"nothing of it", good, ""},
        {"a view's end", "</ScatterPlot2D>", ""},
        {"a number that is too large", "<Opacity>80<", "<Opacity>101<"},
        {"a number that is none", "<PointSize>7<", "<PointSize>seven<"},
        {"a range that is none", "<Range Min=\"0\"", "<Range Min=\"zero\""},
        {"an axis without an end", "<YAxis Fit", "<YAxis Fat"},
        {"a palette that does not exist", "<Palette>Viridis<", "<Palette>Rainbow<"},
        {"a variable that does not exist", "<XVariable>Drag", "<XVariable>Dreg"},
        {"an unknown element", "<PointSize>", "<Point/><PointSize>"},
        {"an element twice",
         "<PointSize>7</PointSize>",
         "<PointSize>7</PointSize><PointSize>8</PointSize>"},
        {"an unknown kind of view", "Kind=\"scatter\"", "Kind=\"pie\""},
        {"the state of another kind", "ScatterPlot2D>", "LinePlot>"},
        {"a layout that is none", "<Views>AAAA", "<Views>BBBB"},
        {"a tag that is there already", "Name=\"bad\"", "Name=\"FILE\""},
        {"a case that does not exist", "<Selection>2,", "<Selection>99,"},
        {"a filter on nothing", "Of=\"Material\"", "Of=\"Matter\""},
        {"an image that is not there", "\"2.png\"", "\"no.png\""},
        {"a newer version", "Version=\"1\"", "Version=\"2\""},
        {"a study that moved", "study.csv", "studies.csv"},
        {"a document type", "<DataViewsSession ", "<!DOCTYPE x><DataViewsSession "},
    };

    for (const auto& damage : damages) {
        QByteArray bad = good;
        bad.replace(damage.from, damage.to);
        ASSERT_NE(bad, good) << damage.what;
        write("bad.dvsession", bad);
        const QString told = openSession("bad.dvsession");
        EXPECT_TRUE(told.startsWith("refused: ")) << damage.what << told.toStdString();
        EXPECT_FALSE(told.contains('\n')) << told.toStdString();
        EXPECT_EQ(present(), before) << damage.what;
        ASSERT_EQ(m_window->views(), views) << damage.what;
        EXPECT_EQ(UndoStack::history().count(), steps);
        EXPECT_FALSE(variable.expired());
    }
    EXPECT_TRUE(openSession("missing.dvsession").startsWith("refused: "));

    UndoStack::history().undo();
    EXPECT_EQ(present(), withoutLayout(good));
}

TEST_F(MainWindowSessionTest, FollowsTheCasesOfAStudyThatHasChanged)
{
    openEverything();
    m_window->assign({"selected-cases", 1, "reference", "case 3"});
    m_window->assign({"image-diff", 1, "reference", "6"});
    m_window->saveSession(path("a.dvsession"));

    // The rows the other way round, without the fifth case, and with other names.
    QList<QByteArray> lines = read("study.csv").trimmed().split('\n');
    const QByteArray header = lines.takeFirst().replace("Lift", "Buoyancy");
    lines.removeAt(4);
    std::reverse(lines.begin(), lines.end());
    write("study.csv", header + '\n' + lines.join('\n') + '\n');

    newWindow();
    const QString told = openSession("a.dvsession");
    ASSERT_FALSE(told.startsWith("refused")) << told.toStdString();
    EXPECT_TRUE(told.contains("5")) << told.toStdString();
    // The former cases 2 and 6; 5 is gone.
    EXPECT_EQ(m_window->selection().getSelections(), (Cases{7, 10}));
    EXPECT_EQ(Project::project().taggedCases("bad"), rows({10, 7}));
    EXPECT_TRUE(Project::project().auxFiles(8).front()->hasTag(" good, \"very\" "));
    EXPECT_EQ(m_window->views().size(), analyzer::viewKinds().size() + 3);
    EXPECT_EQ(setting("selected-cases", "reference"), "case 9");
    EXPECT_EQ(setting("image-diff", "reference"), "7");
}

TEST_F(MainWindowSessionTest, NothingIsLostWhereASessionCannotBeSaved)
{
    EXPECT_THROW(m_window->saveSession(path("none.dvsession")), ExceptionBase) << "no study";
    ASSERT_TRUE(openStudyIn(*m_window, writeSmallImageStudy(m_folder.path())));
    EXPECT_THROW(m_window->saveSession("/dev/full"), ExceptionBase);
    EXPECT_THROW(m_window->saveSession(path("gone/a.dvsession")), ExceptionBase);
    m_window->saveSession(path("a.dvsession"));
    EXPECT_EQ(openSession("a.dvsession"), QString());
}

/// Sessions of every version are read for ever.
TEST_F(MainWindowSessionTest, ReadsTheSessionsOfEarlierVersions)
{
    writeSmallImageStudy(m_folder.path());
    ASSERT_TRUE(
        QFile::copy(QStringLiteral(SESSIONS_FOLDER "/version1.dvsession"), path("a.dvsession")));

    ASSERT_EQ(openSession("a.dvsession"), QString());

    EXPECT_EQ(m_window->views().size(), 11U);
    EXPECT_EQ(m_window->selection().getSelections(), (Cases{2, 5, 6}));
    EXPECT_EQ(m_window->filters().filters().size(), 3U);
    EXPECT_EQ(Project::project().taggedCases("bad"), rows({0, 3, 4}));
    const auto chart = boost::dynamic_pointer_cast<analyzer::ScatterPlotView>(m_window->views()[1]);
    ASSERT_TRUE(chart);
    EXPECT_EQ(chart->title(), std::string(oddName) + " over " + oddName + ", colored by Material");
}

} // namespace
