#pragma once

#include <dataviews/common/charts/ChartsExport.h>

#include <vtkSmartPointer.h>

class PixelPicture;
class vtkOpenGLRenderWindow;
class vtkTextureObject;

/// A picture in the memory of OpenGL, drawn pixel by pixel.
///
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
    vtkSmartPointer<vtkTextureObject> m_texture;
    int m_width = 0;
    int m_height = 0;
    int m_margin = 0;
};
