#pragma once

#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/property/ValueRange_s.h>

#include <QSize>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace analyzer {

/// The program was called in a way that it does not understand; the message is one line.
class UsageError : public ExceptionBase
{
public:
    using ExceptionBase::ExceptionBase;
};

/// What the program is asked to do. Texts are UTF-8.
struct CommandLine
{
    struct ViewName
    {
        std::string kind;
        std::size_t number = 1; ///< among the views of the kind, from 1
    };

    /// One --export-view: VIEW=FILE.
    struct ViewPicture
    {
        ViewName view;
        std::string file;
    };

    /// One --set: VIEW.PROPERTY=VALUE.
    struct Assignment
    {
        ViewName view;
        std::string property;
        std::string value;
    };

    /// One --filter: VAR=MIN..MAX.
    struct Filter
    {
        std::string variable;
        ValueRange_s<double> range; ///< as typed, with infinite ends for those left out
    };

    std::string study; ///< empty if none is named
    bool help = false;
    bool version = false;
    bool info = false;
    std::vector<std::string> views; ///< kinds, in order
    std::vector<Assignment> assignments;
    std::vector<Filter> filters;
    std::vector<std::pair<unsigned long long, unsigned long long>>
        selection; ///< ranges of case IDs, ends included
    bool hasSelection = false;
    std::optional<QSize> size;
    std::string screenshot; ///< empty if none is asked for
    std::vector<ViewPicture> pictures;
    std::optional<QSize> pictureSize;
    int pictureDpi = 0; ///< 0 if none is asked for
    std::string report; ///< the file for a report; empty if none is asked for
    std::string
        session; ///< to be opened in place of a study, also named in its place; empty if none is
    std::string saveSession; ///< the file for a session; empty if none is asked for
    std::string exportCsv; ///< the file for the cases shown; empty if none is asked for

    /// Understands \p arguments, those after the program's name.
    /// \throws UsageError
    [[nodiscard]] static CommandLine parse(const std::vector<std::string>& arguments);

    /// The text of --help.
    [[nodiscard]] static std::string helpText();
};

} // namespace analyzer
