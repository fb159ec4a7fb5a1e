#include <analyzer/runWithProgress.h>

#include <QEventLoop>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <cmath>
#include <future>

namespace analyzer {

bool runWithProgress(QWidget& parent, const QString& title, const LongWork& work)
{
    // The window stands still so long: not for longer than nobody notices.
    constexpr std::chrono::milliseconds moment(50);
    constexpr int interval = 50; // milliseconds
    constexpr int steps = 100;

    std::atomic<double> done{0.0};
    std::atomic<bool> isCancelled{false};
    // Whatever is thrown here, the work is waited for.
    std::future<bool> result = std::async(std::launch::async, [&] {
        return work([&](double fraction) {
            done = fraction;
            return !isCancelled;
        });
    });
    if (result.wait_for(moment) == std::future_status::timeout) {
        QProgressDialog dialog(title, QObject::tr("Cancel"), 0, steps, &parent);
        dialog.setWindowTitle(title);
        dialog.setWindowModality(Qt::WindowModal);
        dialog.setAutoClose(false);
        dialog.setAutoReset(false);
        dialog.setMinimumDuration(0);
        dialog.show();
        // It would hide, but nothing may change until the work has ended.
        const auto keepShown = [&dialog] {
            dialog.setLabelText(QObject::tr("Cancelling…"));
            for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
                button->setEnabled(false);
            }
            dialog.show();
        };
        const auto cancel = [&] {
            isCancelled = true;
            keepShown();
        };
        QObject::connect(&dialog, &QProgressDialog::canceled, &dialog, cancel);
        QObject::connect(&dialog, &QDialog::rejected, &dialog, cancel);
        QEventLoop loop;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
            if (result.wait_for(std::chrono::seconds(0)) == std::future_status::ready) {
                loop.quit();
            } else if (!isCancelled) {
                dialog.setValue(static_cast<int>(std::floor(done * (steps - 1))));
            } else if (!dialog.isVisible()) {
                keepShown(); // who closes a dialog hides it afterwards
            }
        });
        timer.start(interval);
        loop.exec();
    }
    return result.get();
}

} // namespace analyzer
