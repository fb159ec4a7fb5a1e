#pragma once

#include <vtkSMPTools.h>

#include <cstddef>

/// Calls \p function with each number from 0 up to \p count, some of them at once on several cores; a single one in this
/// thread.
template <class Function>
void forEachAtOnce(std::size_t count, const Function& function)
{
    if (count == 1) {
        function(std::size_t(0));
        return;
    }
    vtkSMPTools::For(
        0, static_cast<vtkIdType>(count), 1, [&function](vtkIdType begin, vtkIdType end) {
            for (vtkIdType i = begin; i < end; ++i) {
                function(static_cast<std::size_t>(i));
            }
        });
}
