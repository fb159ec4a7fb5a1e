#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace analyzer {

/// Work that tells how far it is, from 0 to 1, by calling what it gets, and ends early, returning false, once that returns
/// false.
using LongWork = std::function<bool(const std::function<bool(double)>&)>;

/// Runs \p work in a thread of its own and waits for it. What takes longer than a moment shows a dialog called \p title over
/// \p parent, which keeps the user from everything but cancelling until the work has ended. Returns and throws what \p work does.
bool runWithProgress(QWidget& parent, const QString& title, const LongWork& work);

} // namespace analyzer
