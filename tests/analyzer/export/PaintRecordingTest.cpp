#include <analyzer/export/PaintRecording.h>

#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <thread>
#include <vector>

namespace analyzer {

namespace {

const QSize size(120, 90);

QImage painted(const std::function<void(QPainter&)>& paint)
{
    QImage image(2 * size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.scale(1.5, 2.0);
    painter.translate(5.0, 3.0);
    paint(painter);
    painter.end();
    return image;
}

void drawAll(QPainter& painter)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::blue, 3.0, Qt::DashLine));
    painter.drawLine(QLineF(2.5, 3.0, 60.0, 44.0));
    painter.setBrush(Qt::red);
    painter.save();
    painter.translate(20.0, 10.0);
    painter.rotate(30.0);
    painter.drawRect(QRectF(0.0, 0.0, 30.5, 12.0));
    painter.setOpacity(0.5);
    painter.drawEllipse(QPointF(20.0, 20.0), 9.0, 14.0);
    painter.restore();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.drawPolyline(QPolygonF({{1.0, 80.0}, {50.0, 60.5}, {90.0, 85.0}}));
    QLinearGradient gradient(0.0, 0.0, 100.0, 0.0);
    gradient.setColorAt(1.0, Qt::green);
    painter.fillRect(QRectF(70.0, 5.0, 40.0, 20.0), gradient);
    QPainterPath path;
    path.addEllipse(QRectF(60.0, 40.0, 40.0, 30.0));
    path.addEllipse(QRectF(70.0, 45.0, 20.0, 20.0));
    painter.setPen(Qt::NoPen);
    painter.drawPath(path);
    painter.drawPolygon(
        QPolygonF({{5.0, 50.0}, {25.0, 50.0}, {10.0, 65.0}, {15.0, 45.0}, {20.0, 65.0}}));
    QImage image(10, 10, QImage::Format_RGB32);
    image.fill(Qt::magenta);
    painter.drawImage(QRectF(30.0, 70.0, 15.0, 12.0), image);
    painter.drawPixmap(QPointF(50.0, 70.0), QPixmap::fromImage(image));
    QFont font;
    font.setPixelSize(14);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(QPointF(60.0, 85.0), QStringLiteral("Text"));
}

bool goOn(double /*fraction*/)
{
    return true;
}

} // namespace

TEST(PaintRecordingTest, PaintsAgainWhatWasPaintedOnAnyThread)
{
    PaintRecording recording(size, 96);
    QPainter recorder(&recording);
    drawAll(recorder);
    recorder.end();
    const QImage direct = painted(drawAll);

    QImage here;
    QImage elsewhere;
    here = painted([&](QPainter& painter) { EXPECT_TRUE(recording.replay(painter, goOn)); });
    std::thread([&] {
        elsewhere =
            painted([&](QPainter& painter) { EXPECT_TRUE(recording.replay(painter, goOn)); });
    }).join();

    EXPECT_EQ(here, direct);
    EXPECT_EQ(elsewhere, direct);
    EXPECT_NE(direct.pixel(2 * 30, 2 * 76), qRgb(255, 255, 255));
}

TEST(PaintRecordingTest, PutsImagesThatAreMadeLaterWhereTheyBelong)
{
    const auto draw = [](QPainter& painter, int& made) {
        painter.fillRect(QRect(0, 0, 40, 40), Qt::red);
        painter.translate(10.0, 0.0);
        PaintRecording::drawLater(painter, QRectF(5.0, 5.0, 20.0, 20.0), [&made](const auto&) {
            ++made;
            QImage image(20, 20, QImage::Format_RGB32);
            image.fill(Qt::blue);
            return image;
        });
        painter.fillRect(QRect(20, 20, 10, 10), Qt::green);
    };
    int made = 0;
    const QImage direct = painted([&](QPainter& painter) { draw(painter, made); });
    EXPECT_EQ(made, 1);
    PaintRecording recording(size, 96);
    QPainter recorder(&recording);
    draw(recorder, made);
    recorder.end();
    EXPECT_EQ(made, 1);

    EXPECT_EQ(
        painted([&](QPainter& painter) { EXPECT_TRUE(recording.replay(painter, goOn)); }), direct);

    EXPECT_EQ(made, 2);
}

TEST(PaintRecordingTest, TellsOfItsProgressAndEndsWhenItIsTold)
{
    PaintRecording recording(size, 96);
    QPainter recorder(&recording);
    int made = 0;
    for (int i = 0; i < 4; ++i) {
        PaintRecording::drawLater(
            recorder,
            QRectF(0.0, 0.0, 9.0, 9.0),
            [&made](const PaintRecording::Progress& progress) {
                ++made;
                return progress(0.5) ? QImage(9, 9, QImage::Format_RGB32) : QImage();
            });
    }
    recorder.end();
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);

    std::vector<double> fractions;
    EXPECT_TRUE(recording.replay(painter, [&](double fraction) {
        fractions.push_back(fraction);
        return true;
    }));
    EXPECT_EQ(made, 4);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_EQ(fractions.front(), 0.0);
    EXPECT_EQ(fractions.back(), 0.875);

    EXPECT_FALSE(recording.replay(painter, [](double fraction) { return fraction < 0.3; }));
    EXPECT_EQ(made, 6) << "the others are not made";
}

} // namespace analyzer
