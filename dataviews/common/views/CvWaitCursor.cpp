#include <dataviews/common/views/CvWaitCursor.h>

#include <QApplication>
#include <QCursor>

CvWaitCursor::CvWaitCursor()
{
    QApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
}

CvWaitCursor::~CvWaitCursor()
{
    QApplication::restoreOverrideCursor();
}
