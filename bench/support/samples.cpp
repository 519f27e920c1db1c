// Writes one model as definition text, XML and JSON side by side. See samples.h.
#include "bench/support/samples.h"

#include <string_view>

namespace ixomep::bench {

namespace {

constexpr int kChildren = 4;

std::string LowerCased(std::string_view keyword) {
  std::string name;
  for (const char byte : keyword) {
    name += byte == '_' ? '-' : static_cast<char>(byte - 'A' + 'a');
  }
  return name;
}

std::string Escaped(std::string_view text, std::string_view quote) {
  std::string escaped;
  for (const char byte : text) {
    if (byte == '"') {
      escaped += quote;
    } else {
      escaped += byte;
    }
  }
  return escaped;
}

// Writes elements, one call for each of their parts, into all three texts.
class SampleWriter {
 public:
  explicit SampleWriter(Sample& sample) : sample_(sample) {
    sample_.xml = "<model>\n";
    sample_.json = "[\n";
  }

  void Open(std::string_view keyword, std::string_view value) {
    Separate(sample_.json, ",\n");
    sample_.definition += Indent() + std::string(keyword) + " " + Quoted(value);
    sample_.xml += Indent() + "<" + LowerCased(keyword) + " val=" + XmlQuoted(value);
    sample_.json += Indent() + "{\"k\": \"" + std::string(keyword) + "\", \"v\": " + Quoted(value) +
                    ", \"a\": {";
    is_first_ = true;
  }
  void Text(const std::string& name, const std::string& modifier, std::string_view text) {
    Separate(sample_.json, ", ");
    sample_.definition += "\n" + Indent() + "  " + name + ": ";
    sample_.json += "\"" + name + "\": ";
    if (!modifier.empty()) {
      sample_.definition += modifier + ": ";
      sample_.xml += " " + name + ".m=\"" + modifier + "\"";
      sample_.json += "{\"m\": \"" + modifier + "\", \"v\": " + Quoted(text) + "}";
    } else {
      sample_.json += Quoted(text);
    }
    sample_.definition += Quoted(text);
    sample_.xml += " " + name + "=" + XmlQuoted(text);
  }
  void Number(const std::string& name, const std::string& digits, const std::string& unit) {
    Separate(sample_.json, ", ");
    sample_.definition += "  " + name + ": " + digits + unit;
    sample_.xml += " " + name + "=\"" + digits + unit + "\"";
    sample_.json += "\"" + name + "\": ";
    sample_.json += unit.empty() ? digits : "\"" + digits + unit + "\"";
  }
  void Option(const std::string& name) {
    Separate(sample_.json, ", ");
    sample_.definition += "  " + name;
    sample_.xml += " " + name + "=\"true\"";
    sample_.json += "\"" + name + "\": true";
  }
  void OpenBody() {
    sample_.definition += "\n" + Indent() + "{\n";
    sample_.xml += ">\n";
    sample_.json += "}, \"b\": [\n";
    ++level_;
    is_first_ = true;
  }
  void CloseBody(std::string_view keyword) {
    --level_;
    sample_.definition += Indent() + "}\n";
    sample_.xml += Indent() + "</" + LowerCased(keyword) + ">\n";
    sample_.json += "\n" + Indent() + "]}";
    is_first_ = false;
  }
  void Close() {
    sample_.definition += "\n";
    sample_.xml += " />\n";
    sample_.json += "}}";
    is_first_ = false;
  }
  std::int64_t Size() const { return static_cast<std::int64_t>(sample_.definition.size()); }
  void Finish() {
    sample_.xml += "</model>\n";
    sample_.json += "\n]\n";
  }

 private:
  std::string Indent() const { return std::string(2 * static_cast<std::size_t>(level_), ' '); }
  static std::string Quoted(std::string_view text) { return "\"" + Escaped(text, "\\\"") + "\""; }
  static std::string XmlQuoted(std::string_view text) {
    return "\"" + Escaped(text, "&quot;") + "\"";
  }
  void Separate(std::string& json, std::string_view separator) {
    if (!is_first_) json += separator;
    is_first_ = false;
  }

  Sample& sample_;
  int level_ = 0;
  bool is_first_ = true;
};

void WritePart(SampleWriter& out, int station, int part) {
  const std::string number = std::to_string(station * kChildren + part);
  out.Open("MACHINE_PART", "part " + number);
  out.Text("title", "de", "Welle mit Passfeder und 6\" Flansch " + number);
  out.Text("material", "", "steel, hardened and ground");
  out.Number("length", std::to_string(10 + part) + "." + std::to_string(1 + station % 99), "cm");
  out.Number("diameter", "12.5", "mm");
  out.Number("count", number, "");
  out.Option("visible");
  out.Close();
}

void WriteStation(SampleWriter& out, int station) {
  const std::string number = std::to_string(station);
  out.Open("WORK_STATION", "station " + number);
  out.Text("title", "en", "Machining centre with pallet changer " + number);
  out.Number("width", std::to_string(100 + station % 400) + ".5", "cm");
  out.Number("cycle", std::to_string(1 + station % 90) + ".25", "s");
  out.Number("rate", "0.97" + std::to_string(1 + station % 9), "");
  out.Option("active");
  out.OpenBody();
  for (int part = 0; part < kChildren; ++part) WritePart(out, station, part);
  out.CloseBody("WORK_STATION");
}

}  // namespace

Sample MakeSample(std::int64_t bytes) {
  Sample sample;
  SampleWriter out(sample);
  for (int station = 1; out.Size() < bytes; ++station) WriteStation(out, station);
  out.Finish();
  return sample;
}

}  // namespace ixomep::bench
