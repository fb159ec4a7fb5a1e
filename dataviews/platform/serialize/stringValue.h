#pragma once

#include <dataviews/platform/serialize/PlatformSerializeExport.h>

#include <string>
#include <vector>

/// A list of texts as one text: fields with commas between them, that `boost::escaped_list_separator<char>` with
/// its defaults (escape `\`, separator `,`, quote `"`) splits back into the same list.
///
/// Also survives a QDomDocument that is written and read, for XML drops a text of blanks: fields that begin or end with
/// a blank are quoted. QDom itself keeps a carriage return, as `&#xd;`; a writer that puts it bare turns it into a line
/// break. Characters that XML does not have, such as most control characters, stand as they are.
/// A list of one empty text is `""`, the empty list is the empty text.
[[nodiscard]] DATAVIEWS_PLATFORM_SERIALIZE_EXPORT std::string stringValue(
    const std::vector<std::string>& list);
