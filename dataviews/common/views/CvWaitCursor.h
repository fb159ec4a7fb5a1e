#pragma once

#include <dataviews/common/views/ViewsExport.h>

/// Shows the wait cursor for its lifetime; nests. Needs the QApplication object; used on the GUI thread.
class DATAVIEWS_VIEWS_EXPORT CvWaitCursor
{
public:
    CvWaitCursor();
    CvWaitCursor(const CvWaitCursor&) = delete;
    CvWaitCursor& operator=(const CvWaitCursor&) = delete;
    virtual ~CvWaitCursor();
};
