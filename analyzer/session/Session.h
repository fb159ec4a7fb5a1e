#pragma once

#include <analyzer/filters/ListedFilter.h>
#include <analyzer/session/CaseKeys.h>
#include <analyzer/session/StudyFingerprint.h>

#include <dataviews/platform/data/RowBitmap.h>

#include <QByteArray>
#include <QDomElement>
#include <QSize>

#include <cstddef>
#include <string>
#include <vector>

namespace analyzer {

/// A file of a case, as a session names it.
struct SessionFile
{
    std::size_t row; ///< of its case
    std::string
        path; ///< relative to the folder of the study, or absolute if it is on another drive
};

struct SessionTag
{
    std::string name;
    RowBitmap cases; ///< those that carry it themselves
    std::vector<SessionFile> files; ///< those that carry it themselves
};

struct SessionTagGroup
{
    std::string name;
    std::vector<SessionTag> tags;
};

struct SessionFilter
{
    ListedFilter::Kind kind = ListedFilter::Kind::Range;
    std::string name; ///< of the variable or the tag
    bool isEnabled = true;
    bool isInverted = false;
    ListedFilter::Range range = {0.0, 0.0}; ///< only of a filter by range
    ListedFilter::Values values; ///< only of a filter by values
};

struct SessionView
{
    std::string kind; ///< one of viewKinds()
    int number = 1; ///< among the views of the kind, from 1
    std::string place; ///< the name of its panel in the layout
    QDomElement state; ///< has one child: what the view's serializer wrote
};

/// Everything that is open, as a session file holds it.
///
/// Rows are those of the study as it was when the session was saved.
struct Session
{
    std::string studyPath; ///< of the table, absolute or relative to the folder of the session
    StudyFingerprint study;
    std::size_t caseCount = 0;
    CaseKeys keys; ///< of the cases that are in a set below
    std::vector<SessionTagGroup> tagGroups;
    std::vector<SessionFilter> filters;
    std::vector<SessionView> views; ///< oldest first
    std::size_t activeView = 0; ///< counted from 0; of no meaning without views
    QSize windowSize;
    QByteArray viewLayout; ///< as QMainWindow::saveState() gives it
    QByteArray panelLayout; ///< the same for the panels around the views
    RowBitmap selection;
};

} // namespace analyzer
