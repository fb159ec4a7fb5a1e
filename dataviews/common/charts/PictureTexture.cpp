#include <dataviews/common/charts/PictureTexture.h>
#include <dataviews/common/charts/PixelPicture.h>

#include <vtkNew.h>
#include <vtkOpenGLRenderUtilities.h>
#include <vtkOpenGLRenderWindow.h>
#include <vtkOpenGLShaderCache.h>
#include <vtkOpenGLState.h>
#include <vtkOpenGLVertexArrayObject.h>
#include <vtkShaderProgram.h>
#include <vtkTextureObject.h>
#include <vtk_glew.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace {

// The comments are where VTK puts what the version of OpenGL wants.
constexpr const char* vertexShader = R"(//VTK::System::Dec
in vec4 vertexMC;
in vec2 tcoordMC;
out vec2 place;
void main()
{
    gl_Position = vertexMC;
    place = tcoordMC;
}
)";

constexpr const char* fragmentShader = R"(//VTK::System::Dec
//VTK::Output::Dec
in vec2 place;
uniform sampler2D picture;
void main()
{
    gl_FragData[0] = texture2D(picture, place);
}
)";

} // namespace

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
    const auto width = static_cast<unsigned>(picture.width());
    const auto height = static_cast<unsigned>(picture.height());
    const bool isAllocated =
        isIn(window) && m_texture->GetWidth() == width && m_texture->GetHeight() == height;
    if (!isAllocated) {
        m_texture->SetContext(&window);
        constexpr int channels = 4;
        m_texture->Allocate2D(width, height, channels, VTK_UNSIGNED_CHAR);
    }
    findPatches(picture);
    m_texture->Activate();
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, picture.stride());
    for (const Patch& patch : m_patches) {
        glTexSubImage2D(
            GL_TEXTURE_2D,
            0,
            patch.left,
            patch.bottom,
            patch.right - patch.left,
            patch.top - patch.bottom,
            GL_RGBA,
            GL_UNSIGNED_BYTE,
            picture.row(picture.margin() + patch.bottom) + picture.margin() + patch.left);
    }
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    m_texture->Deactivate();
}

void PictureTexture::findPatches(const PixelPicture& picture)
{
    constexpr int side = 32; // of tiles, in pixels
    m_patches.clear();
    std::vector<std::uint32_t> seen(static_cast<std::size_t>(picture.width()));
    for (int bottom = 0; bottom < picture.height(); bottom += side) {
        const int top = std::min(bottom + side, picture.height());
        std::fill(seen.begin(), seen.end(), 0U);
        for (int y = bottom; y < top; ++y) {
            const std::uint32_t* const pixels =
                picture.row(picture.margin() + y) + picture.margin();
            std::transform(seen.begin(), seen.end(), pixels, seen.begin(), std::bit_or<>());
        }
        bool wasEmpty = true;
        for (int left = 0; left < picture.width(); left += side) {
            const int right = std::min(left + side, picture.width());
            const bool isEmpty =
                std::all_of(seen.begin() + left, seen.begin() + right, [](std::uint32_t is) {
                    return is == 0;
                });
            if (!isEmpty && wasEmpty) {
                m_patches.push_back({left, right, bottom, top});
            } else if (!isEmpty) {
                m_patches.back().right = right;
            }
            wasEmpty = isEmpty;
        }
    }
}

void PictureTexture::draw(int x, int y)
{
    if (m_patches.empty()) {
        return;
    }
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
    const auto width = static_cast<float>(m_texture->GetWidth());
    const auto height = static_cast<float>(m_texture->GetHeight());
    std::vector<float> corners;
    std::vector<float> places;
    std::vector<GLuint> triangles;
    const auto addCorner = [&](int column, int row) {
        corners.insert(corners.end(), {across(x + column), up(y + row), 0.0F});
        places.insert(
            places.end(), {static_cast<float>(column) / width, static_cast<float>(row) / height});
    };
    for (const Patch& patch : m_patches) {
        const auto first = static_cast<GLuint>(corners.size() / 3);
        addCorner(patch.left, patch.bottom);
        addCorner(patch.right, patch.bottom);
        addCorner(patch.right, patch.top);
        addCorner(patch.left, patch.top);
        triangles.insert(
            triangles.end(), {first, first + 1, first + 2, first, first + 2, first + 3});
    }
    m_texture->Activate();
    vtkShaderProgram* const program = m_texture->GetContext()->GetShaderCache()->ReadyShaderProgram(
        vertexShader, fragmentShader, "");
    program->SetUniformi("picture", m_texture->GetTextureUnit());
    const vtkNew<vtkOpenGLVertexArrayObject> vertices;
    vtkOpenGLRenderUtilities::RenderTriangles(
        corners.data(),
        static_cast<unsigned>(corners.size() / 3),
        triangles.data(),
        static_cast<unsigned>(triangles.size()),
        places.data(),
        program,
        vertices);
    vertices->ReleaseGraphicsResources();
    m_texture->Deactivate();
}
