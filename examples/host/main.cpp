// A host application from end to end: it installs a host of its own, reads a definition library,
// computes a process graph with it, answers formulas, writes XML and lets two components talk.
// It prints the same text on every run.
//
//   bakery FOLDER        the folder of the library, with bakery.mep in it
#include <algorithm>
#include <cstdio>
#include <exception>
#include <sstream>
#include <string>
#include <vector>

#include <ixomep/ixomep.h>

#include "components.h"
#include "graph_expression.h"
#include "graph_text.h"
#include "library_host.h"
#include "process_graph.h"

namespace bakery {
namespace {

void Title(const char* title) { std::printf("\n== %s\n", title); }

std::string Shown(const IxoMepValue& value) {
  if (value.GetType() != IxoMepValueType::Real) return Utf8(value.GetStr());
  char text[64];
  std::snprintf(text, sizeof text, "%.2f", value.GetReal());
  return text;
}

void PrintVariable(const Formula& formula, IxoMepValueSet& scope) {
  std::printf("  %-12s %s%s%s\n", Utf8(formula.name).c_str(),
              Shown(*scope.OldGetValue(formula.name)).c_str(), formula.unit.IsEmpty() ? "" : " ",
              Utf8(formula.unit).c_str());
}

bool Load(const char* file, ProcessGraph& graph, String& complete_text, std::string& problem) {
  String text;
  if (!IxoHost::Current().ReadTextFile(file, text)) {
    problem = std::string(file) + " cannot be read";
    return false;
  }
  GraphText definition(text, file, graph);
  if (!definition.Read(problem)) return false;
  complete_text = definition.GetCompleteText();
  return true;
}

void PrintGraph(ProcessGraph& graph) {
  Title("Tasks");
  for (const auto& task : graph.Tasks()) {
    std::printf("%s: %s\n", Utf8(task->name).c_str(),
                Utf8(task->scope.OldGetValue("title")->GetStr()).c_str());
    for (const Formula& formula : graph.FormulasOf(task->kind)) PrintVariable(formula, task->scope);
  }
  Title("Summary");
  for (const Formula& formula : graph.Summaries()) PrintVariable(formula, graph.Scope());
}

// What a user could type into a field of this application.
void PrintFormula(const char* text, ProcessGraph& graph, IxoMepValueSet& scope) {
  GraphExpression expression(graph);
  IxoMepValue* result = nullptr;
  String error;
  IxoMepErrorEnum code = expression.SetExpression(text, error);
  if (code == IMEPERR_NONE) {
    code = expression.Evaluate(&scope, result, error, /*strict=*/true, /*ownScope=*/true);
  }
  const std::unique_ptr<IxoMepValue> owner(result);
  if (code != IMEPERR_NONE) {
    std::printf("%s\n  error %d: %s\n", text, static_cast<int>(code), Utf8(error).c_str());
  } else {
    std::printf("%s\n  %s\n", text, result != nullptr ? Shown(*result).c_str() : "nothing");
  }
}

void PrintFormulas(ProcessGraph& graph) {
  Title("Formulas");
  IxoMepValueSet& bake = graph.FindTask("bake")->scope;
  PrintFormula("cost / batch", graph, bake);
  PrintFormula("each(task)", graph, bake);
  PrintFormula("rate(\"oven\") + rate({\"baker\", \"mixer\"})", graph, graph.Scope());
  PrintFormula("task(\"deliver\").finish - begin", graph, bake);
  PrintFormula("STR task(\"rise\").follows(\"mix\") + STR task(\"mix\").follows(\"rise\")", graph,
               graph.Scope());
  PrintFormula("each(cond(cost > 40, title, \"\"))", graph, graph.Scope());
  PrintFormula("rate(\"toaster\")", graph, graph.Scope());
  PrintFormula("rate(12)", graph, graph.Scope());
  PrintFormula("rate()", graph, graph.Scope());
  PrintFormula("profit(2)", graph, graph.Scope());
  PrintFormula("batch := 1", graph, graph.Scope());
}

void PrintXml(const String& complete_text) {
  Title("XML");
  IxoMepConverter converter(complete_text);
  converter.SetXmlNames(true);
  if (converter.Parse() != IMEPERR_NONE) {
    std::printf("%s\n", Utf8(converter.GetErrorText()).c_str());
    return;
  }
  // With the declaration the document is UTF-8 already.
  std::printf("%s", converter.ToXML(/*withDeclaration=*/true, "bakery").c_str());
}

void PrintMessages(ProcessGraph& graph) {
  Title("Messages");
  ModelingPort modeling(graph);
  SimulationPort simulation;

  IxoMessage run("run");
  run.SendTo(IxoMessagePort::Simulation());
  std::printf("%s\n", run.GetAnswer().c_str());

  // A name that was built at run time finds the port by its text.
  IxoMessage question("value dearest");
  question.SendTo(std::string("Modeling").c_str());
  std::printf("dearest: %s\n", Utf8(question.GetAnswer()).c_str());

  // All ports, in the order of their names' addresses; what is printed is sorted.
  IxoMessage hello("hello");
  hello.SendToAll();
  std::istringstream answer(hello.GetAnswer().c_str());
  std::vector<std::string> lines;
  for (std::string line; std::getline(answer, line);) lines.push_back(line);
  std::sort(lines.begin(), lines.end());
  for (const std::string& line : lines) std::printf("%s\n", line.c_str());

  IxoMessage lost("anybody?");
  std::printf("Explorer: %s\n", lost.SendTo(IxoMessagePort::Explorer()) ? "there" : "not there");
}

// What this application says about texts that are wrong; each is read into a graph of its own.
void PrintProblems(const LibraryHost& host) {
  Title("Problems");
  const char* const texts[] = {
      "@INCLUDE \"broken.mep\"",
      "@INCLUDE \"../CMakeLists.txt\"",
      "TASK \"a\" after: {\"b\"}\nTASK \"b\" after: {\"a\"}",
      "GRAPH \"g\"\nRESOURCE \"press\" rate: \"high\"",
      "GRAPH \"g\"\nMACHINE \"press\"",
  };
  for (const char* text : texts) {
    ProcessGraph graph;
    std::string problem;
    GraphText definition(text, "a text", graph);
    if (definition.Read(problem)) graph.Compute(problem);
    std::printf("%s\n", problem.c_str());
  }
  IxoMepParser::SetErrorBoxTitle("Bakery");
  IxoMepParser::ShowErrorBox("The flour is used up.", /*fatal=*/false);
  for (const std::string& report : host.Reports()) std::printf("%s\n", report.c_str());
}

int Run(const char* folder) {
  LibraryHost host(folder);
  ProcessGraph graph;
  String complete_text;
  std::string problem;
  if (!Load("bakery.mep", graph, complete_text, problem) || !graph.Compute(problem)) {
    std::fprintf(stderr, "%s\n", problem.c_str());
    return 1;
  }
  std::printf("%s with ixomep %s\n", Utf8(graph.Scope().OldGetValue("graph")->GetStr()).c_str(),
              IXOMEP_VERSION_TEXT);
  PrintGraph(graph);
  PrintFormulas(graph);
  PrintXml(complete_text);
  PrintMessages(graph);
  PrintProblems(host);
  return 0;
}

}  // namespace
}  // namespace bakery

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", arguments[0]);
    return 2;
  }
  try {
    return bakery::Run(arguments[1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", arguments[0], error.what());
    return 1;
  }
}
