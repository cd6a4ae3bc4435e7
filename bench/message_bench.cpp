// Typed messages beside bare tinyxml2 doing the same text in the same run:
//   build_3, build_15    BuildMsg of a filled object; floor: a DOM of one element with the same attributes,
//                        printed
//   parse_3, parse_15    ParseMsg into an object; floor: parsing the text and reading each attribute
// The messages have 3 and 15 fields, one of them a text of 200 characters. Before the table the program says
// what the operations ask of the heap, and what it costs to make one object of each message class.

#include <tinyxml2.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "archive/catalogue/catalogue.h"
#include "bench/RatioReporter.h"
#include "common/client/utility/src/ipc/CmmMQMsg.h"
#include "tests/support/CountedHeap.h"

namespace {

using Cmm::Archive::CatalogueMessage;
using Cmm::Archive::MessageClasses;
using Cmm::Archive::MessageFieldType;
using velm_bench::kFloorSuffix;
using velm_bench::Register;

// A message with every field filled, the first text field with 200 characters, and its text.
struct Sample {
  explicit Sample(const char* className) : message(*Cmm::Archive::FindMessageClass(className)) {
    bool longTextSet = false;
    const auto fields = message.Class().fields;
    for (size_t i = 0; i < fields.size(); ++i) {
      const bool isText = fields[i].type == MessageFieldType::str || fields[i].type == MessageFieldType::wstr;
      std::string value = isText ? "value" + std::to_string(i) : std::to_string(1000 + i);
      if (isText && !longTextSet) value.assign(200, 'x');
      longTextSet = longTextSet || isText;
      message.SetFieldText(i, value);
      names.emplace_back(fields[i].name);
      values.push_back(value);
    }
    built.reset(message.Object().BuildMsg(-1));
    text.assign(reinterpret_cast<const char*>(built->GetData()), built->GetLen());
  }

  CatalogueMessage message;
  std::vector<std::string> names;
  std::vector<std::string> values;
  std::unique_ptr<Cmm::CmmMQ_Msg> built;
  std::string text;
};

size_t BuildBare(const Sample& sample) {
  tinyxml2::XMLDocument document;
  tinyxml2::XMLElement* element = document.NewElement(sample.message.Class().wireName);
  for (size_t i = 0; i < sample.names.size(); ++i)
    element->SetAttribute(sample.names[i].c_str(), sample.values[i].c_str());
  element->SetAttribute("version", 0);
  document.InsertEndChild(element);
  tinyxml2::XMLPrinter printer;
  document.Print(&printer);
  return static_cast<size_t>(printer.CStrSize());
}

size_t ParseBare(const Sample& sample) {
  tinyxml2::XMLDocument document;
  document.Parse(sample.text.data(), sample.text.size());
  const tinyxml2::XMLElement* element = document.RootElement();
  size_t length = 0;
  for (const std::string& name : sample.names) {
    const std::string value = element->FindAttribute(name.c_str())->Value();
    length += value.size();
  }
  return length;
}

bool Build(Sample& sample) {
  return std::unique_ptr<Cmm::CmmMQ_Msg>(sample.message.Object().BuildMsg(-1)) != nullptr;
}

bool Parse(Sample& sample) {
  return sample.message.Object().ParseMsg(sample.built.get()) == 1;
}

template <typename Operation>
void Run(benchmark::State& state, Operation operation, Sample* sample) {
  for (auto _ : state)
    benchmark::DoNotOptimize(operation(*sample));
}

template <typename Operation>
long HeapCallsOf(Operation operation, Sample& sample) {
  operation(sample);  // what is made once is made here
  const long before = velm_test::CountHeapCalls().news;
  operation(sample);
  return velm_test::CountHeapCalls().news - before;
}

void PrintHeapCalls(const char* name, Sample& sample) {
  std::printf("%s: heap blocks per build %ld (bare %ld), per parse %ld (bare %ld), text of %zu bytes\n", name,
              HeapCallsOf(Build, sample), HeapCallsOf(BuildBare, sample), HeapCallsOf(Parse, sample),
              HeapCallsOf(ParseBare, sample), sample.text.size());
}

// The first object of a class also registers the class's definition, which stays.
void PrintFirstConstruction() {
  const velm_test::HeapCalls before = velm_test::CountHeapCalls();
  const auto start = std::chrono::steady_clock::now();
  for (const auto& messageClass : MessageClasses())
    messageClass.make();
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
  const velm_test::HeapCalls after = velm_test::CountHeapCalls();
  std::printf("one object of each of %zu classes: %.2f ms, %ld heap blocks, of which %ld stay\n",
              MessageClasses().size(), time.count(), after.news - before.news, after.Live() - before.Live());
}

template <typename Operation, typename Bare>
void RegisterPair(const std::string& name, Operation operation, Bare bare, Sample& sample) {
  Register(name, Run<Operation>, operation, &sample);
  Register(name + kFloorSuffix, Run<Bare>, bare, &sample);
}

}  // namespace

int main(int argc, char** argv) {
  PrintFirstConstruction();
  Sample three("CQXMBMessage_NotifyStartLogin");
  Sample fifteen("CQXMBMessage_NotifyPTLoginInfo");
  PrintHeapCalls("3 fields", three);
  PrintHeapCalls("15 fields", fifteen);
  RegisterPair("build_3", Build, BuildBare, three);
  RegisterPair("build_15", Build, BuildBare, fifteen);
  RegisterPair("parse_3", Parse, ParseBare, three);
  RegisterPair("parse_15", Parse, ParseBare, fifteen);
  return velm_bench::RunBenchmarks(argc, argv);
}
