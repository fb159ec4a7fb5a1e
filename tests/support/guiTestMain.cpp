#include <QApplication>
#include <QSettings>
#include <QSurfaceFormat>
#include <QTemporaryDir>
#include <QVTKOpenGLNativeWidget.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#ifdef __SANITIZE_ADDRESS__
    #include <sanitizer/lsan_interface.h>
#endif

namespace {

/// Looks for leaks while the OpenGL driver is still loaded: later its leaks have no name to be left out by.
void checkLeaksNow()
{
#ifdef __SANITIZE_ADDRESS__
    __lsan_do_leak_check();
#endif
}

} // namespace

/// Test programs with widgets: an application object, and settings and caches of their own that vanish afterwards.
int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    // Qt warns without one, and warnings end a test program.
    const QTemporaryDir runtimeFolder;
    if (!qEnvironmentVariableIsSet("XDG_RUNTIME_DIR")) {
        qputenv("XDG_RUNTIME_DIR", runtimeFolder.path().toLocal8Bit());
    }
    // Nothing goes to the thumbnails of whoever runs the tests.
    const QTemporaryDir cacheFolder;
    qputenv("XDG_CACHE_HOME", cacheFolder.path().toLocal8Bit());
    QSurfaceFormat::setDefaultFormat(QVTKOpenGLNativeWidget::defaultFormat());
    QApplication::setOrganizationName(QStringLiteral("DataViews"));
    QApplication::setApplicationName(QStringLiteral("DataViewsTest"));
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    const QApplication application(argc, argv);
    const int result = RUN_ALL_TESTS();
    checkLeaksNow();
    return result;
}
