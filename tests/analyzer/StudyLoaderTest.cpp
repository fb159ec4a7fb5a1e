#include <analyzer/StudyLoader.h>

#include <dataviews/platform/data/Project.h>

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

using analyzer::ReadStudy;
using analyzer::StudyFingerprint;
using analyzer::StudyLoader;

class StudyLoaderTest : public testing::Test
{
protected:
    QString write(const QString& name, int rows) const
    {
        const QString path = m_folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("x,y\n");
        for (int row = 0; row < rows; ++row) {
            file.write("1.25,3.5\n");
        }
        return path;
    }

    [[nodiscard]] int signalCount() const
    {
        return m_finished.size() + m_failed.size() + m_cancelled.size();
    }

    void waitForSignal() const
    {
        for (int i = 0; i < 2000 && signalCount() == 0; ++i) {
            QTest::qWait(5);
        }
    }

    QTemporaryDir m_folder;
    StudyLoader m_loader;
    QSignalSpy m_finished{&m_loader, &StudyLoader::finished};
    QSignalSpy m_failed{&m_loader, &StudyLoader::failed};
    QSignalSpy m_cancelled{&m_loader, &StudyLoader::cancelled};
};

} // namespace

TEST_F(StudyLoaderTest, DeliversTheStudyOnceInTheThreadOfTheLoader)
{
    const QString path = write(QStringLiteral("a.csv"), 1000);

    m_loader.start(path);
    EXPECT_TRUE(m_loader.isRunning());
    EXPECT_EQ(signalCount(), 0) << "what is read comes through the event loop";
    waitForSignal();

    ASSERT_EQ(m_finished.size(), 1);
    EXPECT_EQ(m_finished[0][0].toString(), path);
    EXPECT_FALSE(m_loader.isRunning());
    EXPECT_EQ(m_loader.takeStudy().project->caseCount(), 1000U);
    EXPECT_EQ(signalCount(), 1);
}

TEST_F(StudyLoaderTest, TellsWhyAStudyCannotBeRead)
{
    m_loader.start(m_folder.filePath(QStringLiteral("nowhere.csv")));
    waitForSignal();

    ASSERT_EQ(m_failed.size(), 1);
    EXPECT_TRUE(m_failed[0][1].toString().contains(QStringLiteral("nowhere.csv")));
    EXPECT_FALSE(m_loader.isRunning());
}

TEST_F(StudyLoaderTest, CancelEndsTheReading)
{
    m_loader.start(write(QStringLiteral("large.csv"), 2000000));
    m_loader.cancel();
    waitForSignal();

    EXPECT_EQ(m_cancelled.size(), 1);
    EXPECT_EQ(signalCount(), 1);
    EXPECT_FALSE(m_loader.isRunning());
}

TEST_F(StudyLoaderTest, AnotherStartTakesThePlaceOfTheRunningOne)
{
    const QString small = write(QStringLiteral("small.csv"), 3);
    m_loader.start(write(QStringLiteral("large.csv"), 500000));

    m_loader.start(small);
    waitForSignal();
    QTest::qWait(50); // for what the first one may have posted

    ASSERT_EQ(m_finished.size(), 1);
    EXPECT_EQ(m_finished[0][0].toString(), small);
    EXPECT_EQ(m_loader.takeStudy().project->caseCount(), 3U);
    EXPECT_EQ(signalCount(), 1);
}

TEST_F(StudyLoaderTest, ChecksWhatIsReadInAnEventOfItsOwnBeforeItIsFinished)
{
    std::size_t checkedCases = 0;
    std::size_t checkedSize = 0;
    int signalsAtNextEvent = -1;
    m_loader.start(
        write(QStringLiteral("a.csv"), 100),
        [&](const ReadStudy& study, const StudyFingerprint& fingerprint) {
            checkedCases = study.project->caseCount();
            checkedSize = fingerprint.size;
            EXPECT_TRUE(m_loader.isRunning());
            QTimer::singleShot(0, &m_loader, [&] { signalsAtNextEvent = signalCount(); });
        });
    waitForSignal();

    EXPECT_EQ(m_finished.size(), 1);
    EXPECT_EQ(checkedCases, 100U);
    EXPECT_GT(checkedSize, 0U);
    EXPECT_EQ(signalsAtNextEvent, 0) << "the window takes what has happened meanwhile";
    EXPECT_EQ(m_loader.takeStudy().project->caseCount(), 100U);
    ASSERT_TRUE(m_loader.fingerprint().has_value());
}

TEST_F(StudyLoaderTest, CancelAfterTheCheckEndsTheReading)
{
    m_loader.start(
        write(QStringLiteral("a.csv"), 100),
        [&](const ReadStudy& /*study*/, const StudyFingerprint& /*fingerprint*/) {
            m_loader.cancel();
        });
    waitForSignal();
    QTest::qWait(20);

    EXPECT_EQ(m_cancelled.size(), 1);
    EXPECT_EQ(signalCount(), 1);
    EXPECT_FALSE(m_loader.isRunning());
}

TEST_F(StudyLoaderTest, MayDieWhileItReads)
{
    StudyLoader loader;

    loader.start(write(QStringLiteral("large.csv"), 500000));
}
