#include <analyzer/export/PainterContextDevice2D.h>

#include <QImage>
#include <QPainter>
#include <QPicture>

#include <vtkBrush.h>
#include <vtkContext2D.h>
#include <vtkImageData.h>
#include <vtkMatrix3x3.h>
#include <vtkNew.h>
#include <vtkPen.h>
#include <vtkTextProperty.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <vector>

namespace analyzer {

namespace {

constexpr QRgb white = 0xFFFFFFFF;

/// What \p draw draws in a picture of 100 x 80 with \p scale pixels per unit.
QImage drawn(const std::function<void(vtkContext2D&)>& draw, int scale = 1, bool isVector = false)
{
    QImage image(100 * scale, 80 * scale, QImage::Format_RGB32);
    image.fill(white);
    QPainter painter(&image);
    painter.scale(scale, scale);
    const vtkNew<PainterContextDevice2D> device;
    const vtkNew<vtkContext2D> context;
    device->startPainting(painter, {QSize(100, 80), 72, static_cast<double>(scale), isVector});
    context->Begin(device);
    context->GetPen()->SetColor(0, 0, 255, 255);
    context->GetBrush()->SetColor(255, 0, 0, 255);
    draw(*context);
    context->End();
    device->finishPainting();
    return image;
}

/// The smallest rectangle around what is not white.
QRect inkOf(const QImage& image)
{
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != white) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

void clipTo(vtkContext2D& context, std::array<int, 4> box)
{
    context.GetDevice()->SetClipping(box.data());
    context.GetDevice()->EnableClipping(true);
}

std::vector<float> manyPoints(std::size_t count, float x, float y)
{
    std::vector<float> points;
    for (std::size_t i = 0; i < count; ++i) {
        points.insert(points.end(), {x, y});
    }
    return points;
}

} // namespace

TEST(PainterContextDevice2DTest, CountsFromTheLowerLeftCornerAndFollowsTransforms)
{
    const QImage image = drawn([](vtkContext2D& context) {
        context.GetPen()->SetLineType(vtkPen::NO_PEN);
        const vtkNew<vtkMatrix3x3> move;
        move->SetElement(0, 2, 10.0);
        move->SetElement(1, 2, 20.0);
        const vtkNew<vtkMatrix3x3> enlarge;
        enlarge->SetElement(0, 0, 2.0);
        enlarge->SetElement(1, 1, 3.0);
        context.GetDevice()->PushMatrix();
        context.GetDevice()->MultiplyMatrix(move);
        context.GetDevice()->MultiplyMatrix(enlarge);
        context.DrawRect(5, 4, 10, 6);
        context.GetDevice()->PopMatrix();
        context.DrawRect(0, 0, 1, 1);
    });

    EXPECT_EQ(image.pixel(0, 79), qRgb(255, 0, 0));
    // From (20, 32) to (40, 50).
    EXPECT_EQ(inkOf(image.copy(5, 0, 95, 80)).translated(5, 0), QRect(20, 80 - 50, 20, 18));
}

TEST(PainterContextDevice2DTest, DrawsNothingOutsideOfTheClip)
{
    for (const bool isVector : {false, true}) {
        SCOPED_TRACE(isVector);
        const QImage image = drawn(
            [](vtkContext2D& context) {
                clipTo(context, {20, 10, 50, 40});
                context.GetPen()->SetWidth(1.0F);
                context.DrawLine(0, 0, 100, 80);
                context.DrawRect(10, 30, 100, 5);
                context.GetPen()->SetWidth(12.0F);
                std::vector<float> points{20, 10, 70, 50, 45, 50, 5, 5, 95, 75};
                context.DrawMarkers(VTK_MARKER_CIRCLE, false, points.data(), 5);
                std::vector<float> many =
                    manyPoints(PainterContextDevice2D::maxVectorPoints + 1, 70, 30);
                context.DrawMarkers(
                    VTK_MARKER_CIRCLE, false, many.data(), static_cast<int>(many.size() / 2));
            },
            1,
            isVector);

        // The ends of lines may reach half their width further.
        const QRect clip(20, 80 - 50, 50, 40);
        EXPECT_TRUE(inkOf(image).contains(clip));
        EXPECT_TRUE(clip.adjusted(-1, -1, 1, 1).contains(inkOf(image)));
    }
}

TEST(PainterContextDevice2DTest, SkipsWhatIsNotFinite)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();

    const QImage image = drawn([&](vtkContext2D& context) {
        std::vector<float> points{nan, 10, 10, infinity, -infinity, nan, 1e30F, -1e30F};
        context.GetPen()->SetWidth(4.0F);
        context.DrawMarkers(VTK_MARKER_CIRCLE, false, points.data(), 4);
        context.DrawPoly(points.data(), 4);
        context.DrawPolygon(points.data(), 4);
    });

    EXPECT_TRUE(inkOf(image).isEmpty());
}

TEST(PainterContextDevice2DTest, DrawsManyMarkersAndSpritesLikeFew)
{
    const vtkNew<vtkImageData> ring;
    constexpr int side = 9;
    ring->SetDimensions(side, side, 1);
    ring->AllocateScalars(VTK_UNSIGNED_CHAR, 4);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            auto* pixel = static_cast<unsigned char*>(ring->GetScalarPointer(x, y, 0));
            const int distance = std::max(std::abs(x - 4), std::abs(y - 4));
            std::fill_n(pixel, 4, static_cast<unsigned char>(distance == 4 ? 0 : 200));
            pixel[3] = distance >= 2 ? 255 : 0;
        }
    }
    const auto draw = [&](std::size_t before) {
        return drawn(
            [&](vtkContext2D& context) {
                clipTo(context, {10, 10, 80, 60});
                context.GetPen()->SetWidth(9.0F);
                // So many far away that the others come into a picture.
                std::vector<float> away = manyPoints(before, -1000, 0);
                if (before > 0) {
                    context.DrawMarkers(
                        VTK_MARKER_CIRCLE, false, away.data(), static_cast<int>(before));
                }
                std::vector<float> points{30.25F, 40.5F, 33, 42, 88, 12};
                std::vector<unsigned char> colors{255, 0, 0, 255, 0, 255, 0, 128, 0, 0, 255, 64};
                context.DrawMarkers(VTK_MARKER_CIRCLE, false, points.data(), 3, colors.data(), 4);
                std::vector<float> squares{60, 30, 63.5F, 33.25F};
                context.DrawMarkers(VTK_MARKER_SQUARE, false, squares.data(), 2);
                std::vector<float> rings{50.5F, 55.25F, 54, 57};
                context.DrawPointSprites(ring, rings.data(), 2);
            },
            2);
    };

    const QImage few = draw(0);
    const QImage many = draw(PainterContextDevice2D::maxVectorPoints);

    EXPECT_EQ(inkOf(few), inkOf(many));
    int largest = 0;
    for (int y = 0; y < few.height(); ++y) {
        for (int x = 0; x < few.width(); ++x) {
            largest =
                std::max(largest, std::abs(qGreen(few.pixel(x, y)) - qGreen(many.pixel(x, y))));
        }
    }
    EXPECT_LE(largest, 64) << "edges are a quarter of a pixel off at most";
    EXPECT_NE(inkOf(few), QRect());
}

TEST(PainterContextDevice2DTest, EmbedsManyPointsAsOnePicture)
{
    const auto sizeWith = [](int count) {
        QPicture picture;
        QPainter painter(&picture);
        const vtkNew<PainterContextDevice2D> device;
        const vtkNew<vtkContext2D> context;
        device->startPainting(painter, {QSize(100, 80), 72, 1.0, true});
        context->Begin(device);
        clipTo(*context, {0, 0, 100, 80});
        context->GetPen()->SetWidth(5.0F);
        std::vector<float> points = manyPoints(static_cast<std::size_t>(count), 50, 40);
        context->DrawMarkers(VTK_MARKER_CIRCLE, false, points.data(), count);
        context->End();
        device->finishPainting();
        painter.end();
        return picture.size();
    };
    constexpr auto most = static_cast<int>(PainterContextDevice2D::maxVectorPoints);

    EXPECT_GT(sizeWith(most), 20U * most);
    EXPECT_LT(sizeWith(most + 1), 100U * 80U * 5U);
}

TEST(PainterContextDevice2DTest, DrawsSpritesAsSharpRings)
{
    const vtkNew<vtkImageData> sprite;
    constexpr int side = 9;
    sprite->SetDimensions(side, side, 1);
    sprite->AllocateScalars(VTK_UNSIGNED_CHAR, 4);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            auto* pixel = static_cast<unsigned char*>(sprite->GetScalarPointer(x, y, 0));
            const bool isRing = std::max(std::abs(x - 4), std::abs(y - 4)) >= 3;
            std::fill_n(pixel, 4, static_cast<unsigned char>(0));
            pixel[3] = isRing ? 255 : 0;
        }
    }

    const QImage image = drawn(
        [&](vtkContext2D& context) {
            context.GetPen()->SetWidth(side);
            std::vector<float> points{50, 40};
            context.DrawPointSprites(sprite, points.data(), 1);
        },
        4);

    EXPECT_EQ(inkOf(image), QRect(50 * 4 - 18, 40 * 4 - 18, 36, 36));
    EXPECT_EQ(image.pixel(50 * 4, 40 * 4), white) << "the middle is free";
    EXPECT_EQ(image.pixel(50 * 4 + 14, 40 * 4), qRgb(0, 0, 0));
}

TEST(PainterContextDevice2DTest, PutsTextsWhereTheirJustificationAsks)
{
    const auto ink = [](int along, int across, double angle) {
        return inkOf(drawn([=](vtkContext2D& context) {
            const vtkNew<vtkTextProperty> property;
            property->SetColor(0, 0, 0);
            property->SetFontSize(14);
            property->SetJustification(along);
            property->SetVerticalJustification(across);
            property->SetOrientation(angle);
            context.ApplyTextProp(property);
            context.DrawString(50, 40, "HHHH");
        }));
    };

    const QRect left = ink(VTK_TEXT_LEFT, VTK_TEXT_BOTTOM, 0);
    const QRect centered = ink(VTK_TEXT_CENTERED, VTK_TEXT_CENTERED, 0);
    const QRect right = ink(VTK_TEXT_RIGHT, VTK_TEXT_TOP, 0);
    const QRect upward = ink(VTK_TEXT_CENTERED, VTK_TEXT_BOTTOM, 90);
    EXPECT_GE(left.left(), 50);
    EXPECT_LT(left.bottom(), 40);
    EXPECT_NEAR(centered.center().x(), 50, 2);
    EXPECT_NEAR(centered.center().y(), 40, 3);
    EXPECT_LE(right.right(), 50);
    EXPECT_GT(right.top(), 39);
    EXPECT_LE(upward.right(), 50);
    EXPECT_NEAR(upward.center().y(), 40, 2);
    EXPECT_GT(upward.height(), upward.width());
}

} // namespace analyzer
