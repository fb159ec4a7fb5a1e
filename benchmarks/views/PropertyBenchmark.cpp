#include <dataviews/common/views/Property.h>

#include <benchmark/benchmark.h>

#include <cstdint>

namespace {

/// \p property as its users hold it: the compiler does not see which class it is.
corvane::PropertyAbstract<double>& asAbstract(corvane::Property<double>& property)
{
    corvane::PropertyAbstract<double>* abstract = &property;
    benchmark::DoNotOptimize(abstract);
    return *abstract;
}

/// A new value at each turn, told to as many listeners as the argument says.
void setValue(benchmark::State& state)
{
    corvane::Property<double> owned(0.0);
    corvane::PropertyAbstract<double>& property = asAbstract(owned);
    double heard = 0.0;
    for (std::int64_t listener = 0; listener < state.range(0); ++listener) {
        property.valueChanged.connect([&heard](double value) { heard += value; });
    }
    double value = 0.0;
    for (auto _ : state) {
        value += 1.0;
        property.setValue(value);
    }
    benchmark::DoNotOptimize(heard);
    state.SetItemsProcessed(state.iterations());
}

/// The value that is there already.
void setSameValue(benchmark::State& state)
{
    corvane::Property<double> owned(1.0);
    corvane::PropertyAbstract<double>& property = asAbstract(owned);
    double value = 1.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(value);
        property.setValue(value);
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(setValue)->Name("settings/set/ours")->ArgName("listeners")->Arg(0)->Arg(1)->Arg(100);
BENCHMARK(setSameValue)->Name("settings/set_same/ours");

} // namespace
