#pragma once

#include <vtkBrush.h>
#include <vtkContextDevice2D.h>
#include <vtkMatrix3x3.h>
#include <vtkObjectFactory.h>
#include <vtkPen.h>
#include <vtkRect.h>
#include <vtkVector.h>

#include <vector>

/// Draws nothing and remembers the rectangles that were filled.
class RecordingContextDevice2D : public vtkContextDevice2D
{
public:
    struct Rectangle
    {
        vtkRectf place;
        vtkVector4<int> color; ///< of the brush, with opacity
        int lineType; ///< of the pen
    };

    vtkTypeMacro(RecordingContextDevice2D, vtkContextDevice2D)

        static RecordingContextDevice2D* New();
    RecordingContextDevice2D(const RecordingContextDevice2D&) = delete;
    RecordingContextDevice2D& operator=(const RecordingContextDevice2D&) = delete;

    std::vector<Rectangle> rectangles; ///< in the order of drawing

    void DrawQuad(float* points, int /*n*/) override
    {
        const unsigned char* color = Brush->GetColor();
        rectangles.push_back(
            {{points[0], points[1], points[4] - points[0], points[5] - points[1]},
             vtkVector4<int>(color[0], color[1], color[2], color[3]),
             Pen->GetLineType()});
    }

    void DrawPoly(float*, int, unsigned char*, int) override {}

    void DrawLines(float*, int, unsigned char*, int) override {}

    void DrawPoints(float*, int, unsigned char*, int) override {}

    void DrawPointSprites(vtkImageData*, float*, int, unsigned char*, int) override {}

    void DrawEllipseWedge(float, float, float, float, float, float, float, float) override {}

    void DrawEllipticArc(float, float, float, float, float, float) override {}

    void DrawString(float*, const vtkStdString&) override {}

    void ComputeStringBounds(const vtkStdString&, float bounds[4]) override { clear(bounds); }

    void DrawString(float*, const vtkUnicodeString&) override {}

    void ComputeStringBounds(const vtkUnicodeString&, float bounds[4]) override { clear(bounds); }

    void ComputeJustifiedStringBounds(const char*, float bounds[4]) override { clear(bounds); }

    void DrawMathTextString(float*, const vtkStdString&) override {}

    void DrawImage(float[2], float, vtkImageData*) override {}

    void DrawImage(const vtkRectf&, vtkImageData*) override {}

    void DrawPolyData(float[2], float, vtkPolyData*, vtkUnsignedCharArray*, int) override {}

    void SetColor4(unsigned char[4]) override {}

    void SetTexture(vtkImageData*, int) override {}

    void SetPointSize(float) override {}

    void SetLineWidth(float) override {}

    void SetLineType(int) override {}

    void SetMatrix(vtkMatrix3x3*) override {}

    void GetMatrix(vtkMatrix3x3* matrix) override { matrix->Identity(); }

    void MultiplyMatrix(vtkMatrix3x3*) override {}

    void PushMatrix() override {}

    void PopMatrix() override {}

    void SetClipping(int*) override {}

    void EnableClipping(bool) override {}

protected:
    RecordingContextDevice2D() = default;
    ~RecordingContextDevice2D() override = default;

private:
    static void clear(float bounds[4])
    {
        for (int i = 0; i < 4; ++i) {
            bounds[i] = 0.0F;
        }
    }
};

inline vtkStandardNewMacro(RecordingContextDevice2D);
