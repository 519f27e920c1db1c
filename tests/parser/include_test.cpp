// @INCLUDE: names, the cache, splicing, lines of included files, limits.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ixomep/parser/converter.h"
#include "ixomep/values/mep_text.h"
#include "tests/support/definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

using Names = std::vector<std::string>;

std::string Complete(const IxoMepParser& parser) {
  return std::string(parser.GetCompleteText().view());
}

String Quoted(std::string_view name) { return MepTextOfString(name); }

TEST(Include, File_is_read_in_the_place_of_the_directive) {
  TestHost host;
  host.files["b.txt"] = "B c: 1\nD";
  const Definition definition("A\n@INCLUDE \"b.txt\"\nE f");
  EXPECT_EQ(definition.code, IMEPERR_NONE);
  EXPECT_EQ(Shape(definition.parser), "A; B c=1; D; E f");
  EXPECT_EQ(Complete(definition.parser), "A\nB c: 1\nD\nE f");
  EXPECT_EQ(definition.parser.GetText(), "A\nB c: 1\nD\nE f");
  EXPECT_EQ(definition.parser.GetCurElemIndex(), 0);
}

TEST(Include, Directive_is_no_element) {
  TestHost host;
  host.files["b.txt"] = "B";
  EXPECT_EQ(ShapeOf("@INCLUDE \"b.txt\""), "B");
  host.files["b.txt"] = "";
  EXPECT_EQ(ShapeOf("@INCLUDE \"b.txt\""), "");
}

TEST(Include, Empty_file_removes_the_directive_and_adds_nothing) {
  TestHost host;
  host.files["empty"] = "";
  const Definition definition("A @INCLUDE \"empty\" B");
  EXPECT_EQ(definition.code, IMEPERR_NONE);
  EXPECT_EQ(Shape(definition.parser), "A; B");
  EXPECT_EQ(Complete(definition.parser), "A  B");
}

TEST(Include, Name_may_be_an_expression_or_another_value) {
  TestHost host;
  host.files["b.txt"] = "B";
  host.files["12"] = "C";
  EXPECT_EQ(ShapeOf("@INCLUDE (\"b\" + \".txt\")"), "B");
  EXPECT_EQ(ShapeOf("@INCLUDE 12"), "C");
}

TEST(Include, Without_a_value_the_name_is_empty) {
  TestHost host;
  const Definition definition("@INCLUDE");
  EXPECT_EQ(definition.code, IMEPERR_INCLUDE_FAILED);
  EXPECT_EQ(host.read_names, Names{""});
  EXPECT_EQ(definition.parser.GetErrorText(),
            ErrorTextOf(IMEPERR_INCLUDE_FAILED, {{"%filename", "\"\""}}, 0));
}

TEST(Include, Unknown_directive_is_41) {
  for (const char* keyword : {"@INCLUDED", "@", "@INC", "@INCLUDE_"}) {
    const Definition definition(std::string("A\n") + keyword + " \"b.txt\"\nB");
    EXPECT_EQ(definition.code, IMEPERR_UNKNOWN_DIRECTIVE) << keyword;
    EXPECT_EQ(definition.parser.GetErrorText(),
              ErrorTextOf(IMEPERR_UNKNOWN_DIRECTIVE, {{"%s", keyword}}, 2));
    EXPECT_EQ(Shape(definition.parser), "A");
  }
  EXPECT_EQ(Definition("@include \"b.txt\"").code, IMEPERR_BAD_KEYWORD);
}

TEST(Include, Unreadable_file_is_43_with_its_name_as_a_literal) {
  TestHost host;
  const Definition definition("A\n\n@INCLUDE \"a\\\\b\\tc\"\n");
  EXPECT_EQ(definition.code, IMEPERR_INCLUDE_FAILED);
  EXPECT_EQ(definition.parser.GetErrorText(),
            ErrorTextOf(IMEPERR_INCLUDE_FAILED, {{"%filename", "\"a\\\\b\\tc\""}}, 3));
}

TEST(IncludeName, Relative_one_is_in_the_directory_of_the_current_file) {
  TestHost host;
  host.files["C:\\defs\\a.txt"] = "A @INCLUDE \"b.txt\" @INCLUDE \"sub\\\\c.txt\"";
  host.files["C:\\defs\\b.txt"] = "B";
  host.files["C:\\defs\\sub\\c.txt"] = "C @INCLUDE \"d.txt\"";
  host.files["C:\\defs\\sub\\d.txt"] = "D";
  EXPECT_EQ(ShapeOf("@INCLUDE \"C:\\\\defs\\\\a.txt\""), "A; B; C; D");
  EXPECT_EQ(host.read_names, (Names{"C:\\defs\\a.txt", "C:\\defs\\b.txt", "C:\\defs\\sub\\c.txt",
                                    "C:\\defs\\sub\\d.txt"}));
}

TEST(IncludeName, With_a_colon_or_a_leading_separator_is_used_as_written) {
  TestHost host;
  host.files["C:\\defs\\a.txt"] =
      "@INCLUDE \"x:\\\\b.txt\" @INCLUDE \"\\\\b.txt\" @INCLUDE \"/b.txt\" @INCLUDE \"d:b\"";
  for (const char* name : {"x:\\b.txt", "\\b.txt", "/b.txt", "d:b"}) host.files[name] = "";
  EXPECT_EQ(Definition("@INCLUDE \"C:\\\\defs\\\\a.txt\"").code, IMEPERR_NONE);
  EXPECT_EQ(host.read_names, (Names{"C:\\defs\\a.txt", "x:\\b.txt", "\\b.txt", "/b.txt", "d:b"}));
}

TEST(IncludeName, Slash_separates_directories_too) {
  TestHost host;
  host.files["defs/a"] = "@INCLUDE \"b\"";
  host.files["defs/b"] = "B";
  EXPECT_EQ(ShapeOf("@INCLUDE \"defs/a\""), "B");
}

TEST(IncludeName, At_the_outermost_level_and_in_a_file_without_directory_as_written) {
  TestHost host;
  host.files["a"] = "@INCLUDE \"b\"";
  host.files["b"] = "B";
  const Definition definition("@INCLUDE \"a\"", "C:\\defs\\outer.txt");
  EXPECT_EQ(definition.code, IMEPERR_NONE);
  EXPECT_EQ(host.read_names, (Names{"a", "b"}));
}

TEST(IncludeName, Behind_an_include_the_outer_file_is_current_again) {
  TestHost host;
  host.files["d\\a"] = "@INCLUDE \"e\\\\b\" @INCLUDE \"c\"";
  host.files["d\\e\\b"] = "B";
  host.files["d\\c"] = "C";
  EXPECT_EQ(ShapeOf("@INCLUDE \"d\\\\a\" D"), "B; C; D");
}

TEST(IncludeCache, Repository_file_is_read_once_for_all_parsers) {
  TestHost host;
  host.files["db:\\cache1"] = "B";
  for (int round = 0; round < 2; ++round) {
    IxoMepParser parser("@INCLUDE \"db:\\\\cache1\" @INCLUDE \"db:\\\\cache1\"", "test");
    parser.SetUseIncludeCache(true);
    EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
    EXPECT_EQ(Shape(parser), "B; B");
  }
  EXPECT_EQ(host.ReadsOf("db:\\cache1"), 1);
}

TEST(IncludeCache, Is_off_unless_turned_on_and_serves_repository_names_only) {
  TestHost host;
  host.files["db:\\cache2"] = "B";
  host.files["other"] = "C";
  IxoMepParser without("@INCLUDE \"db:\\\\cache2\" @INCLUDE \"db:\\\\cache2\"", "test");
  EXPECT_EQ(without.Parse(), IMEPERR_NONE);
  EXPECT_EQ(host.ReadsOf("db:\\cache2"), 2);
  IxoMepParser with("@INCLUDE \"other\" @INCLUDE \"other\"", "test");
  with.SetUseIncludeCache(true);
  EXPECT_EQ(with.Parse(), IMEPERR_NONE);
  EXPECT_EQ(host.ReadsOf("other"), 2);
}

TEST(IncludeCache, Failed_reading_is_not_kept) {
  TestHost host;
  IxoMepParser parser("@INCLUDE \"db:\\\\cache3\"", "test");
  parser.SetUseIncludeCache(true);
  EXPECT_EQ(parser.Parse(), IMEPERR_INCLUDE_FAILED);
  host.files["db:\\cache3"] = "B";
  EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(parser), "B");
}

TEST(IncludeSplice, Offsets_index_the_text_after_splicing) {
  TestHost host;
  host.files["b"] = "BB @INCLUDE \"c\" DD";
  host.files["c"] = "long comment CCCC";
  host.files["c"] = "CCCC c: { X }";
  const Definition definition("A @INCLUDE \"b\" E { F }");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  const std::string text = Complete(definition.parser);
  EXPECT_EQ(text, "A BB CCCC c: { X } DD E { F }");
  for (std::int32_t i = 0; i < definition.parser.GetElemCount(); ++i) {
    const IxoMepElement& element = definition.Element(i);
    const std::string keyword(element.GetKeyword().view());
    EXPECT_EQ(text.substr(static_cast<std::size_t>(element.GetStartOffset()), keyword.size()),
              keyword);
  }
  EXPECT_EQ(definition.parser.GetElemText(2), "CCCC c: { X } ");
  EXPECT_EQ(definition.parser.GetElemText(4), "E { F }");
  EXPECT_EQ(definition.Element(4).GetBodyParser()->GetText(), " F ");
  EXPECT_EQ(definition.Element(4).GetBodyParser()->GetElement(0)->GetStartOffset(), 26);
}

TEST(IncludeSplice, Body_has_the_complete_text_of_its_moment) {
  TestHost host;
  host.files["b"] = "BB";
  const Definition definition("A @INCLUDE \"b\" { C } @INCLUDE \"b\"");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  const IxoMepParser* body = definition.Element(0).GetBodyParser();
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(Complete(*body), "A BB { C } @INCLUDE \"b\"");
  EXPECT_EQ(body->GetElement(0)->GetStartOffset(), 7);
  EXPECT_EQ(Complete(definition.parser), "A BB { C } BB");
}

TEST(IncludeSplice, Include_in_a_body_changes_the_bodys_text_only) {
  TestHost host;
  host.files["b"] = "BBB { D }";
  const Definition definition("A { @INCLUDE \"b\" C } E");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  EXPECT_EQ(Shape(definition.parser), "A {BBB {D}; C}; E");
  const IxoMepParser* body = definition.Element(0).GetBodyParser();
  EXPECT_EQ(Complete(*body), "A { BBB { D } C } E");
  EXPECT_EQ(body->GetText(), " BBB { D } C ");
  EXPECT_EQ(body->GetElement(1)->GetStartOffset(), 14);
  EXPECT_EQ(Complete(definition.parser), "A { @INCLUDE \"b\" C } E");
  EXPECT_EQ(Complete(*body->GetElement(0)->GetBodyParser()), "A { BBB { D } C } E");
}

TEST(IncludeSplice, Bodies_in_included_files_have_their_own_text) {
  TestHost host;
  host.files["b"] = "B { C b: { @INCLUDE \"c\" } }";
  host.files["c"] = "XXXXXXXXXXXXXXXXXXXXXXX { Y }";
  const Definition definition("A @INCLUDE \"b\" E");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  EXPECT_EQ(Shape(definition.parser), "A; B {C b{XXXXXXXXXXXXXXXXXXXXXXX {Y}}}; E");
  const IxoMepParser* inner =
      definition.Element(1).GetBodyParser()->GetElement(0)->GetAttr(0)->GetBodyParser();
  EXPECT_EQ(inner->GetText(), " XXXXXXXXXXXXXXXXXXXXXXX { Y } ");
  EXPECT_EQ(Complete(*inner), "A B { C b: { XXXXXXXXXXXXXXXXXXXXXXX { Y } } } E");
}

class OwnParser : public IxoMepParser {
 public:
  using IxoMepParser::IxoMepParser;
  IxoMepParser* NewParser(const String& text, std::int32_t start, std::int32_t length,
                          std::int32_t firstLine, const String& context) override {
    return new OwnParser(text, start, length, firstLine, context);
  }
};

// A class of a host gets its bodies' texts composed, the base class when they are asked for.
TEST(IncludeSplice, Bodies_of_every_class_agree) {
  TestHost host;
  host.files["b"] = "B { C b: { @INCLUDE \"c\" D } }\n(* *) c: { E }";
  host.files["c"] = "X 1 { Y\n { @INCLUDE \"d\" }  }";
  host.files["d"] = "Z\n";
  const String text("A { @INCLUDE \"b\" K { L } } @INCLUDE \"b\" F { G { @INCLUDE \"d\" } }");
  IxoMepParser plain(text, "test");
  OwnParser own(text, "test");
  IxoMepConverter converter(text);
  ASSERT_EQ(plain.Parse(), IMEPERR_NONE) << plain.GetErrorText().c_str();
  ASSERT_EQ(own.Parse(), IMEPERR_NONE);
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(plain), Shape(own));
  std::vector<const IxoMepParser*> plain_list = {&plain};
  std::vector<const IxoMepParser*> own_list = {&own};
  std::vector<const IxoMepParser*> converter_list = {&converter};
  const auto descend = [](std::vector<const IxoMepParser*>& list) {
    for (std::size_t at = 0; at < list.size(); ++at) {
      for (std::int32_t i = 0; i < list[at]->GetElemCount(); ++i) {
        const IxoMepElement& element = *list[at]->GetElement(i);
        if (element.GetBodyParser() != nullptr) list.push_back(element.GetBodyParser());
        for (std::int32_t k = 0; k < element.GetAttrCount(); ++k) {
          const IxoMepParser* body = element.GetAttr(k)->GetBodyParser();
          if (body != nullptr) list.push_back(body);
        }
      }
    }
  };
  descend(plain_list);
  descend(own_list);
  descend(converter_list);
  ASSERT_EQ(plain_list.size(), own_list.size());
  ASSERT_EQ(plain_list.size(), converter_list.size());
  for (std::size_t i = 0; i < plain_list.size(); ++i) {
    EXPECT_EQ(plain_list[i]->GetText(), own_list[i]->GetText());
    EXPECT_EQ(Complete(*plain_list[i]), Complete(*own_list[i]));
    EXPECT_EQ(Complete(*plain_list[i]), Complete(*converter_list[i]));
    for (std::int32_t k = 0; k < plain_list[i]->GetElemCount(); ++k) {
      const IxoMepElement& a = *plain_list[i]->GetElement(k);
      const IxoMepElement& b = *own_list[i]->GetElement(k);
      EXPECT_EQ(a.GetStartOffset(), b.GetStartOffset());
      EXPECT_EQ(a.GetLine(), b.GetLine());
    }
  }
}

TEST(IncludeLines, Included_file_counts_from_1_and_the_outer_file_goes_on) {
  TestHost host;
  host.files["b"] = "\nB\n\nC { \n D }\n\n\n";
  const Definition definition("\nA\n@INCLUDE \"b\"\nE");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  EXPECT_EQ(definition.Element(0).GetLine(), 2);
  EXPECT_EQ(definition.Element(1).GetLine(), 2);
  EXPECT_EQ(definition.Element(2).GetLine(), 4);
  EXPECT_EQ(definition.Element(2).GetBodyParser()->GetElement(0)->GetLine(), 5);
  EXPECT_EQ(definition.Element(3).GetLine(), 4);
}

// The directive may be the last thing in the outer text, or not; in a body, or not.
TEST(IncludeLiterals, End_of_a_file_is_not_the_end_of_the_complete_text) {
  TestHost host;
  host.files["b"] = "B 50%";
  EXPECT_EQ(ShapeOf("@INCLUDE \"b\" "), "error 30");
  EXPECT_EQ(ShapeOf("@INCLUDE \"b\""), "B=0.5");
  host.files["b"] = "B 12";
  EXPECT_EQ(ShapeOf("@INCLUDE \"b\"\n\nC 34"), "B=12; C=34");
}

// The directive is the current element while its file is read, and goes with it.
TEST(IncludeCurrent, Attributes_at_the_front_of_a_file_belong_to_the_directive) {
  TestHost host;
  host.files["b"] = "x: 1 { Y } B z";
  EXPECT_EQ(ShapeOf("A @INCLUDE \"b\""), "A; B z");
}

TEST(IncludeCurrent, Behind_an_include_the_first_element_is_current) {
  TestHost host;
  host.files["b"] = "B";
  EXPECT_EQ(ShapeOf("A C @INCLUDE \"b\" x: 1"), "A x=1; C; B");
  host.files["b"] = "";
  EXPECT_EQ(ShapeOf("@INCLUDE \"b\" x: 1"), "error 8");
}

TEST(IncludeLimits, File_that_is_being_read_cannot_be_included) {
  TestHost host;
  host.files["d\\a"] = "A @INCLUDE \"b\"";
  host.files["d\\b"] = "B @INCLUDE \"a\"";
  const Definition definition("@INCLUDE \"d\\\\a\"");
  EXPECT_EQ(definition.code, IMEPERR_INCLUDE_FAILED);
  EXPECT_EQ(definition.parser.GetErrorText(),
            ErrorTextOf(IMEPERR_INCLUDE_FAILED, {{"%filename", Quoted("d\\a")}}, 0, "d\\b"));
  EXPECT_EQ(Shape(definition.parser), "A; B");
}

TEST(IncludeLimits, Cycle_through_bodies_is_found_too) {
  TestHost host;
  host.files["a"] = "A { @INCLUDE \"b\" }";
  host.files["b"] = "B c: { @INCLUDE \"a\" }";
  EXPECT_EQ(Definition("@INCLUDE \"a\"").code, IMEPERR_INCLUDE_FAILED);
}

TEST(IncludeLimits, File_may_be_included_again_when_it_has_been_read) {
  TestHost host;
  host.files["a"] = "A";
  EXPECT_EQ(ShapeOf("@INCLUDE \"a\" @INCLUDE \"a\" B { @INCLUDE \"a\" }"), "A; A; B {A}");
}

void AddChain(TestHost& host, int depth) {
  for (int i = 1; i < depth; ++i) {
    host.files["f" + std::to_string(i)] = "@INCLUDE \"f" + std::to_string(i + 1) + "\"";
  }
  host.files["f" + std::to_string(depth)] = "A";
}

TEST(IncludeLimits, Sixty_four_files_may_nest_and_no_more) {
  TestHost host;
  AddChain(host, 64);
  EXPECT_EQ(ShapeOf("@INCLUDE \"f1\""), "A");
  AddChain(host, 65);
  const Definition definition("@INCLUDE \"f1\"");
  EXPECT_EQ(definition.code, IMEPERR_INCLUDE_FAILED);
  EXPECT_NE(definition.parser.GetErrorText().Search("\"f65\""), String::kNotFound);
}

// Only a host that reads files without a name.
TEST(IncludeLimits, File_without_a_name_is_being_read_like_any_other) {
  TestHost host;
  host.files[""] = "A @INCLUDE";
  const Definition definition("@INCLUDE");
  EXPECT_EQ(definition.code, IMEPERR_INCLUDE_FAILED);
  EXPECT_EQ(Shape(definition.parser), "A");
  host.files[""] = "A @INCLUDE \"f\"";
  host.files["f"] = "B";
  EXPECT_EQ(ShapeOf("@INCLUDE @INCLUDE"), "A; B; A; B");
}

// Each file includes the next one twice: never deep, never long, but 2 to the 40th in number.
TEST(IncludeLimits, Doubling_files_end_with_43) {
  TestHost host;
  for (int i = 1; i < 40; ++i) {
    const std::string next = "@INCLUDE \"f" + std::to_string(i + 1) + "\"\n";
    host.files["f" + std::to_string(i)] = next + next;
  }
  host.files["f40"] = "";
  const Definition definition("@INCLUDE \"f1\"");
  EXPECT_EQ(definition.code, IMEPERR_INCLUDE_FAILED);
}

// The cache shares one text among all its uses, so this needs no memory to speak of.
TEST(IncludeLimits, Text_beyond_the_maximum_length_ends_with_43) {
  TestHost host;
  host.files["db:\\big"] = "#" + Repeated("x", 49999999);
  std::string text;
  for (int i = 0; i < 50; ++i) text += "@INCLUDE \"db:\\\\big\"\n";
  IxoMepParser parser(String(text), "test");
  parser.SetUseIncludeCache(true);
  EXPECT_EQ(parser.Parse(), IMEPERR_INCLUDE_FAILED);
  EXPECT_EQ(parser.GetErrorLine(), 43);
  EXPECT_EQ(host.ReadsOf("db:\\big"), 1);
}

TEST(IncludeAgain, Parse_reads_the_spliced_text) {
  TestHost host;
  host.files["b"] = "B\n c: { D }\nE";
  IxoMepParser parser("A\n@INCLUDE \"b\"\nF", "test");
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(parser), "A; B c{D}; E; F; A; B c{D}; E; F");
  EXPECT_EQ(host.read_names.size(), 1u);
}

TEST(IncludeAgain, Parse_goes_on_when_a_file_has_come) {
  TestHost host;
  host.files["b"] = "B\nX ";
  IxoMepParser parser("A\n@INCLUDE \"b\"\n@INCLUDE \"c\"\nD", "test");
  EXPECT_EQ(parser.Parse(), IMEPERR_INCLUDE_FAILED);
  host.files["c"] = "C\n?";
  EXPECT_EQ(parser.Parse(), IMEPERR_UNEXPECTED_CHARACTER);
  EXPECT_EQ(parser.GetErrorText(),
            ErrorTextOf(IMEPERR_UNEXPECTED_CHARACTER, {{"%c", "?"}}, 2, "c"));
  EXPECT_EQ(Complete(parser), "A\nB\nX \nC\n?\nD");
}

TEST(IncludeAgain, SetText_forgets_the_includes) {
  TestHost host;
  host.files["b"] = "B\n\n\n";
  IxoMepParser parser("A\n@INCLUDE \"b\"\nF", "test");
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  parser.SetText("X\n?");
  EXPECT_EQ(parser.Parse(), IMEPERR_UNEXPECTED_CHARACTER);
  EXPECT_EQ(Complete(parser), "X\n?");
  EXPECT_EQ(parser.GetErrorLine(), 2);
}

TEST(IncludeNames, Line_feed_in_a_name_does_no_harm) {
  TestHost host;
  host.files["d\\a\nb"] = "A @INCLUDE \"c\"";
  host.files["d\\c"] = "C";
  EXPECT_EQ(ShapeOf("@INCLUDE \"d\\\\a\\nb\" D"), "A; C; D");
}

}  // namespace
}  // namespace ixomep::test
