#include <analyzer/selection/SelectionChange.h>

#include <QCoreApplication>
#include <QLocale>
#include <QString>

namespace analyzer {

namespace {

QString changeText(std::size_t selectedCount)
{
    const auto translated = [](const char* text) {
        return QCoreApplication::translate("SelectionChange", text);
    };
    if (selectedCount == 0) {
        return translated("Clear Selection");
    }
    if (selectedCount == 1) {
        return translated("Select 1 Case");
    }
    return translated("Select %1 Cases")
        .arg(QLocale(QLocale::English, QLocale::UnitedStates)
                 .toString(static_cast<qulonglong>(selectedCount)));
}

} // namespace

SelectionChange::SelectionChange(
    const Cases& before,
    const Cases& after,
    const boost::function<void(const Cases&)>& show,
    const DeleteSignaler& deleteSignaler,
    int undoId,
    unsigned long long gesture)
    : GenericUndoCommand(
        [show, after] { show(after); },
        [show, before] { show(before); },
        deleteSignaler,
        changeText(after->size()),
        gesture == 0 ? -1 : undoId)
    , m_before(before)
    , m_after(after)
    , m_gesture(gesture)
{}

bool SelectionChange::mergeWith(const QUndoCommand* other)
{
    const auto* change = dynamic_cast<const SelectionChange*>(other);
    if (change == nullptr || change->m_gesture != m_gesture
        || !GenericUndoCommand::mergeWith(other)) {
        return false;
    }
    m_after = change->m_after;
    setText(change->text());
    setObsolete(*m_after == *m_before);
    return true;
}

} // namespace analyzer
