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
void setUndoably(benchmark::State& state)
{
    measureSetValue(state, -1);
}

/// One entry for all changes.
void setMerging(benchmark::State& state)
{
    measureSetValue(state, UndoStack::nextUndoID());
}

BENCHMARK(setUndoably)->Name("settings/set_undoably/ours");
BENCHMARK(setMerging)->Name("settings/set_merging/ours");

} // namespace
