#include <analyzer/views/CaseToolTip.h>
#include <analyzer/views/countText.h>

#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageLoader.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/variantDisplayText.h>

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace analyzer {

namespace {

constexpr int restMs = 300;
constexpr int graceMs = 500;

constexpr int marginPx = 8;
constexpr int gapPx = 12; ///< between names and values
constexpr int distancePx =
    16; ///< from the mouse: its pointer and the ring around the point stay free
constexpr int maxNameChars = 28; ///< of average width, as the following
constexpr int maxValueChars = 36;
constexpr double nameOpacity = 0.7;

/// On one line.
QString lineOf(const std::string& text)
{
    return QString::fromStdString(text).simplified();
}

QFont boldFont(QFont font)
{
    font.setBold(true);
    return font;
}

/// Beside \p mouse along one axis: behind it, else before it, else where it is still on the screen.
int beside(int mouse, int size, int screenStart, int screenEnd)
{
    if (mouse + distancePx + size <= screenEnd) {
        return mouse + distancePx;
    }
    if (mouse - distancePx - size >= screenStart) {
        return mouse - distancePx - size;
    }
    return std::max(screenStart, screenEnd - size);
}

} // namespace

/// The sizes of the parts, in device-independent pixels.
struct CaseToolTip::Layout
{
    int lineHeight = 0;
    int nameWidth = 0;
    int valueWidth = 0;
    int textWidth = 0;
    QSize picture;
    QSize whole;
};

CaseToolTip::CaseToolTip(const boost::shared_ptr<AsyncImageCache>& images, QWidget* parent)
    : QWidget(parent, Qt::ToolTip | Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus)
    , m_loader(images ? images->imageLoader() : boost::shared_ptr<AsyncImageLoader>())
{
    setObjectName(QStringLiteral("CaseToolTip"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    setPalette(QToolTip::palette());
    setFont(QToolTip::font());
    m_rest.setSingleShot(true);
    m_grace.setSingleShot(true);
    setDelays(restMs, graceMs);
    connect(&m_rest, &QTimer::timeout, this, &CaseToolTip::appear);
    if (m_loader) {
        m_connections.add(m_loader->signalImageArrived.connect([this](const std::string& path) {
            if (path == m_picturePath) {
                requestPicture(path);
                place();
            }
        }));
    }
}

CaseToolTip::~CaseToolTip() = default;

void CaseToolTip::showCase(
    unsigned long long caseID, const std::vector<WeakPtr<Variable>>& variables, const QPoint& mouse)
{
    const bool isOther = m_caseID != caseID;
    m_caseID = caseID;
    m_variables = variables;
    m_mouse = mouse;
    if (isVisible()) {
        if (isOther) {
            appear();
        }
    } else if (m_grace.isActive()) {
        appear();
    } else {
        m_rest.start();
    }
}

void CaseToolTip::leave()
{
    m_rest.stop();
    m_caseID.reset();
    m_picturePath.clear();
    m_picture = {};
    if (m_loader) {
        m_loader->setVisible({});
    }
    if (isVisible()) {
        hide();
        m_grace.start();
    }
}

void CaseToolTip::setDelays(int rest, int grace)
{
    m_rest.setInterval(rest);
    m_grace.setInterval(grace);
}

QPoint CaseToolTip::placeBeside(const QPoint& mouse, const QSize& size, const QRect& screen)
{
    return {
        beside(mouse.x(), size.width(), screen.left(), screen.left() + screen.width()),
        beside(mouse.y(), size.height(), screen.top(), screen.top() + screen.height())};
}

QSize CaseToolTip::sizeHint() const
{
    return layOut().whole;
}

void CaseToolTip::appear()
{
    const std::optional<Record> record =
        m_caseID ? Project::project().record(*m_caseID) : std::optional<Record>();
    if (!record) {
        leave(); // another study has come
        return;
    }
    fill(*record);
    m_picture = {};
    m_picturePath.clear();
    const std::vector<WeakPtr<AuxFile>> files = record->auxFiles();
    const boost::shared_ptr<AuxFile> file =
        files.empty() ? boost::shared_ptr<AuxFile>() : files.front().lock();
    if (file && m_loader) {
        m_loader->setVisible({file->filePath()});
        requestPicture(file->filePath());
    }
    place();
    show();
}

void CaseToolTip::fill(const Record& record)
{
    m_title = tr("Case %1").arg(record.caseID());
    m_values.clear();
    std::vector<WeakPtr<Variable>> shown;
    const auto add = [&](const WeakPtr<Variable>& handle) {
        const boost::shared_ptr<Variable> variable = handle.lock();
        if (variable && m_values.size() < maxValues
            && std::find(shown.begin(), shown.end(), handle) == shown.end()) {
            shown.push_back(handle);
            m_values.push_back(
                {lineOf(variable->name()), lineOf(variantDisplayText(record.value(*variable)))});
        }
    };
    const WeakPtr<Variable> caseIDVariable = Project::project().caseIDVariable();
    for (const WeakPtr<Variable>& handle : m_variables) {
        if (handle != caseIDVariable) {
            add(handle); // the title has the other
        }
    }
    const std::vector<WeakPtr<Variable>>& all = Project::project().variables();
    for (std::size_t i = 0; i < all.size() && m_values.size() < maxValues; ++i) {
        add(all[i]);
    }
    const std::size_t further = all.size() - std::min(all.size(), m_values.size());
    m_further = further == 0 ? QString() : tr("…and %1 more").arg(countText(further));
}

void CaseToolTip::requestPicture(const std::string& path)
{
    m_picturePath = path;
    const int side = static_cast<int>(std::lround(largestPicturePx * devicePixelRatioF()));
    const boost::shared_ptr<QImage> picture = m_loader->request(path, {side, side});
    m_picture = picture ? *picture : QImage();
    if (!m_picture.isNull()) {
        m_picture.setDevicePixelRatio(devicePixelRatioF());
    }
}

void CaseToolTip::place()
{
    const QScreen* screen = QGuiApplication::screenAt(m_mouse);
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    const QSize size = sizeHint();
    setGeometry(QRect(placeBeside(m_mouse, size, screen->availableGeometry()), size));
    update();
}

CaseToolTip::Layout CaseToolTip::layOut() const
{
    const QFontMetrics metrics(font());
    const QFontMetrics titleMetrics(boldFont(font()));
    Layout layout;
    layout.lineHeight = std::max(metrics.lineSpacing(), titleMetrics.lineSpacing());
    for (const Value& value : m_values) {
        layout.nameWidth = std::max(layout.nameWidth, metrics.horizontalAdvance(value.name));
        layout.valueWidth = std::max(layout.valueWidth, metrics.horizontalAdvance(value.value));
    }
    layout.nameWidth = std::min(layout.nameWidth, maxNameChars * metrics.averageCharWidth());
    layout.valueWidth = std::min(layout.valueWidth, maxValueChars * metrics.averageCharWidth());
    layout.textWidth = std::max(
        {layout.nameWidth + gapPx + layout.valueWidth,
         titleMetrics.horizontalAdvance(m_title),
         metrics.horizontalAdvance(m_further)});
    if (!m_picture.isNull()) {
        layout.picture = (QSizeF(m_picture.size()) / m_picture.devicePixelRatioF()).toSize();
    }
    const int lines = 1 + static_cast<int>(m_values.size()) + (m_further.isEmpty() ? 0 : 1);
    const int pictureHeight = layout.picture.isEmpty() ? 0 : layout.picture.height() + marginPx;
    layout.whole = QSize(
        std::max(layout.textWidth, layout.picture.width()) + 2 * marginPx,
        lines * layout.lineHeight + pictureHeight + 2 * marginPx);
    return layout;
}

void CaseToolTip::paintEvent(QPaintEvent* /*event*/)
{
    const Layout layout = layOut();
    const QFontMetrics metrics(font());
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::ToolTipText));
    painter.setBrush(palette().color(QPalette::ToolTipBase));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));

    QRect line(marginPx, marginPx, layout.textWidth, layout.lineHeight);
    const int flags = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine;
    painter.setFont(boldFont(font()));
    painter.drawText(line, flags, m_title);
    painter.setFont(font());
    for (const Value& value : m_values) {
        line.translate(0, layout.lineHeight);
        painter.setOpacity(nameOpacity);
        painter.drawText(
            QRect(line.topLeft(), QSize(layout.nameWidth, layout.lineHeight)),
            flags,
            metrics.elidedText(value.name, Qt::ElideRight, layout.nameWidth));
        painter.setOpacity(1.0);
        painter.drawText(
            line.adjusted(layout.nameWidth + gapPx, 0, 0, 0),
            flags,
            metrics.elidedText(value.value, Qt::ElideRight, layout.valueWidth));
    }
    if (!m_further.isEmpty()) {
        line.translate(0, layout.lineHeight);
        painter.setOpacity(nameOpacity);
        painter.drawText(line, flags, m_further);
        painter.setOpacity(1.0);
    }
    if (!m_picture.isNull()) {
        painter.drawImage(QPoint(marginPx, line.bottom() + 1 + marginPx), m_picture);
    }
}

} // namespace analyzer
