// What the attribute model costs: filling a request, reading it back, reading a method-object
// of a reply. "allocations" counts those of one round; a bare map shows how many of them are
// the map's own.
//
//     modelCost --benchmark_filter=Text
#include <benchmark/benchmark.h>

#include <map>
#include <string>

#include "bench/allocationCount.h"
#include "testbed/sampleClasses.h"

namespace {

using Add = APISample::APISampleAddMethod;

// Longer than what a string holds in itself, so that a copy is an allocation.
const std::string kPlain = "a value of some forty characters' length";
const std::string kMarkup = "a <value> & \"some\" of it has to be escaped";

/// Runs `round` as often as it takes, and reports the allocations of one.
template <class Round>
void measure(benchmark::State& state, Round round) {
    round();  // descriptors are built on first use
    const std::size_t before = allocationCount();
    for ([[maybe_unused]] auto _ : state) {
        round();
    }
    state.counters["allocations"] =
        static_cast<double>(allocationCount() - before) / static_cast<double>(state.iterations());
}

void bareMapText(benchmark::State& state) {
    measure(state, [] {
        std::map<std::string, std::string> values;
        values.insert_or_assign(Add::GetNameAttr()->GetXmlName(), kPlain);
        benchmark::DoNotOptimize(values);
    });
}
BENCHMARK(bareMapText);

void setText(benchmark::State& state, const std::string& value) {
    measure(state, [&] {
        Add method;
        method.SetName(value);
        benchmark::DoNotOptimize(method);
    });
}
BENCHMARK_CAPTURE(setText, plain, kPlain);
BENCHMARK_CAPTURE(setText, markup, kMarkup);

/// Five texts and two lists of two records.
void fill(Add& method) {
    APISampleRecord records[2];
    for (APISampleRecord& record : records) {
        record.SetAddress("10.20.30.40");
        record.SetPort(3260);
    }
    const std::vector<const BASEApiMethodObject*> list{&records[0], &records[1]};
    method.SetName(kPlain);
    method.SetId("hcc-1");
    method.SetKey("0123456789abcdef");
    method.SetHost("node-1.example");
    method.SetSystem("Linux");
    method.SetRecords(list);
    method.SetOthers(list);
}

void fillRequest(benchmark::State& state) {
    measure(state, [] {
        Add method;
        fill(method);
        benchmark::DoNotOptimize(method);
    });
}
BENCHMARK(fillRequest);

void readRequest(benchmark::State& state) {
    Add method;
    fill(method);
    measure(state, [&] {
        benchmark::DoNotOptimize(method.GetName().size() + method.GetId().size() +
                                 method.GetKey().size() + method.GetHost().size() +
                                 method.GetSystem().size() + method.GetRecords().size() +
                                 method.GetOthers().size());
    });
}
BENCHMARK(readRequest);

void readMethodObject(benchmark::State& state) {
    APISampleRecord record;
    record.SetAddress("10.20.30.40");
    record.SetPort(3260);
    record.SetComment(kMarkup);
    const std::string text = record.ToXMLString(true);
    measure(state, [&] {
        APISampleRecord copy;
        copy.Parse(text);
        benchmark::DoNotOptimize(copy.GetPort() +
                                 static_cast<std::int64_t>(copy.GetComment().size()));
    });
}
BENCHMARK(readMethodObject);

}  // namespace

BENCHMARK_MAIN();
