// SPDX-License-Identifier: MIT
#include "viewers/OpenGLViewer.h"

#include "host/Logger.h"
#include "host/Settings.h"

#include <QOpenGLBuffer>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>
#include <QOpenGLVertexArrayObject>
#include <QPainter>

#include <array>

namespace
{

constexpr char VertexShader[] = "#version 330\n"
                                "layout (location = 0) in vec3 position;\n"
                                "layout (location = 1) in vec2 texCoord;\n"
                                "out vec2 uv;\n"
                                "void main() {\n"
                                "   uv = texCoord;\n"
                                "   gl_Position = vec4(position, 1.0f);\n"
                                "}\n";

constexpr char FragmentShader[] =
    "#version 330\n"
    "in vec2 uv;\n"
    "uniform sampler2D texSampler;\n"
    "uniform bool linear;\n"
    "out vec4 color;\n"
    "void main() {\n"
    "   if(linear) {\n"
    "      color = vec4(pow(texture(texSampler, uv).rgb, vec3(1.0 / 2.2)), 1.0);\n"
    "   }\n"
    "   else {\n"
    "      color = vec4(texture(texSampler, uv).rgb, 1.0);\n"
    "   }\n"
    "}\n";

/// A vertex is a position x, y, z and a texture place u, v.
constexpr int FloatsPerVertex = 5;
constexpr int VerticesPerQuad = 4;
constexpr int BytesPerVertex = FloatsPerVertex * static_cast<int>(sizeof(float));
constexpr int TextureOffset = 3 * static_cast<int>(sizeof(float));
constexpr int QuadCount = 2;
constexpr int VertexBufferBytes = QuadCount * VerticesPerQuad * BytesPerVertex;

constexpr int IndicesPerQuad = 6;
constexpr quint32 QuadIndices[QuadCount][IndicesPerQuad] = {{0, 1, 3, 1, 2, 3}, {4, 5, 7, 5, 6, 7}};

constexpr int HighQualitySamples = 10;
constexpr int RequiredMajorVersion = 3;
constexpr int RequiredMinorVersion = 3;

bool HasCurrentContext()
{
    const QOpenGLContext* const context = QOpenGLContext::currentContext();
    return context && context->isValid();
}

/// What a viewer without a picture shows.
QImage BlackPoint()
{
    QImage image(1, 1, QImage::Format_RGB32);
    image.fill(Qt::transparent);
    return image;
}

} // namespace

OpenGLViewer::OpenGLViewer(QWidget* parent) : QOpenGLWidget(parent), AnnotationOverlay(this)
{
    setSizePolicy(QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding, QSizePolicy::DefaultType));
    QSurfaceFormat surfaceFormat = QSurfaceFormat::defaultFormat();
    surfaceFormat.setSamples(Settings::highQualityRendering ? HighQualitySamples : -1);
    surfaceFormat.setDepthBufferSize(0);
    setFormat(surfaceFormat);
    mTextures = QVector<QOpenGLTexture*>(ViewerCount, nullptr);
}

bool OpenGLViewer::IsInitialized() const
{
    return mInitialized;
}

bool OpenGLViewer::IsContextUsable()
{
    if (!HasCurrentContext())
    {
        Logger::GetInstance()->Error("Failed to get a valid OpenGL context");
        return false;
    }
    QOpenGLContext* const current = QOpenGLContext::currentContext();
    // Through the context's own functions: on a context that is too old those of 3.3 lead nowhere.
    const auto report = [current](const char* text, GLenum name)
    {
        const auto* const value = reinterpret_cast<const char*>(current->functions()->glGetString(name));
        Logger::GetInstance()->Output(QString::fromLatin1(text).arg(QString::fromUtf8(value)));
    };
    report("OpenGL Vendor: %1\n", GL_VENDOR);
    report("OpenGL Renderer: %1\n", GL_RENDERER);
    report("OpenGL Version: %1\n", GL_VERSION);
    report("OpenGL Shading Language Version: %1\n", GL_SHADING_LANGUAGE_VERSION);

    const int major = current->format().majorVersion();
    const int minor = current->format().minorVersion();
    if (major < RequiredMajorVersion || (major == RequiredMajorVersion && minor < RequiredMinorVersion))
    {
        Logger::GetInstance()->Error(
            QStringLiteral("OpenGL verison is too old (%1.%2). Minimum required version is 3.3.")
                .arg(major)
                .arg(minor));
        return false;
    }
    return true;
}

void OpenGLViewer::initializeGL()
{
    // The context comes first: without one, resolving the functions would reach into nothing.
    if (HasCurrentContext())
        initializeOpenGLFunctions();
    mInitialized = IsContextUsable();
    if (!mInitialized)
        return;
    CreateProgram();
    CreateBuffers();
    mLinearLocation = mProgram->uniformLocation("linear");
    // In a context that follows another one, the textures of that one went with it; to delete them now would
    // reach into it.
    mTextures.fill(nullptr);
    // Both textures exist before the first paint.
    SetImage(0, BlackPoint(), false);
    SetImage(1, BlackPoint(), false);
}

void OpenGLViewer::CreateProgram()
{
    mProgram = new QOpenGLShaderProgram(this);
    mProgram->addShaderFromSourceCode(QOpenGLShader::Vertex, VertexShader);
    mProgram->addShaderFromSourceCode(QOpenGLShader::Fragment, FragmentShader);
    mProgram->link();
}

void OpenGLViewer::CreateBuffers()
{
    mVao = new QOpenGLVertexArrayObject;
    mVao->create();
    mVertexBuffer = new QOpenGLBuffer(QOpenGLBuffer::VertexBuffer);
    mVertexBuffer->create();
    for (QOpenGLBuffer*& buffer : mIndexBuffers)
    {
        buffer = new QOpenGLBuffer(QOpenGLBuffer::IndexBuffer);
        buffer->create();
    }

    mVao->bind();
    mVertexBuffer->bind();
    mVertexBuffer->setUsagePattern(QOpenGLBuffer::StaticDraw);
    mVertexBuffer->allocate(nullptr, VertexBufferBytes);
    for (int index = 0; index < ViewerCount; ++index)
    {
        QOpenGLBuffer* const buffer = mIndexBuffers[index];
        buffer->bind();
        buffer->setUsagePattern(QOpenGLBuffer::StaticDraw);
        buffer->allocate(QuadIndices[index], sizeof(QuadIndices[index]));
        buffer->release();
    }
    mProgram->enableAttributeArray(0);
    mProgram->setAttributeBuffer(0, GL_FLOAT, 0, 3, BytesPerVertex);
    mProgram->enableAttributeArray(1);
    mProgram->setAttributeBuffer(1, GL_FLOAT, TextureOffset, 2, BytesPerVertex);
    mVertexBuffer->release();
    mVao->release();
}

void OpenGLViewer::SetImage(int index, const QImage& image, bool linear)
{
    if (!mInitialized || !HasCurrentContext())
        return;
    if (index < 0)
    {
        SetImage(0, image, linear);
        SetImage(1, image, linear);
        return;
    }
    if (index >= ViewerCount)
    {
        Logger::GetInstance()->Error("Viewer index out of range");
        return;
    }
    // `linear` is dropped: the flags stay false and the shader's gamma branch is never taken. That is meant.
    QOpenGLTexture* const texture = mTextures[index];
    if (image.isNull())
    {
        ReplaceTexture(index, BlackPoint());
    }
    else if (!texture || texture->width() != image.width() || texture->height() != image.height())
    {
        ReplaceTexture(index, image);
    }
    else
    {
        // Three bytes a pixel are read, in rows of whole four bytes, so a picture of fewer is brought to that
        // form; the path of playback gets QImage::Format_RGB888 as Qt makes it and copies nothing.
        const qsizetype bytesRead = qsizetype(image.width() * 3 + 3) / 4 * 4 * image.height();
        const QImage pixels =
            image.sizeInBytes() < bytesRead ? image.convertToFormat(QImage::Format_RGB888).copy() : image;
        texture->setData(QOpenGLTexture::RGB, QOpenGLTexture::UInt8,
                         static_cast<const void*>(pixels.constBits()));
    }
    mImageChanged = true;
    update();
}

void OpenGLViewer::ReplaceTexture(int index, const QImage& image)
{
    mDisplaySizes[index] = QPointF();
    delete mTextures[index];
    mTextures[index] = new QOpenGLTexture(image, QOpenGLTexture::DontGenerateMipMaps);
    mTextures[index]->setMinificationFilter(QOpenGLTexture::Linear);
    mTextures[index]->setMagnificationFilter(QOpenGLTexture::Linear);
    mUpdateVertices = true;
}

QImage OpenGLViewer::GetImage()
{
    return grabFramebuffer();
}

int OpenGLViewer::GetImageDisplayWidth() const
{
    return static_cast<int>(mDisplaySizes[mSingleViewerIndex].x());
}

int OpenGLViewer::GetImageDisplayHeight() const
{
    return static_cast<int>(mDisplaySizes[mSingleViewerIndex].y());
}

void OpenGLViewer::SetViewerLayout(ViewerLayout layout)
{
    mViewerLayout = layout;
    mUpdateVertices = true;
    update();
}

void OpenGLViewer::resizeGL(int w, int h)
{
    QOpenGLWidget::resizeGL(w, h);
    mUpdateVertices = true;
}

void OpenGLViewer::UpdateVertices()
{
    const float width = static_cast<float>(this->width());
    const float height = static_cast<float>(this->height());
    const float slotWidth = mViewerLayout == Horizontal ? width * 0.5f : width;
    const float slotHeight = mViewerLayout == Vertical ? height * 0.5f : height;
    const float slotAspect = slotWidth / slotHeight;
    const auto normalX = [width](float x) { return x / width * 2.0f - 1.0f; };
    const auto normalY = [height](float y) { return y / height * 2.0f - 1.0f; };

    std::array<float, QuadCount * VerticesPerQuad * FloatsPerVertex> vertices;
    auto next = vertices.begin();
    const auto append = [&](float x, float y, float u, float v)
    {
        for (const float value : {normalX(x), normalY(y), 0.0f, u, v})
            *next++ = value;
    };
    for (int index = 0; index < ViewerCount; ++index)
    {
        const float aspect =
            static_cast<float>(mTextures[index]->width()) / static_cast<float>(mTextures[index]->height());
        // OpenGL's y runs upward: viewer A is the top half.
        float x = mViewerLayout == Horizontal ? static_cast<float>(index) * slotWidth : 0.0f;
        float y = mViewerLayout == Vertical ? static_cast<float>(1 - index) * slotHeight : 0.0f;
        float w = slotWidth;
        float h = slotHeight;
        if (slotAspect > aspect)
        {
            w = aspect * slotHeight;
            x += (slotWidth - w) * 0.5f;
        }
        else if (aspect > slotAspect)
        {
            h = slotWidth / aspect;
            y += (slotHeight - h) * 0.5f;
        }
        append(w + x, h + y, 1.0f, 0.0f);
        append(w + x, y, 1.0f, 1.0f);
        append(x, y, 0.0f, 1.0f);
        append(x, h + y, 0.0f, 0.0f);
        mDisplaySizes[index] = QPointF(static_cast<qreal>(w), static_cast<qreal>(h));
    }
    mVertexBuffer->write(0, vertices.data(), VertexBufferBytes);
    mImageChanged = true;
    mUpdateVertices = false;
}

void OpenGLViewer::paintGL()
{
    if (!mInitialized)
        return;
    SettlePaintFlags();
    if (mAnnotationsOnly)
    {
        QPainter painter(this);
        painter.drawImage(0, 0, mLastImage);
    }
    else
    {
        DrawPictures();
        if (mStoreLastImage)
            mLastImage = grabFramebuffer();
        ResetOverlayCache();
    }
    FinishPaint();
}

void OpenGLViewer::DrawPictures()
{
    const int ratio = devicePixelRatio();
    glViewport(0, 0, width() * ratio, height() * ratio);
    glClear(GL_COLOR_BUFFER_BIT);
    mProgram->bind();
    mVao->bind();
    mVertexBuffer->bind();
    for (int index = 0; index < ViewerCount; ++index)
    {
        if (mViewerLayout != Single || index == mSingleViewerIndex)
            DrawPicture(index);
    }
    mVertexBuffer->release();
    mVao->release();
    mProgram->release();
}

void OpenGLViewer::DrawPicture(int index)
{
    QOpenGLTexture* const texture = mTextures[index];
    texture->bind();
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_BORDER);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_BORDER);
    mProgram->setUniformValue(mLinearLocation, mLinearFlags[0]);
    if (mUpdateVertices)
        UpdateVertices();
    if (!Settings::onlyDisplayAnnotations)
    {
        mIndexBuffers[index]->bind();
        glDrawElements(GL_TRIANGLES, IndicesPerQuad, GL_UNSIGNED_INT, nullptr);
        mIndexBuffers[index]->release();
    }
    texture->release();
}
