#include <analyzer/session/StudyFingerprint.h>

#include <QFile>

#include <gtest/gtest.h>

#include <tests/analyzer/study/TemporaryFolder.h>

using analyzer::fingerprintOf;
using analyzer::StudyFingerprint;

namespace {

bool goOn()
{
    return false;
}

/// Says when the file \p path was written last.
void setWritten(const std::string& path, const QDateTime& time)
{
    QFile file(QString::fromStdString(path));
    ASSERT_TRUE(file.open(QIODevice::Append));
    ASSERT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
}

} // namespace

TEST(StudyFingerprintTest, TellsContentsApart)
{
    const TemporaryFolder folder;
    const QDateTime later = QDateTime::currentDateTime().addSecs(60);
    const std::string content(3000000, 'x');
    std::string other = content;
    other[2500000] = 'y';
    const auto fingerprint = [&](const std::string& text) {
        return fingerprintOf(folder.write("study.csv", text), later, goOn);
    };
    const StudyFingerprint first = fingerprint(content);

    EXPECT_EQ(first.size, content.size());
    EXPECT_TRUE(first.isOfSameContent(fingerprint(content)));
    EXPECT_FALSE(first.isOfSameContent(fingerprint(other)));
    EXPECT_FALSE(first.isOfSameContent(fingerprint(content + "x")));
    EXPECT_EQ(
        fingerprint("abc").checksum,
        "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_TRUE(fingerprint("").isOfSameContent(fingerprint("")));
    const StudyFingerprint unknown{first.size, ""};
    EXPECT_FALSE(unknown.isOfSameContent(unknown));
}

TEST(StudyFingerprintTest, WhatMayBeOfAnotherContentHasNoChecksum)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("study.csv", "a,b\n1,2\n");
    const QDateTime now = QDateTime::currentDateTime();
    const auto isKnown = [&path](const QDateTime& readingBegan) {
        return !fingerprintOf(path, readingBegan, goOn).checksum.empty();
    };

    setWritten(path, now.addSecs(-100));
    EXPECT_FALSE(isKnown(now.addSecs(-200)));
    EXPECT_TRUE(isKnown(now.addSecs(-50)));
    EXPECT_TRUE(isKnown(now.addSecs(-100)));
    setWritten(path, now.addSecs(5000)); // by a clock that is wrong
    EXPECT_TRUE(isKnown(now));

    EXPECT_EQ(fingerprintOf(path, now, [] { return true; }).checksum, "");
    EXPECT_EQ(fingerprintOf(folder.path().string() + "/none.csv", now, goOn).checksum, "");
    EXPECT_EQ(fingerprintOf(folder.path().string(), now.addSecs(10), goOn).checksum, "");
    // Written again while it is read.
    const StudyFingerprint torn = fingerprintOf(path, now, [&] {
        setWritten(path, now.addSecs(9000));
        return false;
    });
    EXPECT_EQ(torn.checksum, "");
}
