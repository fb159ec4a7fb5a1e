#include <analyzer/PictureDialog.h>

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>

#include <cmath>

namespace analyzer {

namespace {

constexpr int screenResolution = 96; // pixels per inch

QSpinBox* makeField(int smallest, int largest, int value, const QString& suffix)
{
    auto* field = new QSpinBox;
    field->setRange(smallest, largest);
    field->setValue(value);
    field->setSuffix(suffix);
    return field;
}

} // namespace

PictureDialog::PictureDialog(const QSize& onScreen, QWidget* parent)
    : QDialog(parent)
    , m_width(makeField(1, largestPictureSide, 2 * onScreen.width(), tr(" px")))
    , m_height(makeField(1, largestPictureSide, 2 * onScreen.height(), tr(" px")))
    , m_resolution(makeField(smallestDpi, largestDpi, 2 * screenResolution, tr(" dpi")))
    , m_formerResolution(m_resolution->value())
{
    setWindowTitle(tr("Size of the Picture"));
    auto* layout = new QFormLayout(this);
    layout->addRow(tr("&Width"), m_width);
    layout->addRow(tr("&Height"), m_height);
    layout->addRow(tr("&Resolution"), m_resolution);
    auto* hint = new QLabel(tr("Texts and lines keep their size in inches."));
    hint->setWordWrap(true);
    layout->addRow(hint);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    layout->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(
        m_resolution,
        QOverload<int>::of(&QSpinBox::valueChanged),
        this,
        &PictureDialog::resolutionChanged);
}

PictureDialog::~PictureDialog() = default;

PictureOptions PictureDialog::options() const
{
    PictureOptions options;
    options.size = QSize(m_width->value(), m_height->value());
    options.dpi = m_resolution->value();
    return options;
}

void PictureDialog::resolutionChanged(int dpi)
{
    // As large in inches as before.
    const double growth = static_cast<double>(dpi) / m_formerResolution;
    m_formerResolution = dpi;
    for (QSpinBox* side : {m_width, m_height}) {
        side->setValue(static_cast<int>(std::lround(side->value() * growth)));
    }
}

} // namespace analyzer
