#include <dataviews/common/charts/PictureTexture.h>
#include <dataviews/common/charts/PixelPicture.h>

#include <vtkOpenGLRenderWindow.h>
#include <vtkOpenGLState.h>
#include <vtkTextureObject.h>
#include <vtk_glew.h>

#include <array>

PictureTexture::PictureTexture()
    : m_texture(vtkSmartPointer<vtkTextureObject>::New())
{
    m_texture->SetMinificationFilter(vtkTextureObject::Nearest);
    m_texture->SetMagnificationFilter(vtkTextureObject::Nearest);
    m_texture->SetWrapS(vtkTextureObject::ClampToEdge);
    m_texture->SetWrapT(vtkTextureObject::ClampToEdge);
}

PictureTexture::~PictureTexture() = default;

bool PictureTexture::isIn(vtkOpenGLRenderWindow& window) const
{
    return m_texture->GetContext() == &window && m_texture->GetHandle() != 0;
}

void PictureTexture::update(vtkOpenGLRenderWindow& window, const PixelPicture& picture)
{
    const auto width = static_cast<unsigned>(picture.stride());
    const auto height = static_cast<unsigned>(picture.rows());
    const bool isAllocated =
        isIn(window) && m_texture->GetWidth() == width && m_texture->GetHeight() == height;
    if (!isAllocated) {
        m_texture->SetContext(&window);
        constexpr int channels = 4;
        m_texture->Allocate2D(width, height, channels, VTK_UNSIGNED_CHAR);
    }
    m_width = picture.width();
    m_height = picture.height();
    m_margin = picture.margin();
    m_texture->Activate();
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexSubImage2D(
        GL_TEXTURE_2D,
        0,
        0,
        0,
        picture.stride(),
        picture.rows(),
        GL_RGBA,
        GL_UNSIGNED_BYTE,
        picture.row(0));
    m_texture->Deactivate();
}

void PictureTexture::draw(int x, int y)
{
    vtkOpenGLState& state = *m_texture->GetContext()->GetState();
    const vtkOpenGLState::ScopedglBlendFuncSeparate blending(&state);
    const vtkOpenGLState::ScopedglEnableDisable blended(&state, GL_BLEND);
    state.vtkglEnable(GL_BLEND);
    state.vtkglBlendFuncSeparate(GL_ONE, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    std::array<int, 4> viewport = {};
    state.vtkglGetIntegerv(GL_VIEWPORT, viewport.data());
    const auto across = [&](int pixel) {
        return 2.0F * static_cast<float>(pixel) / static_cast<float>(viewport[2]) - 1.0F;
    };
    const auto up = [&](int pixel) {
        return 2.0F * static_cast<float>(pixel) / static_cast<float>(viewport[3]) - 1.0F;
    };
    const auto textureWidth = static_cast<float>(m_texture->GetWidth());
    const auto textureHeight = static_cast<float>(m_texture->GetHeight());
    const float left = static_cast<float>(m_margin) / textureWidth;
    const float right = static_cast<float>(m_margin + m_width) / textureWidth;
    const float bottom = static_cast<float>(m_margin) / textureHeight;
    const float top = static_cast<float>(m_margin + m_height) / textureHeight;
    std::array<float, 8> places = {left, bottom, right, bottom, right, top, left, top};
    std::array<float, 12> corners = {
        across(x),
        up(y),
        0.0F,
        across(x + m_width),
        up(y),
        0.0F,
        across(x + m_width),
        up(y + m_height),
        0.0F,
        across(x),
        up(y + m_height),
        0.0F};
    m_texture->CopyToFrameBuffer(places.data(), corners.data(), nullptr, nullptr);
}
