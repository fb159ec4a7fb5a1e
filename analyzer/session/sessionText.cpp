#include <analyzer/session/SessionError.h>
#include <analyzer/session/caseSetText.h>
#include <analyzer/session/sessionText.h>
#include <analyzer/session/sessionXml.h>
#include <analyzer/session/strictXml.h>
#include <analyzer/views/stateText.h>
#include <analyzer/views/viewKinds.h>

#include <QDomDocument>
#include <QRegularExpression>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <utility>

namespace analyzer {

namespace {

constexpr const char* rootName = "DataViewsSession";
constexpr int longestLayout = 64 * 1024; // bytes
constexpr std::uint64_t mostCases = std::numeric_limits<int>::max();
constexpr std::uint64_t mostViews = 1000000;
constexpr std::uint64_t largestWindow = 100000; // pixels
constexpr std::size_t bitsInByte = 8;
constexpr std::size_t mostSetBytes = std::size_t(1) << 29;
constexpr std::size_t checksumLength = 64;
constexpr std::size_t keyLength = sizeof(std::uint64_t);

const std::vector<std::pair<ListedFilter::Kind, const char*>>& filterKinds()
{
    static const std::vector<std::pair<ListedFilter::Kind, const char*>> kinds = {
        {ListedFilter::Kind::Range, "Range"},
        {ListedFilter::Kind::Values, "Values"},
        {ListedFilter::Kind::Tag, "Tag"}};
    return kinds;
}

// ---- writing

QDomElement add(QDomElement parent, const char* name)
{
    QDomElement element = parent.ownerDocument().createElement(QLatin1String(name));
    parent.appendChild(element);
    return element;
}

void setText(QDomElement element, const QString& text)
{
    if (!text.isEmpty()) {
        element.appendChild(element.ownerDocument().createTextNode(text));
    }
}

void setText(QDomElement element, const std::string& text)
{
    setText(std::move(element), QString::fromStdString(text));
}

void set(QDomElement& element, const char* attribute, const std::string& text)
{
    element.setAttribute(QLatin1String(attribute), QString::fromStdString(text));
}

template <class Number>
void setNumber(QDomElement& element, const char* attribute, Number number)
{
    set(element, attribute, std::to_string(number));
}

/// Checks that the sets of cases that \p root holds do not take too much memory.
void checkSets(const QDomElement& root, std::size_t caseCount)
{
    // The selection is one more.
    const auto sets =
        static_cast<std::size_t>(root.elementsByTagName(QStringLiteral("Cases")).size()) + 1;
    if (sets * (caseCount / bitsInByte) > mostSetBytes) {
        throw SessionError("The session has more sets of cases than this program can hold.");
    }
}

void writeStudy(const QDomElement& root, const Session& session)
{
    QDomElement study = add(root, "Study");
    set(study, "Path", session.studyPath);
    setNumber(study, "Size", session.study.size);
    set(study, "Checksum", session.study.checksum);
    setNumber(study, "Cases", session.caseCount);

    const QDomElement keys = add(study, "CaseKeys");
    for (const std::string& variable : session.keys.variables) {
        QDomElement element = add(keys, "Key");
        set(element, "Variable", variable);
    }
    setText(add(keys, "Cases"), caseSetText(session.keys.rows));
    QByteArray hashes(static_cast<int>(session.keys.hashes.size() * keyLength), '\0');
    for (std::size_t i = 0; i < session.keys.hashes.size(); ++i) {
        qToLittleEndian(
            static_cast<quint64>(session.keys.hashes[i]), hashes.data() + i * keyLength);
    }
    setText(add(keys, "Hashes"), QString::fromLatin1(hashes.toBase64()));
}

void writeTags(const QDomElement& root, const Session& session)
{
    const QDomElement tags = add(root, "Tags");
    for (const SessionTagGroup& group : session.tagGroups) {
        QDomElement groupElement = add(tags, "Group");
        set(groupElement, "Name", group.name);
        for (const SessionTag& tag : group.tags) {
            QDomElement element = add(groupElement, "Tag");
            set(element, "Name", tag.name);
            setText(add(element, "Cases"), caseSetText(tag.cases));
            for (const SessionFile& file : tag.files) {
                QDomElement fileElement = add(element, "File");
                setNumber(fileElement, "Case", file.row + 1);
                set(fileElement, "Path", file.path);
            }
        }
    }
}

void writeFilters(const QDomElement& root, const Session& session)
{
    const QDomElement filters = add(root, "Filters");
    for (const SessionFilter& filter : session.filters) {
        QDomElement element = add(filters, "Filter");
        const auto kind =
            std::find_if(filterKinds().begin(), filterKinds().end(), [&filter](const auto& named) {
                return named.first == filter.kind;
            });
        set(element, "Kind", kind->second);
        set(element, "Of", filter.name);
        setNumber(element, "Enabled", filter.isEnabled ? 1 : 0);
        setNumber(element, "Inverted", filter.isInverted ? 1 : 0);
        if (filter.kind == ListedFilter::Kind::Range) {
            QDomElement range = add(element, "Range");
            setRealAttribute(range, "Min", filter.range.min);
            setRealAttribute(range, "Max", filter.range.max);
        }
        for (const Variant& value : filter.values) {
            QDomElement valueElement = add(element, "Value");
            setVariantAttributes(valueElement, value);
        }
    }
}

void writeViews(const QDomElement& root, const Session& session)
{
    QDomElement views = add(root, "Views");
    if (!session.views.empty()) {
        setNumber(views, "Active", session.activeView + 1);
    }
    for (const SessionView& view : session.views) {
        QDomElement element = add(views, "View");
        set(element, "Kind", view.kind);
        setNumber(element, "Number", view.number);
        set(element, "Place", view.place);
        element.appendChild(
            element.ownerDocument().importNode(view.state.firstChildElement(), true));
    }
}

// ---- reading

void readStudy(const QDomElement& root, Session& session)
{
    const QDomElement study = strictXml::child(root, "Study");
    strictXml::check(study, {"Path", "Size", "Checksum", "Cases"}, {"CaseKeys"});
    session.studyPath = strictXml::text(study, "Path");
    if (session.studyPath.empty()) {
        strictXml::refuse("it names no study");
    }
    session.study.size =
        strictXml::number(study, "Size", 0, std::numeric_limits<std::int64_t>::max());
    session.study.checksum = strictXml::text(study, "Checksum");
    const bool isChecksum = session.study.checksum.size() == checksumLength
        && session.study.checksum.find_first_not_of("0123456789abcdef") == std::string::npos;
    if (!isChecksum && !session.study.checksum.empty()) {
        strictXml::refuse("the study has no valid checksum");
    }
    session.caseCount = strictXml::number(study, "Cases", 1, mostCases);
    checkSets(root, session.caseCount);

    const QDomElement keys = strictXml::child(study, "CaseKeys");
    strictXml::check(keys, {}, {"Cases", "Hashes"}, {"Key"});
    for (QDomElement key = keys.firstChildElement(QStringLiteral("Key")); !key.isNull();
         key = key.nextSiblingElement(QStringLiteral("Key"))) {
        strictXml::check(key, {"Variable"});
        session.keys.variables.push_back(strictXml::text(key, "Variable"));
    }
    const QDomElement cases = strictXml::child(keys, "Cases");
    strictXml::checkHasTextOnly(cases);
    session.keys.rows = strictXml::cases(cases, session.caseCount);
    const QDomElement hashesElement = strictXml::child(keys, "Hashes");
    strictXml::checkHasTextOnly(hashesElement);
    const QByteArray hashes = strictXml::bytes(hashesElement, largestSession);
    if (static_cast<std::size_t>(hashes.size()) != session.keys.rows.count() * keyLength) {
        strictXml::refuse("there is not one key for each case");
    }
    if (hashes.isEmpty() != session.keys.variables.empty()) {
        strictXml::refuse("there are keys without variables, or variables without keys");
    }
    for (int i = 0; i < hashes.size(); i += static_cast<int>(keyLength)) {
        session.keys.hashes.push_back(qFromLittleEndian<quint64>(hashes.constData() + i));
    }
}

SessionTag readTag(const QDomElement& element, std::size_t caseCount)
{
    strictXml::check(element, {"Name"}, {"Cases"}, {"File"});
    SessionTag tag;
    tag.name = strictXml::text(element, "Name");
    const QDomElement cases = strictXml::child(element, "Cases");
    strictXml::checkHasTextOnly(cases);
    tag.cases = strictXml::cases(cases, caseCount);
    for (QDomElement file = element.firstChildElement(QStringLiteral("File")); !file.isNull();
         file = file.nextSiblingElement(QStringLiteral("File"))) {
        strictXml::check(file, {"Case", "Path"});
        tag.files.push_back(
            {static_cast<std::size_t>(strictXml::number(file, "Case", 1, caseCount) - 1),
             strictXml::text(file, "Path")});
    }
    return tag;
}

void readTags(const QDomElement& root, Session& session)
{
    const QDomElement tags = strictXml::child(root, "Tags");
    strictXml::check(tags, {}, {}, {"Group"});
    for (QDomElement element = tags.firstChildElement(); !element.isNull();
         element = element.nextSiblingElement()) {
        strictXml::check(element, {"Name"}, {}, {"Tag"});
        SessionTagGroup group{strictXml::text(element, "Name"), {}};
        for (QDomElement tag = element.firstChildElement(); !tag.isNull();
             tag = tag.nextSiblingElement()) {
            group.tags.push_back(readTag(tag, session.caseCount));
        }
        session.tagGroups.push_back(std::move(group));
    }
}

SessionFilter readFilter(const QDomElement& element)
{
    strictXml::check(element, {"Kind", "Of", "Enabled", "Inverted"}, {"Range"}, {"Value"});
    SessionFilter filter;
    const std::string kindName = strictXml::text(element, "Kind");
    const auto kind =
        std::find_if(filterKinds().begin(), filterKinds().end(), [&kindName](const auto& named) {
            return named.second == kindName;
        });
    if (kind == filterKinds().end()) {
        strictXml::refuse("there is no filter of the kind \"" + kindName + "\"");
    }
    filter.kind = kind->first;
    filter.name = strictXml::text(element, "Of");
    filter.isEnabled = strictXml::flag(element, "Enabled");
    filter.isInverted = strictXml::flag(element, "Inverted");

    const QDomElement range = element.firstChildElement(QStringLiteral("Range"));
    if (range.isNull() != (filter.kind != ListedFilter::Kind::Range)) {
        strictXml::refuse("a filter and its kind do not belong together");
    }
    if (!range.isNull()) {
        strictXml::check(range, {"Min", "Max"});
        filter.range = {strictXml::real(range, "Min"), strictXml::real(range, "Max")};
        if (!(filter.range.min <= filter.range.max)) {
            strictXml::refuse("the range of a filter ends before it begins");
        }
    }
    for (QDomElement value = element.firstChildElement(QStringLiteral("Value")); !value.isNull();
         value = value.nextSiblingElement(QStringLiteral("Value"))) {
        if (filter.kind != ListedFilter::Kind::Values) {
            strictXml::refuse("a filter and its kind do not belong together");
        }
        const bool isMissing = !value.hasAttribute(QStringLiteral("Value"));
        if (isMissing) {
            strictXml::check(value, {"Type"});
        } else {
            strictXml::check(value, {"Type", "Value"});
        }
        try {
            const auto [place, isNew] = filter.values.insert(variantAttributes(value));
            if (place->isEmpty() != isMissing || !isNew) {
                strictXml::refuse("a filter has a value twice, or one that is none");
            }
        } catch (const SessionError&) {
            throw;
        } catch (const ExceptionBase& error) {
            throw SessionError(std::string("The session is damaged: ") + error.what());
        }
    }
    return filter;
}

void readViews(const QDomElement& root, Session& session)
{
    static const QRegularExpression placePattern(
        QRegularExpression::anchoredPattern(QStringLiteral("View[1-9][0-9]{0,8}")));
    const QDomElement views = strictXml::child(root, "Views");
    if (views.firstChildElement().isNull()) {
        strictXml::check(views, {}, {}, {"View"});
        return;
    }
    strictXml::check(views, {"Active"}, {}, {"View"});
    const std::vector<std::string> kinds = viewKinds();
    std::set<std::string> places;
    std::set<std::pair<std::string, int>> numbers;
    for (QDomElement element = views.firstChildElement(); !element.isNull();
         element = element.nextSiblingElement()) {
        strictXml::checkAttributes(element, {"Kind", "Number", "Place"});
        if (element.childNodes().size() != 1 || element.firstChildElement().isNull()) {
            strictXml::refuse("a view has no settings, or twice");
        }
        SessionView view;
        view.kind = strictXml::text(element, "Kind");
        if (std::find(kinds.begin(), kinds.end(), view.kind) == kinds.end()) {
            strictXml::refuse("there is no view of the kind \"" + view.kind + "\"");
        }
        view.number = static_cast<int>(strictXml::number(element, "Number", 1, mostViews));
        view.place = strictXml::text(element, "Place");
        view.state = element;
        const bool isPlace = placePattern.match(QString::fromStdString(view.place)).hasMatch();
        if (!isPlace || !places.insert(view.place).second
            || !numbers.insert({view.kind, view.number}).second) {
            strictXml::refuse("two views have the same place, or one has none");
        }
        session.views.push_back(std::move(view));
    }
    session.activeView = strictXml::number(views, "Active", 1, session.views.size()) - 1;
}

void readWindow(const QDomElement& root, Session& session)
{
    const QDomElement window = strictXml::child(root, "Window");
    strictXml::check(window, {"Width", "Height"}, {"Views", "Panels"});
    session.windowSize = {
        static_cast<int>(strictXml::number(window, "Width", 1, largestWindow)),
        static_cast<int>(strictXml::number(window, "Height", 1, largestWindow))};
    const QDomElement views = strictXml::child(window, "Views");
    const QDomElement panels = strictXml::child(window, "Panels");
    strictXml::checkHasTextOnly(views);
    strictXml::checkHasTextOnly(panels);
    session.viewLayout = strictXml::bytes(views, longestLayout);
    session.panelLayout = strictXml::bytes(panels, longestLayout);
}

} // namespace

QByteArray writeSession(const Session& session)
{
    QDomDocument document;
    document.appendChild(document.createProcessingInstruction(
        QStringLiteral("xml"), QStringLiteral("version=\"1.0\" encoding=\"UTF-8\"")));
    QDomElement root = document.createElement(QLatin1String(rootName));
    document.appendChild(root);
    setNumber(root, "Version", sessionVersion);
    writeStudy(root, session);
    writeTags(root, session);
    writeFilters(root, session);
    writeViews(root, session);
    QDomElement window = add(root, "Window");
    setNumber(window, "Width", session.windowSize.width());
    setNumber(window, "Height", session.windowSize.height());
    setText(add(window, "Views"), QString::fromLatin1(session.viewLayout.toBase64()));
    setText(add(window, "Panels"), QString::fromLatin1(session.panelLayout.toBase64()));
    setText(add(root, "Selection"), caseSetText(session.selection));

    // Nothing behind the last element: a file that has been cut off is never a whole session.
    const QByteArray bytes = document.toByteArray(1).trimmed();
    try {
        checkSessionXml(bytes);
        checkSets(root, session.caseCount);
        if (std::max(session.viewLayout.size(), session.panelLayout.size()) > longestLayout) {
            throw SessionError("The layout of its panels is too long.");
        }
    } catch (const SessionError& error) {
        throw SessionError(
            std::string("The session cannot be saved, for it could not be read again: ")
            + error.what());
    }
    return bytes;
}

Session readSession(const QByteArray& bytes)
{
    const QDomDocument document = readSessionXml(bytes);
    const QDomElement root = document.documentElement();
    if (root.tagName() != QLatin1String(rootName)) {
        throw SessionError("This is no session of DataViews.");
    }
    const std::uint64_t version =
        strictXml::number(root, "Version", 1, std::numeric_limits<int>::max());
    if (version > static_cast<std::uint64_t>(sessionVersion)) {
        throw SessionError(
            "The session was saved by a newer version of DataViews (format "
            + std::to_string(version) + "; this version reads up to "
            + std::to_string(sessionVersion) + ").");
    }
    strictXml::check(
        root, {"Version"}, {"Study", "Tags", "Filters", "Views", "Window", "Selection"});

    Session session;
    readStudy(root, session);
    readTags(root, session);
    const QDomElement filters = strictXml::child(root, "Filters");
    strictXml::check(filters, {}, {}, {"Filter"});
    for (QDomElement element = filters.firstChildElement(); !element.isNull();
         element = element.nextSiblingElement()) {
        session.filters.push_back(readFilter(element));
    }
    readViews(root, session);
    readWindow(root, session);
    const QDomElement selection = strictXml::child(root, "Selection");
    strictXml::checkHasTextOnly(selection);
    session.selection = strictXml::cases(selection, session.caseCount);
    return session;
}

} // namespace analyzer
