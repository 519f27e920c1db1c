// Functions that look for a text in a text: search, bsearch, replace, replall.
#include <algorithm>
#include <cstring>

#include "ixomep/builtins/handlers.h"
#include "ixomep/host/text_search.h"

namespace ixomep::builtins {

namespace {

IxoMepErrorEnum ReturnPosition(Call& call, std::size_t at) {
  return call.Return(at == TextSearch::kNone ? -1 : static_cast<std::int32_t>(at));
}

// One byte for one byte: no length changes.
String ReplaceBytes(String text, char from, char to) {
  char* const bytes = text.MutableText();
  std::replace(bytes, bytes + text.Len(), from, to);
  return text;
}

}  // namespace

IxoMepErrorEnum Search(Call& call) {
  const String& text = call.Text(0);
  const String& pattern = call.Text(1);
  const std::int32_t from = call.Int(2);
  if (pattern.IsEmpty() || from < 0 || from >= text.Len()) return call.Return(-1);
  return ReturnPosition(call, TextSearch(pattern).Find(text, static_cast<std::size_t>(from)));
}

IxoMepErrorEnum BSearch(Call& call) {
  const String& text = call.Text(0);
  const String& pattern = call.Text(1);
  const std::int32_t from = call.Int(2);
  if (text.IsEmpty() || pattern.IsEmpty()) return call.Return(-1);
  const std::size_t highest = from < 0 ? TextSearch::kNone : static_cast<std::size_t>(from);
  return ReturnPosition(call, TextSearch(pattern).FindBackward(text, highest));
}

IxoMepErrorEnum Replace(Call& call) {
  const String& text = call.Text(0);
  const String& old_text = call.Text(1);
  if (old_text.IsEmpty()) return call.Return(text);
  const std::size_t at = TextSearch(old_text).Find(text, 0);
  if (at == TextSearch::kNone) return call.Return(text);
  String result = text;
  result.Replace(static_cast<std::int32_t>(at), old_text.Len(), call.Text(2));
  return call.Return(std::move(result));
}

IxoMepErrorEnum ReplAll(Call& call) {
  const String& text = call.Text(0);
  const String& old_text = call.Text(1);
  const String& new_text = call.Text(2);
  if (old_text.IsEmpty()) return call.Return(text);
  const TextSearch search(old_text);
  std::size_t at = search.Find(text, 0);
  if (at == TextSearch::kNone) return call.Return(text);
  if (old_text.Len() == 1 && new_text.Len() == 1) {
    return call.Return(ReplaceBytes(text, old_text[0], new_text[0]));
  }
  const std::string_view source = text;
  String result;
  std::size_t done = 0;
  for (; at != TextSearch::kNone; at = search.Find(source, done)) {
    LimitWatch::Work();
    result += source.substr(done, at - done);
    result += new_text;
    done = at + old_text.view().size();
  }
  result += source.substr(done);
  return call.Return(std::move(result));
}

}  // namespace ixomep::builtins
