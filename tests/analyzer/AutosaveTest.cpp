#include <analyzer/Autosave.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using analyzer::Autosave;

namespace {

/// A program that has kept \p session in \p folder and goes on running until it is killed.
class OtherProgram
{
public:
    OtherProgram(const QString& folder, const QByteArray& session)
    {
        int ends[2] = {};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
        m_process = fork();
        if (m_process == 0) {
            [&]() noexcept { // which ends the child if it fails
                Autosave autosave(folder);
                autosave.save(session);
                close(ends[0]);
                char byte = 'x';
                static_cast<void>(write(ends[1], &byte, 1) + read(ends[1], &byte, 1));
            }();
            _exit(1); // the test program is gone
        }
        close(ends[1]);
        char ready = '\0';
        EXPECT_EQ(read(ends[0], &ready, 1), 1); // nothing, should the child have ended
        m_connection = ends[0];
    }

    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    ~OtherProgram()
    {
        if (m_process > 0) {
            end();
        }
    }

    /// Ends it without having asked it to.
    void end()
    {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
        close(m_connection);
        m_process = 0;
    }

private:
    pid_t m_process = 0;
    int m_connection = -1;
};

class AutosaveTest : public testing::Test
{
protected:
    [[nodiscard]] QString folder() const { return m_folder.filePath("a/b"); }

    /// The sessions kept in the folder, the last one not counted.
    [[nodiscard]] QStringList files() const
    {
        QStringList result;
        for (const QString& name : QDir(folder()).entryList({"autosave-*.dvsession"})) {
            result += folder() + '/' + name;
        }
        return result;
    }

    static QByteArray contentOf(const QString& path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
        return file.readAll();
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(AutosaveTest, WritesWhatHasChangedUntilAnOrderlyEnd)
{
    {
        Autosave autosave(folder());
        EXPECT_FALSE(QFileInfo::exists(folder()));
        autosave.save("first");
        ASSERT_EQ(files().size(), 1);
        const QString path = files()[0];
        EXPECT_EQ(contentOf(path), "first");
        EXPECT_EQ(
            QFile::permissions(folder())
                & (QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther),
            QFile::Permissions());

        ASSERT_TRUE(QFile::remove(path));
        autosave.save("first");
        EXPECT_EQ(files(), QStringList());
        autosave.save("second");
        EXPECT_EQ(files(), QStringList(path));
        EXPECT_EQ(contentOf(path), "second");
    }
    EXPECT_EQ(QDir(folder()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(AutosaveTest, FindsTheFilesOfProgramsThatAreGone)
{
    Autosave autosave(folder());
    EXPECT_EQ(autosave.leftBehind(), QStringList());
    autosave.save("own");
    const QStringList own = files();
    OtherProgram other(folder(), "other");
    EXPECT_EQ(files().size(), 2);
    EXPECT_EQ(autosave.leftBehind(), QStringList());

    other.end();

    const QStringList left = autosave.leftBehind();
    ASSERT_EQ(left.size(), 1);
    EXPECT_EQ(contentOf(left[0]), "other");
    EXPECT_TRUE(autosave.isLeftBehind(left[0]));
    EXPECT_FALSE(autosave.isLeftBehind(own[0]));
    // It belongs to this program now.
    EXPECT_EQ(autosave.leftBehind(), left);
    EXPECT_EQ(Autosave(folder()).leftBehind(), QStringList());

    autosave.forget(left[0]);
    EXPECT_EQ(files(), own);
    EXPECT_EQ(autosave.leftBehind(), QStringList());
}

TEST_F(AutosaveTest, OffersTheNewestFirstAndAgainToTheNextProgram)
{
    QStringList expected;
    for (const int age : {300, 100, 200}) {
        OtherProgram(folder(), QByteArray::number(age)).end();
        for (const QString& path : files()) {
            QFile file(path);
            if (contentOf(path) == QByteArray::number(age)) {
                ASSERT_TRUE(file.open(QIODevice::Append));
                file.setFileTime(
                    QDateTime::currentDateTime().addSecs(-age), QFileDevice::FileModificationTime);
            }
        }
    }

    for (int program = 0; program < 2; ++program) {
        Autosave autosave(folder());
        QStringList ages;
        for (const QString& path : autosave.leftBehind()) {
            ages += QString::fromUtf8(contentOf(path));
        }
        EXPECT_EQ(ages, QStringList({"100", "200", "300"}));
    }
}

TEST_F(AutosaveTest, KeepsTheLastSession)
{
    {
        const Autosave autosave(folder());
        EXPECT_EQ(autosave.lastSession(), QString());
        autosave.saveAsLast("one");
        autosave.saveAsLast("two");
    }
    Autosave next(folder());
    EXPECT_EQ(contentOf(next.lastSession()), "two");
    EXPECT_EQ(next.leftBehind(), QStringList());
}

TEST_F(AutosaveTest, FolderThatCannotBeMadeIsAnError)
{
    QFile file(m_folder.filePath("a"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    for (const QString& path : {folder(), m_folder.filePath("a")}) {
        Autosave autosave(path);
        EXPECT_THROW(autosave.save("x"), ExceptionBase) << qPrintable(path);
        EXPECT_THROW(autosave.saveAsLast("x"), ExceptionBase) << qPrintable(path);
        EXPECT_EQ(autosave.leftBehind(), QStringList());
        EXPECT_EQ(autosave.lastSession(), QString());
    }
    // Once there is room, what could not be kept is.
    Autosave autosave(folder());
    EXPECT_THROW(autosave.save("x"), ExceptionBase);
    file.remove();
    autosave.save("x");
    EXPECT_EQ(files().size(), 1);
}
