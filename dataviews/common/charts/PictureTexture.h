#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <vtkSmartPointer.h>

#include <vector>

class PixelPicture;
class vtkOpenGLRenderWindow;
class vtkTextureObject;

/// A picture in the memory of OpenGL, drawn pixel by pixel.
///
/// Only patches with something in them are brought there and drawn: where OpenGL works without a graphics card, that takes
/// most of the time.
/// Used while the context of its window is current. Gives back what it holds there when the window goes or changes.
class DATAVIEWS_CHARTS_EXPORT PictureTexture
{
public:
    PictureTexture();
    PictureTexture(const PictureTexture&) = delete;
    PictureTexture& operator=(const PictureTexture&) = delete;
    ~PictureTexture();

    /// Whether update() was called for \p window and what it brought there is still there.
    [[nodiscard]] bool isIn(vtkOpenGLRenderWindow& window) const;

    /// Brings \p picture to \p window.
    void update(vtkOpenGLRenderWindow& window, const PixelPicture& picture);

    /// Draws the picture without its margin over what is there; its lower left corner lies at \p x and \p y in pixels of
    /// the current viewport.
    void draw(int x, int y);

private:
    /// A rectangle of pixels, counted from the lower left corner inside of the margin.
    struct Patch
    {
        int left;
        int right; ///< the first column behind
        int bottom;
        int top; ///< the first row above
    };

    void findPatches(const PixelPicture& picture);

    vtkSmartPointer<vtkTextureObject> m_texture;
    std::vector<Patch> m_patches;
};
