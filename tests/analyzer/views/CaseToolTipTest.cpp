#include <analyzer/views/CaseToolTip.h>

#include <dataviews/common/images/AsyncImageCache.h>

#include <dataviews/platform/data/Project.h>

#include <QApplication>
#include <QEventLoop>
#include <QPixmap>
#include <QSemaphore>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkStringArray.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace analyzer {

namespace {

constexpr QPoint mouse(300, 300);

void runUntil(const std::function<bool()>& isDone)
{
    while (!isDone()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

/// "A" to "M" with the values 1 to 13 in case 1 and none in case 2, and a "Note"; case 2 has a picture, case 3 one
/// that cannot be shown.
class CaseToolTipTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_toolTip.setDelays(0, 60000);
        Project study;
        study.setCaseCount(3);
        for (char name = 'A'; name <= 'M'; ++name) {
            const vtkNew<vtkDoubleArray> column;
            column->SetName(std::string(1, name).c_str());
            column->InsertNextValue(name - 'A' + 1 + 1.0 / 3.0);
            column->InsertNextValue(std::numeric_limits<double>::quiet_NaN());
            column->InsertNextValue(0.0);
            study.addVariable(column.Get(), Variable::Output);
        }
        const vtkNew<vtkStringArray> notes;
        notes->SetName("<i>Note</i>");
        for (const char* note : {"<b>bold</b>\nand & more", "", ""}) {
            notes->InsertNextValue(note);
        }
        study.addVariable(notes.Get(), Variable::Output);
        study.addAuxFile(1, "/two.png");
        study.addAuxFile(1, "/other.png");
        study.addAuxFile(2, "/bad.png");
        Project::project().replaceStudy(study);
    }

    void TearDown() override
    {
        m_decodes.release(100);
        m_toolTip.leave();
        Project nothing;
        Project::project().replaceStudy(nothing);
    }

    void show(unsigned long long caseID, const std::vector<const char*>& names = {})
    {
        std::vector<WeakPtr<Variable>> variables;
        for (const char* name : names) {
            variables.push_back(Project::project().variable(name));
        }
        m_toolTip.showCase(caseID, variables, mouse);
        runUntil([this] { return m_toolTip.isVisible(); });
    }

    [[nodiscard]] std::vector<std::pair<QString, QString>> values() const
    {
        std::vector<std::pair<QString, QString>> texts;
        for (const CaseToolTip::Value& value : m_toolTip.values()) {
            texts.emplace_back(value.name, value.value);
        }
        return texts;
    }

    QSemaphore m_decodes; ///< what may be decoded
    boost::shared_ptr<AsyncImageCache> m_images = boost::make_shared<AsyncImageCache>(
        AsyncImageCache::defaultBudgetBytes, 1, [this](const std::string& path, const QSize& size) {
            m_decodes.acquire();
            ImageFileReading reading;
            if (path == "/two.png") {
                reading.image = QImage(size.width(), size.height() / 2, QImage::Format_RGB32);
                reading.image.fill(Qt::red);
            } else {
                reading.problem = "It is bad";
            }
            return reading;
        });
    CaseToolTip m_toolTip{m_images};
};

} // namespace

TEST_F(CaseToolTipTest, ShowsTheChosenVariablesFirstAndTenInAll)
{
    show(1, {"L", "<i>Note</i>", "no such variable", "C", "L"});

    const std::vector<std::pair<QString, QString>> expected{
        {"L", "12.3333"},
        {"<i>Note</i>", "<b>bold</b> and & more"},
        {"C", "3.33333"},
        {"A", "1.33333"},
        {"B", "2.33333"},
        {"D", "4.33333"},
        {"E", "5.33333"},
        {"F", "6.33333"},
        {"G", "7.33333"},
        {"H", "8.33333"}};
    EXPECT_EQ(m_toolTip.title(), "Case 1");
    EXPECT_EQ(values(), expected);
    EXPECT_EQ(m_toolTip.furtherText(), "…and 4 more");

    m_toolTip.showCase(2, {}, mouse);
    EXPECT_EQ(values().front(), std::make_pair(QString("A"), QString("(missing)")));
}

TEST_F(CaseToolTipTest, SmallStudyIsShownWhole)
{
    Project study;
    study.setCaseCount(1);
    Project::project().replaceStudy(study);

    show(1);

    EXPECT_EQ(m_toolTip.title(), "Case 1");
    EXPECT_TRUE(m_toolTip.values().empty());
    EXPECT_EQ(m_toolTip.furtherText(), QString());
}

TEST_F(CaseToolTipTest, PictureComesLaterAndMakesItsRoom)
{
    show(2);
    const QSize before = m_toolTip.size();
    EXPECT_TRUE(m_toolTip.picture().isNull());

    m_decodes.release();
    runUntil([this] { return !m_toolTip.picture().isNull(); });

    EXPECT_GE(m_toolTip.height(), before.height() + CaseToolTip::largestPicturePx / 2);
    EXPECT_EQ(m_images->decodeCount(), 1U); // the first picture alone
    const QImage picture = m_toolTip.grab().toImage();
    EXPECT_EQ(picture.pixelColor(picture.width() / 4, picture.height() * 3 / 4), QColor(Qt::red));

    m_toolTip.leave();
    show(2);
    EXPECT_FALSE(m_toolTip.picture().isNull()); // kept
    show(1);
    EXPECT_TRUE(m_toolTip.picture().isNull());
    runUntil([this] { return m_toolTip.title() == "Case 1"; });
    EXPECT_LE(m_toolTip.height(), before.height());
}

TEST_F(CaseToolTipTest, PictureThatCannotBeShownTakesNoRoom)
{
    show(1);
    const int without = m_toolTip.height();

    show(3);
    m_decodes.release();
    runUntil([this] { return m_images->decodeCount() == 1; });
    QApplication::processEvents();

    EXPECT_TRUE(m_toolTip.picture().isNull());
    EXPECT_EQ(m_toolTip.height(), without);
}

TEST_F(CaseToolTipTest, AppearsAfterARestAndAtOnceAfterAnother)
{
    m_toolTip.setDelays(60000, 60000);
    m_toolTip.showCase(1, {}, mouse);
    QApplication::processEvents();
    EXPECT_FALSE(m_toolTip.isVisible());
    m_toolTip.leave();
    m_toolTip.setDelays(0, 60000);
    m_toolTip.showCase(1, {}, mouse);
    EXPECT_FALSE(m_toolTip.isVisible());
    runUntil([this] { return m_toolTip.isVisible(); });

    m_toolTip.setDelays(60000, 60000);
    m_toolTip.showCase(2, {}, mouse);
    EXPECT_EQ(m_toolTip.title(), "Case 2");
    m_toolTip.leave();
    EXPECT_FALSE(m_toolTip.isVisible());
    m_toolTip.showCase(3, {}, mouse);
    EXPECT_TRUE(m_toolTip.isVisible());
    m_toolTip.showCase(77, {}, mouse);
    EXPECT_FALSE(m_toolTip.isVisible()) << "there is no such case";
}

TEST_F(CaseToolTipTest, LongTextsAreCutShort)
{
    Project study;
    study.setCaseCount(1);
    const vtkNew<vtkStringArray> column;
    column->SetName(std::string(500, 'n').c_str());
    column->InsertNextValue(std::string(5000, 'v'));
    study.addVariable(column.Get(), Variable::Output);
    Project::project().replaceStudy(study);

    show(1);

    EXPECT_LT(m_toolTip.width(), m_toolTip.fontMetrics().averageCharWidth() * 100);
}

TEST_F(CaseToolTipTest, LiesBesideTheMouseOnTheScreen)
{
    const QRect screen(100, 50, 1000, 800);
    const QSize size(300, 200);

    const struct
    {
        QPoint mouse;
        bool isRight;
        bool isBelow;
    } places[] = {
        {{500, 400}, true, true},
        {{1000, 400}, false, true},
        {{500, 800}, true, false},
        {{1099, 849}, false, false},
        {{100, 50}, true, true},
    };

    for (const auto& place : places) {
        const QRect toolTip(CaseToolTip::placeBeside(place.mouse, size, screen), size);
        EXPECT_TRUE(screen.contains(toolTip));
        EXPECT_EQ(toolTip.left() > place.mouse.x(), place.isRight);
        EXPECT_EQ(toolTip.top() > place.mouse.y(), place.isBelow);
        EXPECT_FALSE(toolTip.contains(place.mouse));
    }

    // Too wide for either side.
    const QSize wide(700, 200);
    const QPoint middle(600, 400);
    const QRect toolTip(CaseToolTip::placeBeside(middle, wide, screen), wide);
    EXPECT_TRUE(screen.contains(toolTip));
    EXPECT_FALSE(toolTip.contains(middle));
}

} // namespace analyzer
