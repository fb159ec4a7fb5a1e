#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <dataviews/platform/undo/UndoStack.h>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

namespace {

/// So many entries the history may hold before it is emptied, which is not timed.
constexpr int mostEntries = 10000;

void measureSetValue(benchmark::State& state, int undoId)
{
    UndoStack::history().clear();
    {
        const auto property = boost::make_shared<corvane::Property<double>>(0.0);
        corvane::UndoablePropertyProxy<double> proxy("Value", property, undoId);
        double value = 0.0;
        for (auto _ : state) {
            value += 1.0;
            proxy.setValue(value);
            if (UndoStack::history().count() == mostEntries) {
                state.PauseTiming();
                UndoStack::history().clear();
                state.ResumeTiming();
            }
        }
    }
    UndoStack::history().clear();
    state.SetItemsProcessed(state.iterations());
}

/// An entry in the history for each change.
void BM_UndoablePropertyProxy_setValue(benchmark::State& state)
{
    measureSetValue(state, -1);
}

/// One entry for all changes.
void BM_UndoablePropertyProxy_setValueMerging(benchmark::State& state)
{
    measureSetValue(state, UndoStack::nextUndoID());
}

BENCHMARK(BM_UndoablePropertyProxy_setValue);
BENCHMARK(BM_UndoablePropertyProxy_setValueMerging);

} // namespace
