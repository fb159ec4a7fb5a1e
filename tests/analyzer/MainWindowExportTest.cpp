#include <analyzer/MainWindow.h>
#include <analyzer/filters/FilterList.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>

#include <QAction>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace {

using analyzer::MainWindow;

class MainWindowExportTest : public testing::Test
{
protected:
    MainWindowExportTest()
    {
        // The dialog of the program itself, which a test can reach.
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        m_window->setTellsErrorsInDialogs(false);
    }

    ~MainWindowExportTest() override
    {
        m_window.reset();
        Project nothing;
        Project::project().replaceStudy(nothing);
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, false);
    }

    void openStudy()
    {
        const QString path = m_folder.filePath(QStringLiteral("a.csv"));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("x,Name\n1,=a\n2,b\n3,c\n");
        file.close();
        QSignalSpy opened(m_window.get(), &MainWindow::studyOpened);
        m_window->openStudy(path);
        ASSERT_TRUE(opened.wait(30000));
    }

    [[nodiscard]] QAction& action(const QString& text) const
    {
        for (QAction* candidate : m_window->findChildren<QAction*>()) {
            if (candidate->text().remove(QLatin1Char('&')) == text) {
                return *candidate;
            }
        }
        throw std::logic_error("there is no action " + text.toStdString());
    }

    /// Chooses the action and in its dialog the file \p path of kind number \p filter.
    void chooseInDialog(const QString& text, const QString& path, int filter)
    {
        QTimer::singleShot(0, m_window.get(), [this, path, filter] {
            auto* dialog = m_window->findChild<QFileDialog*>();
            ASSERT_NE(dialog, nullptr);
            // It gets the focus when it is there; closed before, that would be an error.
            ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
            dialog->selectNameFilter(dialog->nameFilters().at(filter));
            dialog->setOption(QFileDialog::DontConfirmOverwrite);
            auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            ASSERT_NE(name, nullptr);
            name->setText(path);
            static_cast<QDialog*>(dialog)->accept();
        });
        action(text).trigger();
    }

    [[nodiscard]] QString out() const { return m_folder.filePath(QStringLiteral("out.csv")); }

    [[nodiscard]] QByteArray written() const
    {
        QFile file(out());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(not there)");
    }

    QTemporaryDir m_folder;
    std::unique_ptr<MainWindow> m_window = std::make_unique<MainWindow>();
};

} // namespace

TEST_F(MainWindowExportTest, OffersWhatThereIsToExport)
{
    const QAction& shown = action(QStringLiteral("Cases Shown…"));
    const QAction& selected = action(QStringLiteral("Selected Cases…"));
    EXPECT_FALSE(shown.isEnabled());
    EXPECT_FALSE(selected.isEnabled());

    openStudy();
    EXPECT_TRUE(shown.isEnabled());
    EXPECT_FALSE(selected.isEnabled());
    m_window->selection().setSelection({2});
    EXPECT_TRUE(selected.isEnabled());
    m_window->clearSelection();
    EXPECT_FALSE(selected.isEnabled());
}

TEST_F(MainWindowExportTest, WritesTheCasesShownOrSelected)
{
    openStudy();
    m_window->filters().addRangeFilter("x", {1.0, 2.0});
    m_window->selection().setSelection({1, 3});

    m_window->exportCases(out(), MainWindow::CasesShown);
    EXPECT_EQ(written(), "Case ID,x,Name\n1,1,=a\n2,2,b\n");
    m_window->exportCases(out(), MainWindow::SelectedCases, true);
    EXPECT_EQ(written(), "Case ID,x,Name\n1,1,'=a\n3,3,c\n");
}

TEST_F(MainWindowExportTest, TheMenuWritesWhatItsDialogSays)
{
    openStudy();
    m_window->selection().setSelection({1});

    chooseInDialog(QStringLiteral("Cases Shown…"), out(), 0);
    EXPECT_EQ(written(), "Case ID,x,Name\n1,1,=a\n2,2,b\n3,3,c\n");
    chooseInDialog(QStringLiteral("Selected Cases…"), out(), 1);
    EXPECT_EQ(written(), "Case ID,x,Name\n1,1,'=a\n");
}

TEST_F(MainWindowExportTest, TellsThatAFileCannotBeWritten)
{
    openStudy();
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/full"), out()));
    QSignalSpy errors(m_window.get(), &MainWindow::errorTold);

    chooseInDialog(QStringLiteral("Cases Shown…"), out(), 0);

    ASSERT_EQ(errors.size(), 1);
    EXPECT_TRUE(errors[0][0].toString().contains(out())) << errors[0][0].toString().toStdString();
    EXPECT_THROW(m_window->exportCases(out(), MainWindow::CasesShown), ExceptionBase);
}

TEST_F(MainWindowExportTest, WritesThePipelineTable)
{
    openStudy();
    m_window->filters().addRangeFilter("x", {2.0, 3.0});
    m_window->exportPipelineTable(out());
    EXPECT_EQ(written(), "\"Case ID\",\"x\",\"Name\"\n2,2,\"b\"\n3,3,\"c\"\n");
    EXPECT_THROW(
        m_window->exportPipelineTable(m_folder.filePath(QStringLiteral("no/out.csv"))),
        ExceptionBase);
}

TEST_F(MainWindowExportTest, LeavesTheOldFileWhenThePipelineTableIsCancelled)
{
    openStudy();
    m_window->exportPipelineTable(out());
    const QByteArray old = written();
    const QStringList files = QDir(m_folder.path()).entryList(QDir::Files);
    m_window->filters().addRangeFilter("x", {2.0, 3.0});

    EXPECT_THROW(
        m_window->exportPipelineTable(out(), [](double) { throw std::runtime_error("enough"); }),
        std::runtime_error);

    EXPECT_EQ(written(), old);
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files), files);
}
