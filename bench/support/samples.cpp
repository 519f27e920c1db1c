// Writes one model as definition text, XML and JSON side by side. See samples.h.
#include "bench/support/samples.h"

#include <array>
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
  SampleWriter(Sample& sample, bool has_lines) : sample_(sample), has_lines_(has_lines) {
    sample_.xml = "<model>\n";
    sample_.json = "[\n";
  }

  void Open(std::string_view keyword, std::string_view value) {
    Separate(sample_.json, ",\n");
    if (has_lines_ && level_ == 0) sample_.definition += "# what follows is a part of its own\n";
    sample_.definition += Indent() + std::string(keyword) + " " + Quoted(value);
    sample_.xml += Indent() + "<" + LowerCased(keyword) + " val=" + XmlQuoted(value);
    sample_.json += Indent() + "{\"k\": \"" + std::string(keyword) + "\", \"v\": " + Quoted(value) +
                    ", \"a\": {";
    is_first_ = true;
  }
  void Text(const std::string& name, const std::string& modifier, std::string_view text) {
    Separate(sample_.json, ", ");
    sample_.definition += NextLine() + name + ": ";
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
    sample_.definition += NextItem() + name + ": " + digits + unit;
    sample_.xml += " " + name + "=\"" + digits + unit + "\"";
    sample_.json += "\"" + name + "\": ";
    sample_.json += unit.empty() ? digits : "\"" + digits + unit + "\"";
  }
  void Option(const std::string& name) {
    Separate(sample_.json, ", ");
    sample_.definition += NextItem() + name;
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
  std::string Indent() const {
    const auto level = static_cast<std::size_t>(level_);
    return has_lines_ ? std::string(level, '\t') : std::string(2 * level, ' ');
  }
  std::string NextLine() const { return "\n" + Indent() + (has_lines_ ? "\t" : "  "); }
  std::string NextItem() const { return has_lines_ ? NextLine() : "  "; }
  static std::string Quoted(std::string_view text) { return "\"" + Escaped(text, "\\\"") + "\""; }
  static std::string XmlQuoted(std::string_view text) {
    return "\"" + Escaped(text, "&quot;") + "\"";
  }
  void Separate(std::string& json, std::string_view separator) {
    if (!is_first_) json += separator;
    is_first_ = false;
  }

  Sample& sample_;
  bool has_lines_;
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

// The same numbers in every run.
class Numbers {
 public:
  int Below(int limit) {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<int>((state_ >> 33) % static_cast<std::uint64_t>(limit));
  }
  bool Chance(int percent) { return Below(100) < percent; }

 private:
  std::uint64_t state_ = 1;
};

constexpr std::array<const char*, 12> kKeywords = {"PART",   "BOLT",  "MACHINE_PART", "SHAFT",
                                                   "GEAR",   "PLATE", "WORK_STATION", "BEARING",
                                                   "SENSOR", "CABLE", "HOUSING",      "MOTOR"};
constexpr std::array<const char*, 10> kTexts = {"title",       "material", "supplier", "remark",
                                                "drawing",     "norm",     "place",    "order-text",
                                                "colour_name", "finish"};
constexpr std::array<const char*, 10> kNumbers = {"length", "width",    "h",          "diameter",
                                                  "count",  "mass",     "unit_price", "angle",
                                                  "cycle",  "tolerance"};
constexpr std::array<const char*, 6> kOptions = {"visible", "locked",   "active",
                                                 "hidden",  "mirrored", "is_standard_part"};
constexpr std::array<const char*, 5> kUnits = {"", "mm", "cm", "m", "s"};
constexpr std::string_view kWords =
    "shaft with key and 6\" flange, hardened; ground to the last, see (drawing) of the maker # "
    "turned, milled: {painted} or zinc-plated, delivered in boxes of ten without further notice ";

std::string WordsOf(Numbers& numbers, int most) {
  const int size = numbers.Below(most);
  std::string text = size == 0 ? "" : "x";
  for (int left = size - 1; left > 0;) {
    const auto from = static_cast<std::size_t>(numbers.Below(static_cast<int>(kWords.size()) / 2));
    const std::string_view some = kWords.substr(from, static_cast<std::size_t>(left));
    text += some;
    left -= static_cast<int>(some.size());
  }
  return text;
}

std::string DigitsOf(Numbers& numbers) {
  constexpr std::array<int, 4> kLimits = {10, 100, 10'000, 100'000'000};
  std::string digits =
      std::to_string(numbers.Below(kLimits[static_cast<std::size_t>(numbers.Below(4))]));
  if (numbers.Chance(50))
    digits += "." + std::to_string(numbers.Below(numbers.Chance(50) ? 10 : 1000));
  return digits;
}

template <std::size_t kCount>
const char* PickFrom(Numbers& numbers, const std::array<const char*, kCount>& choices) {
  return choices[static_cast<std::size_t>(numbers.Below(int{kCount}))];
}

// Every element has its own selection of attributes, but in the same order, as writers write them.
void WriteVaried(SampleWriter& out, Numbers& numbers, int depth) {
  const char* const keyword = PickFrom(numbers, kKeywords);
  out.Open(keyword, WordsOf(numbers, 30));
  for (const char* const name : kTexts) {
    if (numbers.Chance(30)) out.Text(name, numbers.Chance(10) ? "de" : "", WordsOf(numbers, 70));
  }
  for (const char* const name : kNumbers) {
    if (numbers.Chance(30)) out.Number(name, DigitsOf(numbers), PickFrom(numbers, kUnits));
  }
  for (const char* const name : kOptions) {
    if (numbers.Chance(20)) out.Option(name);
  }
  if (depth >= 3 || !numbers.Chance(25)) return out.Close();
  out.OpenBody();
  for (int children = 1 + numbers.Below(6); children > 0; --children) {
    WriteVaried(out, numbers, depth + 1);
  }
  out.CloseBody(keyword);
}

void WriteFlat(SampleWriter& out, Numbers& numbers) {
  out.Open(PickFrom(numbers, kKeywords), WordsOf(numbers, 12));
  out.Number("x", DigitsOf(numbers), "mm");
  out.Number("y", DigitsOf(numbers), "mm");
  out.Number("id", std::to_string(numbers.Below(1'000'000)), "");
  if (numbers.Chance(50)) out.Option("visible");
  out.Close();
}

void WriteNested(SampleWriter& out, Numbers& numbers, int depth) {
  const char* const keyword = kKeywords[static_cast<std::size_t>(depth)];
  out.Open(keyword, WordsOf(numbers, 12));
  out.Number("id", std::to_string(numbers.Below(1'000'000)), "");
  if (depth == 10 || !numbers.Chance(60)) return out.Close();
  out.OpenBody();
  for (int children = 1 + numbers.Below(2); children > 0; --children) {
    WriteNested(out, numbers, depth + 1);
  }
  out.CloseBody(keyword);
}

}  // namespace

Sample MakeSample(std::int64_t bytes, Shape shape) {
  Sample sample;
  SampleWriter out(sample, shape == Shape::Lines);
  Numbers numbers;
  for (int station = 1; out.Size() < bytes; ++station) {
    switch (shape) {
      case Shape::Model:
        WriteStation(out, station);
        break;
      case Shape::Varied:
      case Shape::Lines:
        WriteVaried(out, numbers, 0);
        break;
      case Shape::Flat:
        WriteFlat(out, numbers);
        break;
      case Shape::Nested:
        WriteNested(out, numbers, 0);
        break;
    }
  }
  out.Finish();
  return sample;
}

}  // namespace ixomep::bench
