#include <analyzer/StepProgress.h>

#include <QCoreApplication>
#include <QProgressDialog>

#include <cmath>
#include <limits>

namespace analyzer {

namespace {

constexpr int momentMs = 50;
constexpr int steps = 1000;

} // namespace

StepProgress::StepProgress(QWidget& parent, const QString& title)
    : m_dialog(std::make_unique<QProgressDialog>(
        title, QCoreApplication::translate("StepProgress", "Cancel"), 0, steps, &parent))
{
    m_dialog->setWindowTitle(title);
    m_dialog->setWindowModality(Qt::WindowModal);
    m_dialog->setAutoClose(false);
    m_dialog->setAutoReset(false);
    // Shown below: it would guess when.
    m_dialog->setMinimumDuration(std::numeric_limits<int>::max());
    m_time.start();
}

StepProgress::~StepProgress() = default;

void StepProgress::reach(double fraction)
{
    if (m_time.elapsed() < momentMs) {
        return;
    }
    m_dialog->show();
    m_dialog->setValue(static_cast<int>(std::floor(fraction * (steps - 1))));
    QCoreApplication::processEvents();
    if (m_dialog->wasCanceled()) {
        throw Cancelled();
    }
}

} // namespace analyzer
