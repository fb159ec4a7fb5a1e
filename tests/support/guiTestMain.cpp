#include <QApplication>
#include <QSettings>
#include <QSurfaceFormat>
#include <QTemporaryDir>
#include <QVTKOpenGLNativeWidget.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// Test programs with widgets: an application object, and settings of their own that vanish afterwards.
int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    // Qt warns without one, and warnings end a test program.
    const QTemporaryDir runtimeFolder;
    if (!qEnvironmentVariableIsSet("XDG_RUNTIME_DIR")) {
        qputenv("XDG_RUNTIME_DIR", runtimeFolder.path().toLocal8Bit());
    }
    QSurfaceFormat::setDefaultFormat(QVTKOpenGLNativeWidget::defaultFormat());
    QApplication::setOrganizationName(QStringLiteral("DataViews"));
    QApplication::setApplicationName(QStringLiteral("DataViewsTest"));
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
