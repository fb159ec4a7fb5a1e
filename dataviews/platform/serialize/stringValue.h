#pragma once

#include <dataviews/platform/serialize/PlatformSerializeExport.h>

#include <string>
#include <vector>

/// A list of texts as one text: fields with commas between them, that `boost::escaped_list_separator<char>` with
/// its defaults (escape `\`, separator `,`, quote `"`) splits back into the same list.
///
/// Also survives XML, which drops a text of blanks: fields that begin or end with a blank are quoted. A list of one
/// empty text is `""`, the empty list is the empty text.
[[nodiscard]] DATAVIEWS_PLATFORM_SERIALIZE_EXPORT std::string stringValue(
    const std::vector<std::string>& list);
