#pragma once

#include <analyzer/MainWindow.h>

#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QSignalSpy>
#include <QString>

#include <gtest/gtest.h>

/// Writes a study of twelve cases with images, texts, missing values and names that files have trouble with to \p folder;
/// the path of its table.
inline QString writeSmallImageStudy(const QString& folder)
{
    QByteArray content = "Name,Span,Time,\"Drag, <total> \"\"1\"\"\",Lift,Material,FILE\n";
    constexpr int caseCount = 12;
    for (int i = 0; i < caseCount; ++i) {
        QImage image(24, 16, QImage::Format_RGB32);
        image.fill(QColor(20 * i, 255 - 20 * i, 120));
        EXPECT_TRUE(image.save(QDir(folder).filePath(QStringLiteral("%1.png").arg(i))));
        content += "n" + QByteArray::number(i) + ',' + QByteArray::number(i % 3) + ','
            + QByteArray::number(i / 3) + ',' + QByteArray::number(i * 0.37 - 1) + ','
            + (i == 5 ? QByteArray() : QByteArray::number(1.0 / (i + 1))) + ','
            + (i % 2 == 0 ? "steel" : "wood & glue") + ',' + QByteArray::number(i) + ".png\n";
    }
    const QString path = QDir(folder).filePath(QStringLiteral("study.csv"));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    return path;
}

/// Opens the study at \p path in \p window and waits for it; false if it was refused.
inline bool openStudyIn(analyzer::MainWindow& window, const QString& path)
{
    const QSignalSpy opened(&window, &analyzer::MainWindow::studyOpened);
    const QSignalSpy failed(&window, &analyzer::MainWindow::openingFailed);
    window.openStudy(path);
    while (opened.isEmpty() && failed.isEmpty()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return failed.isEmpty();
}
