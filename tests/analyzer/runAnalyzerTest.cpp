#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Result
{
    int status;
    QString output;
    QString errors;
};

/// Runs the program; without a display if \p display is false.
Result run(const QStringList& arguments, bool display = false)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_FATAL_WARNINGS"));
    // Leaks of the program's windows are looked for in the tests of the windows; here the OpenGL driver's would count.
    environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
    if (!display) {
        environment.remove(QStringLiteral("DISPLAY"));
    }
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(ANALYZER_PROGRAM), arguments);
    constexpr int patience = 60000; // milliseconds
    EXPECT_TRUE(process.waitForFinished(patience));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    // How fast the machine is, is not what is tested.
    const QRegularExpression stalls(
        QStringLiteral("^The event loop stood still [^\\n]*\\n"),
        QRegularExpression::MultilineOption);
    return {
        process.exitCode(),
        QString::fromUtf8(process.readAllStandardOutput()),
        QString::fromUtf8(process.readAllStandardError()).remove(stalls)};
}

class RunAnalyzerTest : public testing::Test
{
protected:
    QString write(const QString& name, const QByteArray& content) const
    {
        const QString path = m_folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(RunAnalyzerTest, PrintsInfoHelpAndVersionWithoutADisplay)
{
    const QString study = write(QStringLiteral("a.csv"), "x,y\n1,2\n3,\n5,6,7\n");

    const Result info = run({QStringLiteral("--info"), study});
    EXPECT_EQ(info.status, 0);
    for (const char* line :
         {"cases: 3\n",
          "variables: 2\n",
          "images: 0\n",
          "missing values: 1\n",
          "refused lines: 1\n"}) {
        EXPECT_TRUE(info.output.contains(QString::fromUtf8(line)))
            << line << info.output.toStdString();
    }
    EXPECT_TRUE(run({QStringLiteral("--help")}).output.startsWith(QStringLiteral("Usage: ")));
    EXPECT_TRUE(run({QStringLiteral("--version")})
                    .output.startsWith(QStringLiteral("dataviews-analyzer ")));
}

TEST_F(RunAnalyzerTest, TellsInOneLineWhatCannotBeDone)
{
    const QString fifo = m_folder.filePath(QStringLiteral("fifo.csv"));
    ASSERT_EQ(mkfifo(fifo.toLocal8Bit().constData(), 0600), 0);
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("nothing")));
    QByteArray wide;
    for (int i = 0; i < 1000000; ++i) {
        wide += "c,";
    }
    QStringList bad{
        m_folder.filePath(QStringLiteral("nowhere.csv")),
        fifo,
        m_folder.filePath(QStringLiteral("nothing")),
        write(QStringLiteral("empty.csv"), ""),
        write(QStringLiteral("wide.csv"), wide + "\n1\n"),
        write(
            QStringLiteral("binary.csv"),
            QByteArray(
                "\x7f"
                "ELF\0\0\x01\x02\0",
                9)),
    };
    if (geteuid() != 0) {
        const QString locked = write(QStringLiteral("locked.csv"), "x\n1\n");
        QFile::setPermissions(locked, QFile::Permissions());
        bad.append(locked);
    }
    for (const QString& path : bad) {
        SCOPED_TRACE(path.toStdString());
        const Result result = run({QStringLiteral("--info"), path});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors.count(QLatin1Char('\n')), 1) << result.errors.toStdString();
        EXPECT_TRUE(result.output.isEmpty());
    }
}

TEST_F(RunAnalyzerTest, TellsWrongUseApart)
{
    const QString study = write(QStringLiteral("a.csv"), "x,y\n1,2\n3,4\n");

    EXPECT_EQ(run({QStringLiteral("--colour")}).status, 2);
    EXPECT_EQ(run({QStringLiteral("--info")}).status, 2);
    const Result unknown =
        run({study,
             QStringLiteral("--set"),
             QStringLiteral("scatter.colour=x"),
             QStringLiteral("--screenshot"),
             m_folder.filePath(QStringLiteral("a.png"))},
            true);
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(unknown.errors.contains(QStringLiteral("colour"))) << unknown.errors.toStdString();
}

TEST_F(RunAnalyzerTest, WritesAPictureOfTheWindowAsAsked)
{
    const QString study = write(QStringLiteral("a.csv"), "x,y,z\n1.5,2,3\n3,4.5,9\n4,4,4\n");
    const QString picture = m_folder.filePath(QStringLiteral("a.png"));

    const Result result =
        run({study,
             QStringLiteral("--view"),
             QStringLiteral("scatter"),
             QStringLiteral("--set"),
             QStringLiteral("scatter.y=z"),
             QStringLiteral("--select"),
             QStringLiteral("1,3"),
             QStringLiteral("--size"),
             QStringLiteral("900x600"),
             QStringLiteral("--screenshot"),
             picture},
            true);

    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
    const QImage image(picture);
    EXPECT_EQ(image.size(), QSize(900, 600));
    // The selected points have a color that nothing else in the window has.
    int selectedPixels = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            selectedPixels += image.pixelColor(x, y) == QColor(213, 94, 0) ? 1 : 0;
        }
    }
    EXPECT_GT(selectedPixels, 20);

    EXPECT_EQ(
        run({study,
             QStringLiteral("--select"),
             QStringLiteral("99"),
             QStringLiteral("--screenshot"),
             picture},
            true)
            .status,
        1);
    EXPECT_EQ(
        run({study, QStringLiteral("--screenshot"), QStringLiteral("/nowhere/a.png")}, true).status,
        1);
}

TEST_F(RunAnalyzerTest, WritesTheCasesThatPassTheFilters)
{
    const QString study =
        write(QStringLiteral("a.csv"), "x,name\n0.1,\"a, b\"\n3,\n4e-20,=c\n,d\n");
    const QString exported = m_folder.filePath(QStringLiteral("b.csv"));
    const QString picture = m_folder.filePath(QStringLiteral("a.png"));
    const auto written = [&] {
        QFile file(exported);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(not there)");
    };

    const Result all = run({study, QStringLiteral("--export-csv"), exported}, true);
    EXPECT_EQ(all.status, 0) << all.errors.toStdString();
    EXPECT_EQ(written(), "Case ID,x,name\n1,0.1,\"a, b\"\n2,3,\n3,4e-20,=c\n4,,d\n");
    const Result some =
        run({study,
             QStringLiteral("--filter"),
             QStringLiteral("x=0..1"),
             QStringLiteral("--select"),
             QStringLiteral("2"),
             QStringLiteral("--export-csv"),
             exported,
             QStringLiteral("--screenshot"),
             picture},
            true);
    EXPECT_EQ(some.status, 0) << some.errors.toStdString();
    EXPECT_EQ(written(), "Case ID,x,name\n1,0.1,\"a, b\"\n3,4e-20,=c\n");
    EXPECT_FALSE(QImage(picture).isNull());

    const QByteArray before = written();
    for (const QStringList& wrong :
         {QStringList{QStringLiteral("/nowhere/b.csv")},
          QStringList{QStringLiteral("/dev/full")},
          QStringList{m_folder.path()},
          QStringList{exported, QStringLiteral("--select"), QStringLiteral("99")}}) {
        SCOPED_TRACE(wrong[0].toStdString());
        const Result refused =
            run(QStringList{study, QStringLiteral("--export-csv")} + wrong, true);
        EXPECT_EQ(refused.status, 1);
        EXPECT_EQ(refused.errors.count(QLatin1Char('\n')), 1) << refused.errors.toStdString();
    }
    EXPECT_EQ(written(), before);
}

TEST_F(RunAnalyzerTest, WritesAPictureOfAPageOfImages)
{
    const QColor colors[] = {QColor(10, 140, 60), QColor(160, 40, 200)};
    for (int i = 0; i < 4; ++i) {
        QImage image(300, 200, QImage::Format_RGB32);
        image.fill(colors[i % 2]);
        ASSERT_TRUE(image.save(m_folder.filePath(QStringLiteral("%1.png").arg(i))));
    }
    const QString study = write(
        QStringLiteral("data.csv"),
        "Span,Time,FILE\n1,0.5,0.png\n1,1.5,1.png\n2,0.5,2.png\n2,1.5,3.png\n");
    const QString picture = m_folder.filePath(QStringLiteral("page.png"));
    const auto runWith = [&](const QStringList& settings) {
        QStringList arguments{
            study,
            QStringLiteral("--view"),
            QStringLiteral("images"),
            QStringLiteral("--size"),
            QStringLiteral("900x600"),
            QStringLiteral("--screenshot"),
            picture};
        for (const QString& setting : settings) {
            arguments += {QStringLiteral("--set"), QStringLiteral("images.") + setting};
        }
        return run(arguments, true);
    };

    const Result result = runWith(
        {QStringLiteral("row=Span"),
         QStringLiteral("column=(all)"),
         QStringLiteral("page=Time"),
         QStringLiteral("pages-by=variable"),
         QStringLiteral("page-value=1.5"),
         QStringLiteral("zoom=10")});

    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
    const QImage image(picture);
    ASSERT_EQ(image.size(), QSize(900, 600));
    int pixels[] = {0, 0};
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            for (int i = 0; i < 2; ++i) {
                pixels[i] += image.pixelColor(x, y) == colors[i] ? 1 : 0;
            }
        }
    }
    EXPECT_EQ(pixels[0], 0) << "of the other page";
    // Two pictures in boxes of 125 x 125.
    EXPECT_EQ(pixels[1], 2 * 125 * 83);

    ASSERT_TRUE(QFile::remove(picture));
    for (const char* wrong : {"zoom=1000", "row=Wing", "pages-by=Time", "page-value=1.5"}) {
        SCOPED_TRACE(wrong);
        const Result refused = runWith({QString::fromLatin1(wrong)});
        EXPECT_EQ(refused.status, 1);
        EXPECT_EQ(refused.errors.count(QLatin1Char('\n')), 1) << refused.errors.toStdString();
        EXPECT_FALSE(QFile::exists(picture));
    }
}
