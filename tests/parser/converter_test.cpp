// Definition texts as XML: the format, duplicates, escaping, and that other readers accept it.
#include <gtest/gtest.h>

#include <pugixml.hpp>
#include <string>

#include "ixomep/host/encodings.h"
#include "ixomep/parser/converter.h"
#include "tests/parser/queries.h"
#include "tests/support/definitions.h"

namespace ixomep::test {
namespace {

constexpr const char* kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

struct Conversion {
  explicit Conversion(const String& text) : converter(text) {
    EXPECT_EQ(converter.Parse(), IMEPERR_NONE) << converter.GetErrorText().c_str();
  }
  IxoMepConverter converter;
};

String XmlOf(const String& text, bool with_declaration = false, const String& root = "") {
  return Conversion(text).converter.ToXML(with_declaration, root);
}

TEST(Converter, Has_its_own_context) {
  IxoMepConverter converter("!");
  EXPECT_EQ(converter.GetContext(), "IxoMepConverter");
  EXPECT_NE(converter.Parse(), IMEPERR_NONE);
  EXPECT_TRUE(converter.GetErrorText().view().ends_with("\n\nin IxoMepConverter"));
}

TEST(Converter, An_element_with_value_attribute_and_flag) {
  EXPECT_EQ(XmlOf("NODE_TYPE \"a<b\" size: 5 bold"),
            "<node-type val=\"a&lt;b\" val-size=\"5\" opt-bold=\"true\" />\n");
}

TEST(Converter, A_keyword_becomes_lower_case_with_hyphens) {
  EXPECT_EQ(XmlOf("NODE_CLASS"), "<node-class />\n");
  EXPECT_EQ(XmlOf("A_B__C"), "<a-b--c />\n");
}

TEST(Converter, A_modifier_with_and_without_a_value) {
  EXPECT_EQ(XmlOf("A x: mod: 1"), "<a modifier-x=\"mod\" val-x=\"1\" />\n");
  EXPECT_EQ(XmlOf("A x: mod"), "<a modifier-x=\"mod\" opt-x=\"true\" />\n");
}

TEST(Converter, Of_attributes_with_one_name_only_the_first_is_written) {
  EXPECT_EQ(XmlOf("A x: 1 x: mod: 2 y: 3 x"), "<a val-x=\"1\" val-y=\"3\" />\n");
  EXPECT_EQ(XmlOf("A xy: 1 x: 2 y: 3"), "<a val-xy=\"1\" val-x=\"2\" val-y=\"3\" />\n");
}

TEST(Converter, Duplicates_are_found_among_many_names) {
  String text = "A";
  std::string expected = "<a";
  for (int i = 0; i < 100; ++i) {
    const std::string name = "n" + std::to_string(i);
    text += " " + name + ": " + std::to_string(i);
    expected += " val-" + name + "=\"" + std::to_string(i) + "\"";
  }
  for (int i = 0; i < 100; ++i) text += " n" + std::to_string(i) + ": 0";
  EXPECT_EQ(XmlOf(text + "\nB n0: 1"), expected + " />\n<b val-n0=\"1\" />\n");
}

TEST(Converter, Names_are_written_as_they_stand) {
  EXPECT_EQ(XmlOf("A nAme_B-c: 1"), "<a val-nAme_B-c=\"1\" />\n");
}

TEST(Converter, Elements_follow_each_other_line_by_line) {
  EXPECT_EQ(XmlOf("A 1\nB 2"), "<a val=\"1\" />\n<b val=\"2\" />\n");
}

TEST(Converter, A_body_is_indented_by_four_blanks_a_level) {
  EXPECT_EQ(XmlOf("A 1 { B x: 2 { C }\nD }\nE"),
            "<a val=\"1\">\n"
            "    <b val-x=\"2\">\n"
            "        <c />\n"
            "    </b>\n"
            "    <d />\n"
            "</a>\n"
            "<e />\n");
}

TEST(Converter, An_empty_body_has_an_opening_and_a_closing_tag) {
  EXPECT_EQ(XmlOf("A { }"), "<a>\n</a>\n");
}

TEST(Converter, The_body_of_an_attribute_is_written_unparsed) {
  EXPECT_EQ(XmlOf("A x: { B \"<\" y: 1 } z: mod: {C}"),
            "<a val-x=\" B &quot;&lt;&quot; y: 1 \" modifier-z=\"mod\" val-z=\"C\" />\n");
}

TEST(Converter, A_value_of_undefined_type_counts_as_none) {
  Conversion conversion("A 1 x: 2");
  *conversion.converter.GetValue("x") = IxoMepValue();
  *conversion.converter.GetValue() = IxoMepValue();
  EXPECT_EQ(conversion.converter.ToXML(false, ""), "<a val=\"(undefined)\" opt-x=\"true\" />\n");
}

TEST(Converter, Values_have_their_text_form_and_are_not_evaluated) {
  IxoMepValueSet scope;
  SetVariable(scope, "w", 5);
  Conversion conversion("A r: 2.0 m: 15mm t: 5s e: (w*2) l: {1, \"a\"} k: {\"k\": 1}");
  conversion.converter.SetVars(&scope);
  EXPECT_EQ(conversion.converter.ToXML(false, ""),
            "<a val-r=\"2\" val-m=\"1.5cm\" val-t=\"00:000:00:00:05\" val-e=\"((w)*(2))\" "
            "val-l=\"{1, &quot;a&quot;}\" val-k=\"{&quot;k&quot;: 1}\" />\n");
}

TEST(Converter, A_root_stands_around_the_elements_without_indenting_them) {
  EXPECT_EQ(XmlOf("A", false, "root"), "<root>\n<a />\n</root>\n");
}

TEST(Converter, Without_elements_there_is_only_the_root) {
  EXPECT_EQ(XmlOf("", false, "root"), "<root>\n</root>\n");
  EXPECT_EQ(XmlOf("", false, ""), "");
}

TEST(Converter, The_declaration_comes_first) {
  EXPECT_EQ(XmlOf("A", true, "root"), String(kDeclaration) + "<root>\n<a />\n</root>\n");
  EXPECT_EQ(XmlOf("", true, ""), kDeclaration);
}

TEST(Converter, A_declaration_switches_to_utf8_for_good) {
  Conversion conversion("A \"\xE4\"");
  EXPECT_EQ(conversion.converter.ToXML(false, ""), "<a val=\"&#228;\" />\n");
  EXPECT_EQ(conversion.converter.ToXML(true, ""),
            String(kDeclaration) + "<a val=\"\xC3\xA4\" />\n");
  EXPECT_EQ(conversion.converter.ToXML(false, ""), "<a val=\"\xC3\xA4\" />\n");
}

TEST(Converter, Characters_of_xml_are_escaped_and_control_characters_dropped) {
  EXPECT_EQ(XmlOf("A \"<>&\\\"'\\t\\n\\r\x01\x1F\""),
            "<a val=\"&lt;&gt;&amp;&quot;&apos;&#9;&#10;&#13;\" />\n");
}

TEST(Converter, Elements_become_current_as_they_are_converted) {
  Conversion conversion("A { B C }\nD");
  conversion.converter.ToXML(false, "");
  EXPECT_EQ(conversion.converter.GetCurElemIndex(), 1);
  EXPECT_EQ(conversion.converter.GetBodyParser(0)->GetCurElemIndex(), 1);
}

TEST(Converter, A_statement_has_its_keyword_as_tag) {
  EXPECT_EQ(XmlOf("x := 1;"), "<; val=\"((x):=(1))\" />\n");
}

TEST(Converter, Before_parsing_there_is_nothing_to_convert) {
  EXPECT_EQ(IxoMepConverter("A").ToXML(false, "root"), "<root>\n</root>\n");
}

TEST(ExportText, Of_a_string_is_the_string_of_others_their_text_form) {
  const IxoMepValue text("a\"b\\c\n");
  EXPECT_EQ(IxoMepConverter::ToExportStr(text), "a\"b\\c\n");
  EXPECT_EQ(IxoMepConverter::ToExportStr(&text), "a\"b\\c\n");
  EXPECT_EQ(IxoMepConverter::ToExportStr(IxoMepValue(2.0)), "2");
  EXPECT_EQ(IxoMepConverter::ToExportStr(IxoMepValue(IxoMepValueType::Measure, 125)), "1.25cm");
  EXPECT_EQ(IxoMepConverter::ToExportStr(IxoMepValue()), "(undefined)");
  EXPECT_EQ(IxoMepConverter::ToExportStr(static_cast<const IxoMepValue*>(nullptr)), "");
  IxoMepValue target("t");
  EXPECT_EQ(IxoMepConverter::ToExportStr(IxoMepValue(&target)), "(reference)");
}

// --- Other readers ------------------------------------------------------------------------------

constexpr unsigned kStrict = pugi::parse_default | pugi::parse_ws_pcdata;

TEST(WellFormed, A_document_reads_back_with_an_xml_reader) {
  const String xml = XmlOf(
      "CLASS \"A & B\" size: 5 { PART x: mod: \"\xE4<>\" y: { IN \"q\" } }\nEND", true, "lib");
  pugi::xml_document document;
  ASSERT_TRUE(document.load_buffer(xml.c_str(), static_cast<std::size_t>(xml.Len()), kStrict));
  const pugi::xml_node element = document.child("lib").child("class");
  EXPECT_STREQ(element.attribute("val").value(), "A & B");
  EXPECT_STREQ(element.attribute("val-size").value(), "5");
  const pugi::xml_node part = element.child("part");
  EXPECT_STREQ(part.attribute("modifier-x").value(), "mod");
  EXPECT_STREQ(part.attribute("val-x").value(), "\xC3\xA4<>");
  EXPECT_STREQ(part.attribute("val-y").value(), " IN \"q\" ");
  EXPECT_TRUE(document.child("lib").child("end"));
}

TEST(WellFormed, Every_byte_in_a_value_survives_or_is_dropped) {
  for (const bool with_declaration : {false, true}) {
    for (int byte = 0; byte < 256; ++byte) {
      const std::string bytes = std::string("[") + static_cast<char>(byte) + "]";
      const String xml = XmlOf("A " + IxoMepParser::GetMepTextOfStrValue(bytes) + " x: { B " +
                                   IxoMepParser::GetMepTextOfStrValue(bytes) + " }",
                               with_declaration, "root");
      pugi::xml_document document;
      ASSERT_TRUE(document.load_buffer(xml.c_str(), static_cast<std::size_t>(xml.Len()), kStrict))
          << byte;
      const bool is_kept = byte >= 32 || byte == 9 || byte == 10 || byte == 13;
      const String expected = is_kept ? ConvertStringToUTF8(bytes) : String("[]");
      EXPECT_EQ(expected, document.child("root").child("a").attribute("val").value()) << byte;
    }
  }
}

TEST(WellFormed, Hostile_values_stay_values) {
  const char* const attacks[] = {
      "\" /><evil x=\"", "]]>",    "<!--",     "<?xml ?>", "&#0;", "&amp;",
      "<![CDATA[",       "'\"<>&", "\xFF\xFE", "\xC3(",    "%s%n"};
  for (const char* attack : attacks) {
    const String xml =
        XmlOf("A x: " + IxoMepParser::GetMepTextOfStrValue(attack) + " y: 1", true, "root");
    pugi::xml_document document;
    ASSERT_TRUE(document.load_buffer(xml.c_str(), static_cast<std::size_t>(xml.Len()), kStrict));
    const pugi::xml_node root = document.child("root");
    EXPECT_EQ(std::distance(root.children().begin(), root.children().end()), 3) << attack;
    EXPECT_EQ(ConvertStringToUTF8(attack), root.child("a").attribute("val-x").value());
    EXPECT_STREQ(root.child("a").attribute("val-y").value(), "1");
  }
}

TEST(WellFormed, With_xml_names_statements_and_indices_are_renamed) {
  Conversion conversion("x := 1;\nA a[1]: 1 a[2]: 2 a_1_: 3 \xE4\xA9: 4");
  conversion.converter.SetXmlNames(true);
  const String xml = conversion.converter.ToXML(true, "root");
  EXPECT_EQ(xml, String(kDeclaration) +
                     "<root>\n<statement val=\"((x):=(1))\" />\n"
                     "<a val-a_1_=\"1\" val-a_2_=\"2\" val-\xC3\xA4_=\"4\" />\n</root>\n");
  pugi::xml_document document;
  EXPECT_TRUE(document.load_buffer(xml.c_str(), static_cast<std::size_t>(xml.Len()), kStrict));
}

TEST(WellFormed, With_xml_names_every_byte_of_a_name_is_replaced_or_utf8) {
  std::string names;
  for (int byte = 128; byte < 256; ++byte) {
    if (byte != 160) names += std::string(" n") + static_cast<char>(byte) + ": 1";
  }
  Conversion conversion(String("A") + names);
  conversion.converter.SetXmlNames(true);
  const std::string xml(conversion.converter.ToXML(false, "").view());
  EXPECT_NE(xml.find("val-n\xC3\xBF="), std::string::npos);
  EXPECT_EQ(xml.find("val-n\xC3\x97="), std::string::npos) << "a multiplication sign in a name";
  EXPECT_EQ(xml.find("val-n\xC2\xA9="), std::string::npos) << "a copyright sign in a name";
  EXPECT_NE(xml.find("val-n_="), std::string::npos);
  EXPECT_EQ(xml.find("val-n_=", xml.find("val-n_=") + 1), std::string::npos);
}

// --- Size ---------------------------------------------------------------------------------------

TEST(Converter, A_deeply_nested_text_is_converted_to_its_end) {
  constexpr std::size_t kDepth = 2000;
  const String xml = XmlOf(Repeated("A { ", kDepth) + Repeated("}", kDepth));
  EXPECT_EQ(xml.view().substr(0, 13), "<a>\n    <a>\n ");
  EXPECT_TRUE(xml.view().ends_with("\n    </a>\n</a>\n"));
  pugi::xml_document document;
  ASSERT_TRUE(document.load_buffer(xml.c_str(), static_cast<std::size_t>(xml.Len()), kStrict));
  std::size_t depth = 0;
  for (pugi::xml_node node = document.child("a"); node; node = node.child("a")) ++depth;
  EXPECT_EQ(depth, kDepth);
}

// Indented as it has to be, this document would have 80 gigabytes.
TEST(Converter, What_passes_the_memory_is_empty) {
  constexpr std::size_t kDepth = 100000;
  Conversion conversion(String(Repeated("A { ", kDepth) + Repeated("}", kDepth)));
  const ScopedMemoryLimit limit(10000000);
  EXPECT_EQ(conversion.converter.ToXML(false, ""), "");
}

TEST(Converter, With_any_memory_the_document_is_complete_or_empty) {
  Conversion conversion(String("A x: { B y: \"") + std::string(3000, '<') + "\" } z: 1 " +
                        std::string(100, 'n') + " { C \"\xE4\" }\nD v: {1, 2}");
  const String root = "root";
  const String complete = conversion.converter.ToXML(false, root);
  ASSERT_FALSE(complete.IsEmpty());
  bool was_complete = false;
  for (std::size_t bytes = 0; bytes < 200000; bytes += 500) {
    const ScopedMemoryLimit limit(bytes);
    const String xml = conversion.converter.ToXML(false, root);
    was_complete = xml == complete;
    EXPECT_TRUE(was_complete || xml.IsEmpty()) << bytes;
  }
  EXPECT_TRUE(was_complete);
}

TEST(Converter, Without_memory_for_one_value_all_is_empty) {
  Conversion conversion(String("A \"") + std::string(100000, 'x') + "\"");
  const String root = "root";
  const ScopedMemoryLimit limit(1000);
  EXPECT_EQ(conversion.converter.ToXML(true, root), "");
  EXPECT_EQ(IxoMepConverter::ToExportStr(IxoMepValue(IxoMepValueType::Array)), "{}");
}

}  // namespace
}  // namespace ixomep::test
