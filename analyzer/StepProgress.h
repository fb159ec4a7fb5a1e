#pragma once

#include <QElapsedTimer>
#include <QString>

#include <memory>

class QProgressDialog;
class QWidget;

namespace analyzer {

/// Shows how far work in steps on the GUI thread has come, and lets the user cancel it.
///
/// What is over in a moment shows nothing. While the dialog is there the user can do nothing else, and between the steps
/// everything is painted.
class StepProgress
{
public:
    /// The user has cancelled; thrown out of the work.
    struct Cancelled
    {};

    /// \p title says what is being done; the dialog is over \p parent.
    StepProgress(QWidget& parent, const QString& title);
    StepProgress(const StepProgress&) = delete;
    StepProgress& operator=(const StepProgress&) = delete;
    ~StepProgress();

    /// To be called between steps: \p fraction of the work, from 0 to 1, is done. Handles events.
    /// \throws Cancelled if the user wants that.
    void reach(double fraction);

private:
    std::unique_ptr<QProgressDialog> m_dialog;
    QElapsedTimer m_time;
};

} // namespace analyzer
