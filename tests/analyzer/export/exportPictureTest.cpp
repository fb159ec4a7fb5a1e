#include <analyzer/export/exportPicture.h>
#include <analyzer/views/CaseTableView.h>
#include <analyzer/views/CaseTableWidget.h>
#include <analyzer/views/ImageMatrixView.h>
#include <analyzer/views/LinePlotView.h>
#include <analyzer/views/PointColors.h>
#include <analyzer/views/ScatterPlotView.h>
#include <analyzer/views/ViewServices.h>

#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageLoader.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>

#include <vtkAxis.h>
#include <vtkChartLegend.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include <tests/support/SmallStudy.h>

namespace analyzer {

namespace {

constexpr double inchesPerMeter = 1.0 / 0.0254;

/// How many pixels are clearly different from the first one.
int inkPixels(const QImage& image)
{
    const QRgb background = image.pixel(0, 0);
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += std::abs(qGray(image.pixel(x, y)) - qGray(background)) > 40 ? 1 : 0;
        }
    }
    return count;
}

/// The largest difference of gray between pictures of one size that are looked at from so far away that an edge a pixel
/// off does not matter.
int differenceFromAfar(const QImage& first, const QImage& second)
{
    constexpr int coarse = 8;
    const QSize size = first.size() / coarse;
    const QImage a = first.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage b = second.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    int largest = 0;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            largest = std::max(largest, std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))));
        }
    }
    return largest;
}

class ExportPictureTest : public testing::Test
{
protected:
    void SetUp() override
    {
        constexpr std::size_t cases = 60;
        std::vector<double> x;
        std::vector<double> y;
        std::vector<std::string> kinds;
        for (std::size_t i = 0; i < cases; ++i) {
            x.push_back(static_cast<double>(i));
            y.push_back(std::sin(static_cast<double>(i) / 5.0));
            kinds.push_back(i % 2 == 0 ? "even" : "odd");
        }
        m_study.add("Speed", x, Variable::Input).add("Drag", y).add("Kind", kinds).open();
        m_master->takeSelection({3, 30});
    }

    void TearDown() override { UndoStack::history().clear(); }

    [[nodiscard]] ViewServices services()
    {
        return {m_pipeline, m_master, {}, {}, boost::make_shared<HoveredCase>()};
    }

    template <class View>
    static void show(View& view)
    {
        view.widget().resize(600, 400);
        view.widget().show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view.widget()));
        view.render();
    }

    boost::shared_ptr<ScatterPlotView> shownScatter()
    {
        const auto view = boost::make_shared<ScatterPlotView>(services());
        view->colors().variable()->setValue(Project::project().variable("Kind"));
        show(*view);
        return view;
    }

    [[nodiscard]] std::string path(const char* name) const
    {
        return m_folder.filePath(QString::fromUtf8(name)).toStdString();
    }

    static QByteArray content(const std::string& path)
    {
        QFile file(QString::fromStdString(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(not there)");
    }

    QTemporaryDir m_folder;
    SmallStudy m_study{60};
    DataPipelineManager m_pipeline{Project::project()};
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
};

} // namespace

TEST_F(ExportPictureTest, GivesPngTheSizeAndTheResolutionAskedFor)
{
    const auto view = shownScatter();

    exportPicture(*view, path("ä.PNG"), {QSize(1501, 1000), 300});

    const QImage image(QString::fromStdString(path("ä.PNG")));
    EXPECT_EQ(image.size(), QSize(1501, 1000));
    EXPECT_EQ(image.dotsPerMeterX(), std::lround(300 * inchesPerMeter));
    EXPECT_EQ(image.dotsPerMeterY(), image.dotsPerMeterX());
    EXPECT_GT(inkPixels(image), 10000);
}

TEST_F(ExportPictureTest, LooksLikeTheScreen)
{
    const auto scatter = shownScatter();
    const auto line = boost::make_shared<LinePlotView>(services());
    show(*line);
    const auto table = boost::make_shared<CaseTableView>(m_pipeline, m_master);
    show(*table);

    for (AnalyzerViewInterface* view :
         std::vector<AnalyzerViewInterface*>{scatter.get(), line.get()}) {
        SCOPED_TRACE(view->kind());
        const QImage screen = view->widget().grab().toImage();

        const QImage picture = pictureOf(*view);

        ASSERT_EQ(picture.size(), screen.size());
        EXPECT_GT(inkPixels(picture), 1000);
        // Letters and soft edges differ.
        EXPECT_LT(differenceFromAfar(picture, screen), 80);
        EXPECT_NEAR(inkPixels(picture), inkPixels(screen), 0.35 * inkPixels(screen));
    }
    EXPECT_GT(inkPixels(pictureOf(*table)), 1000);
}

TEST_F(ExportPictureTest, EnlargesEverythingWithTheResolution)
{
    const auto view = shownScatter();
    const int dpi = view->widget().logicalDpiX();

    const QImage normal = pictureOf(*view);
    const QImage fine = pictureOf(*view, {QSize(1800, 1200), 3 * dpi});
    const QImage wide = pictureOf(*view, {QSize(1800, 1200), dpi});

    EXPECT_LT(
        differenceFromAfar(
            fine.scaled(normal.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation), normal),
        40);
    EXPECT_GT(inkPixels(fine), 5 * inkPixels(normal));
    EXPECT_LT(inkPixels(wide), inkPixels(fine))
        << "texts and points stay as small as on the screen";
}

TEST_F(ExportPictureTest, LeavesTheViewAsItIs)
{
    const auto chart = shownScatter();
    chart->render();
    const auto table = boost::make_shared<CaseTableView>(m_pipeline, m_master);
    show(*table);
    QScrollBar& scroll = *table->table().verticalScrollBar();
    scroll.setValue(scroll.maximum());
    chart->chart().GetAxis(vtkAxis::BOTTOM)->SetRange(7, 21);
    chart->render();
    UndoStack::history().clear();
    const QImage chartBefore = chart->widget().grab().toImage();
    const QImage tableBefore = table->widget().grab().toImage();
    const int scrolled = scroll.value();

    for (AnalyzerViewInterface* view :
         std::vector<AnalyzerViewInterface*>{chart.get(), table.get()}) {
        SCOPED_TRACE(view->kind());
        for (const PictureFormat format :
             {PictureFormat::Png, PictureFormat::Svg, PictureFormat::Pdf}) {
            (void)pictureBytes(*view, format, {QSize(1300, 1500), 50});
            (void)pictureBytes(*view, format, {QSize(300, 200), 150});
        }
        EXPECT_EQ(view->widget().size(), QSize(600, 400));
    }

    EXPECT_EQ(UndoStack::history().count(), 0);
    EXPECT_EQ(m_master->getSelections(), (std::set<unsigned long long>{3, 30}));
    EXPECT_EQ(scroll.value(), scrolled);
    EXPECT_EQ(table->widget().grab().toImage(), tableBefore);
    EXPECT_EQ(chart->chart().GetAxis(vtkAxis::BOTTOM)->GetMinimum(), 7);
    EXPECT_EQ(chart->chart().GetAxis(vtkAxis::BOTTOM)->GetMaximum(), 21);
    EXPECT_EQ(chart->widget().grab().toImage(), chartBefore);
}

TEST_F(ExportPictureTest, DrawsViewsThatWereNeverShown)
{
    const auto shown = boost::make_shared<ScatterPlotView>(services());
    show(*shown);
    const auto hidden = boost::make_shared<ScatterPlotView>(services());
    const auto table = boost::make_shared<CaseTableView>(m_pipeline, m_master);

    const QImage picture = pictureOf(*hidden, {QSize(600, 400), 0});

    EXPECT_LT(differenceFromAfar(picture, pictureOf(*shown)), 30);
    EXPECT_GT(inkPixels(pictureOf(*table, {QSize(600, 400), 0})), 1000);
    EXPECT_FALSE(hidden->widget().isVisible());
}

TEST_F(ExportPictureTest, WaitsForImagesAndEmbedsThem)
{
    Project study;
    study.setCaseCount(2);
    study.addTagGroup("Images");
    study.addTag("Images", "front");
    for (std::size_t row = 0; row < 2; ++row) {
        const QString file = m_folder.filePath(QStringLiteral("%1.png").arg(row));
        QImage image(300, 300, QImage::Format_RGB32);
        image.fill(qRgb(255, 0, 0));
        ASSERT_TRUE(image.save(file));
        study.tagAuxFile(*study.addAuxFile(row, file.toStdString()), "front", true);
    }
    Project::project().replaceStudy(study);
    DataPipelineManager pipeline(Project::project());
    const auto images = boost::make_shared<AsyncImageCache>();
    const auto view =
        boost::make_shared<ImageMatrixView>(pipeline, m_master, images->imageLoader());

    const QImage picture = pictureOf(*view, {QSize(600, 400), 0});

    int red = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            red += qRed(pixel) > 150 && qGreen(pixel) < 60 ? 1 : 0;
        }
    }
    EXPECT_GT(red, 5000);
    EXPECT_FALSE(view->isLoading());
    const QByteArray svg = pictureBytes(*view, PictureFormat::Svg, {QSize(600, 400), 0});
    QDomDocument document;
    ASSERT_TRUE(document.setContent(svg));
    EXPECT_EQ(document.elementsByTagName(QStringLiteral("image")).count(), 1)
        << "one picture, for nothing in it can be clipped";
    EXPECT_EQ(document.elementsByTagName(QStringLiteral("text")).count(), 0);
}

TEST_F(ExportPictureTest, WritesSvgWithTextsAndAShapeForEachPoint)
{
    const auto view = shownScatter();

    exportPicture(*view, path("a.svg"), {QSize(1200, 800), 2 * view->widget().logicalDpiX()});

    QDomDocument document;
    ASSERT_TRUE(document.setContent(content(path("a.svg"))));
    EXPECT_EQ(document.documentElement().tagName(), QStringLiteral("svg"));
    EXPECT_EQ(
        document.documentElement().attribute(QStringLiteral("viewBox")),
        QStringLiteral("0 0 600 400"));
    QStringList texts;
    const QDomNodeList elements = document.elementsByTagName(QStringLiteral("text"));
    for (int i = 0; i < elements.count(); ++i) {
        texts.append(elements.at(i).toElement().text().trimmed());
    }
    for (const char* text : {"Speed", "Drag", "Kind", "even", "odd"}) {
        EXPECT_TRUE(texts.contains(QString::fromLatin1(text))) << text;
    }
    EXPECT_GE(document.elementsByTagName(QStringLiteral("circle")).count(), 60);
    EXPECT_EQ(document.elementsByTagName(QStringLiteral("image")).count(), 0);
}

TEST_F(ExportPictureTest, WritesPdfWithOnePageOfTheSizeAskedFor)
{
    const auto view = shownScatter();

    for (const QSize size : {QSize(1200, 600), QSize(600, 1200)}) {
        exportPicture(*view, path("a.pdf"), {size, 300});

        const QByteArray bytes = content(path("a.pdf"));
        EXPECT_TRUE(bytes.startsWith("%PDF-"));
        EXPECT_EQ(bytes.count("/Type /Page\n"), 1);
        constexpr int longest = 80;
        const QRegularExpression box(QStringLiteral("\\[0 0 ([0-9.]+) ([0-9.]+)\\]"));
        const QRegularExpressionMatch match =
            box.match(QString::fromLatin1(bytes.mid(bytes.indexOf("/MediaBox"), longest)));
        ASSERT_TRUE(match.hasMatch());
        EXPECT_NEAR(match.captured(1).toDouble(), size.width() * 72.0 / 300.0, 1.0);
        EXPECT_NEAR(match.captured(2).toDouble(), size.height() * 72.0 / 300.0, 1.0);
    }
}

TEST_F(ExportPictureTest, PaintsVeryManyPointsAsTheScreenDoes)
{
    constexpr std::size_t cases = 30000;
    SmallStudy study{cases};
    std::vector<double> x;
    std::vector<double> y;
    for (std::size_t i = 0; i < cases; ++i) {
        // Denser toward the middle.
        const double angle = 2.4 * static_cast<double>(i);
        const double radius = static_cast<double>(i) / cases;
        x.push_back(radius * radius * std::cos(angle));
        y.push_back(radius * radius * std::sin(angle));
    }
    study.add("Speed", x).add("Drag", y).open();
    DataPipelineManager pipeline(Project::project());
    const auto selection = boost::make_shared<SelectionModel>();
    std::set<unsigned long long> half;
    for (unsigned long long id = 1; id <= cases / 2; ++id) {
        half.insert(id);
    }
    for (const bool isColored : {false, true}) {
        for (const bool isSelected : {false, true}) {
            SCOPED_TRACE(testing::Message() << isColored << isSelected);
            ScatterPlotView view({pipeline, selection, {}, {}, boost::make_shared<HoveredCase>()});
            if (isColored) {
                view.colors().variable()->setValue(Project::project().variable("Drag"));
            }
            selection->takeSelection(isSelected ? half : std::set<unsigned long long>());
            show(view);
            const QImage screen = view.widget().grab().toImage();
            const int dpi = view.widget().logicalDpiX();

            const QImage picture = pictureOf(view);
            const QImage fine = pictureOf(view, {3 * screen.size(), 3 * dpi});
            const QByteArray svg = pictureBytes(view, PictureFormat::Svg);

            // Beside the large letters of the color legend.
            const auto points = [&](const QImage& image) { return image.copy(0, 0, 400, 400); };
            EXPECT_LT(differenceFromAfar(points(picture), points(screen)), 40);
            EXPECT_NEAR(inkPixels(picture), inkPixels(screen), 0.1 * inkPixels(screen));
            const QImage reduced =
                fine.scaled(screen.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
            EXPECT_LT(differenceFromAfar(points(reduced), points(screen)), 40);
            QDomDocument document;
            ASSERT_TRUE(document.setContent(svg));
            const QDomNodeList images = document.elementsByTagName(QStringLiteral("image"));
            ASSERT_EQ(images.count(), 1);
            EXPECT_LT(document.elementsByTagName(QStringLiteral("circle")).count(), 100);
            const QString data = images.at(0).toElement().attribute(QStringLiteral("xlink:href"));
            const QImage embedded = QImage::fromData(
                QByteArray::fromBase64(data.mid(data.indexOf(QLatin1Char(',')) + 1).toLatin1()));
            EXPECT_GT(inkPixels(embedded), inkPixels(screen) / 2);
        }
    }
}

TEST_F(ExportPictureTest, LeavesTheOldFileWhenItIsCancelledAtAnyTime)
{
    const auto chart = shownScatter();
    const auto table = boost::make_shared<CaseTableView>(m_pipeline, m_master);
    show(*table);
    for (AnalyzerViewInterface* view :
         std::vector<AnalyzerViewInterface*>{chart.get(), table.get()}) {
        for (const char* name : {"a.png", "a.svg", "a.pdf"}) {
            SCOPED_TRACE(view->kind() + ' ' + name);
            QFile old(m_folder.filePath(QString::fromLatin1(name)));
            ASSERT_TRUE(old.open(QIODevice::WriteOnly));
            old.write("old");
            old.close();
            const ViewPicture picture(*view, pictureFormat(name), {QSize(600, 400), 0});
            const auto goesOnFor = [&](int calls) {
                double last = 0.0;
                return writePicture(picture, path(name), [&](double fraction) {
                    EXPECT_GE(fraction, last);
                    EXPECT_LE(fraction, 1.0);
                    last = fraction;
                    return --calls >= 0;
                });
            };

            int calls = 0;
            while (!goesOnFor(calls)) {
                EXPECT_EQ(content(path(name)), "old") << "cancelled after " << calls << " calls";
                ++calls;
            }

            EXPECT_GE(calls, 1);
            EXPECT_GT(content(path(name)).size(), 1000);
        }
    }
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files).size(), 3);
}

TEST_F(ExportPictureTest, RefusesWhatItCannotDoAndLeavesTheOldFile)
{
    CaseTableView view(m_pipeline, m_master);
    exportPicture(view, path("old.png"));
    const QByteArray old = content(path("old.png"));
    const auto refusal = [&view](const std::string& target, const PictureOptions& options) {
        try {
            exportPicture(view, target, options);
        } catch (const ExceptionBase& error) {
            return std::string(error.what());
        }
        return std::string("(done)");
    };
    QFile::link(QStringLiteral("/dev/full"), m_folder.filePath(QStringLiteral("full.png")));

    const struct
    {
        std::string target;
        PictureOptions options;
        const char* part;
    } cases[] = {
        {path("a.bmp"), {}, "must end in .png, .svg or .pdf."},
        {path("png"), {}, "must end in .png, .svg or .pdf."},
        {path("old.png"), {QSize(20000, 10), 0}, "too large"},
        {path("old.png"), {QSize(10, 10), 5}, "5 dots per inch"},
        {path("old.png"), {QSize(0, 10), 0}, "at least one pixel"},
        {path("gone/a.svg"), {}, "there is no such file or folder."},
        {path("full.png"), {}, "the disk is full."},
    };

    for (const auto& [target, options, part] : cases) {
        const std::string sentence = refusal(target, options);
        EXPECT_NE(sentence.find(part), std::string::npos) << sentence;
        EXPECT_EQ(sentence.back(), '.');
    }
    EXPECT_EQ(content(path("old.png")), old);
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 2)
        << "no temporary file stays";
}

} // namespace analyzer
