#pragma once

#include <QApplication>

namespace analyzer {

/// The application object: stops errors at the event loop and tells them to the user.
///
/// What the program had stays as it was; an error never ends it.
class AnalyzerApplication : public QApplication
{
    Q_OBJECT

public:
    AnalyzerApplication(int& argc, char** argv);
    AnalyzerApplication(const AnalyzerApplication&) = delete;
    AnalyzerApplication& operator=(const AnalyzerApplication&) = delete;
    ~AnalyzerApplication() override;

    bool notify(QObject* receiver, QEvent* event) override;

Q_SIGNALS:
    /// An error reached the event loop; \p message is a sentence for the user.
    void errorReached(const QString& message);
};

} // namespace analyzer
