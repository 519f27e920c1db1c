// The segments of a spliced text and the record of its splices. See spliced_text.h.
#include "ixomep/parser/spliced_text.h"

#include <algorithm>

#include "ixomep/parser/bytes.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/parser_state.h"

namespace ixomep {

SegmentList::SegmentList(const String& text, const String& context) {
  segments_.push_back({0, 0, text.Len(), text, context});
}

// Splices come in the order of the text, so the segment is near the end of the list: behind it
// stand only the rests of the files around it.
void SegmentList::Splice(std::int32_t at, std::int32_t removed, const String& text,
                         const String& context) {
  std::size_t index = segments_.size() - 1;
  while (segments_[index].at > at) --index;
  const Segment whole = segments_[index];
  const std::int32_t before = at - whole.at;
  const std::int32_t behind = before + removed;

  segments_[index].length = before;
  const Segment inserted = {at, 0, text.Len(), text, context};
  const Segment rest = {at + text.Len(), whole.begin + behind, whole.length - behind, whole.source,
                        whole.context};
  segments_.insert(segments_.begin() + static_cast<std::ptrdiff_t>(index) + 1, {inserted, rest});
  for (std::size_t i = index + 3; i < segments_.size(); ++i) {
    segments_[i].at += text.Len() - removed;
  }
}

std::int32_t SegmentList::Length() const noexcept {
  return segments_.back().at + segments_.back().length;
}

String SegmentList::Copy(std::int32_t start, std::int32_t count) const {
  String result;
  result.Reserve(count);
  for (const Segment& segment : segments_) {
    const std::int32_t from = std::max(start - segment.at, 0);
    const std::int32_t to = std::min(start - segment.at + count, segment.length);
    if (from >= to) continue;
    result.Append(
        segment.View().substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from)));
  }
  return result;
}

bool SegmentList::HasSeveralLines() const noexcept {
  const std::int32_t last = Length() - 1;
  return std::any_of(segments_.begin(), segments_.end(), [last](const Segment& segment) {
    const std::size_t feed = segment.View().find('\n');
    return feed != std::string_view::npos && segment.at + static_cast<std::int32_t>(feed) < last;
  });
}

TextPlace SegmentList::Find(SoughtPlace sought) const {
  TextPlace place;
  place.context = segments_.front().context;
  place.several_lines = HasSeveralLines();
  const std::int32_t offset = sought.offset;
  if (offset < 0 || offset > Length()) return place;
  // The end of a file stands behind its last byte.
  const std::int32_t inside = sought.is_file_end ? offset - 1 : offset;
  std::size_t index = segments_.size() - 1;
  while (index > 0 && segments_[index].at > inside) --index;
  const Segment& segment = segments_[index];
  const std::string_view source = segment.source.view();
  const auto position = static_cast<std::size_t>(segment.begin + (offset - segment.at));
  const std::size_t feed = source.substr(0, position).rfind('\n');
  place.context = segment.context;
  place.line = 1 + CountLineFeeds(source, 0, position);
  place.column =
      static_cast<std::int32_t>(position - (feed == std::string_view::npos ? 0 : feed + 1)) + 1;
  return place;
}

Splices::Splices(const String& original) : original_(original), length_(original.Len()) {}

Splices::Splices(const IxoMepParser& outer)
    : outer_(outer.State().splices.get()), length_(outer.State().splices->length_) {
  outer_count_ = outer_->log_.size();
  // A text without splices of its own is that of the parser around it.
  while (outer_count_ == 0 && outer_->outer_ != nullptr) {
    outer_count_ = outer_->outer_count_;
    outer_ = outer_->outer_;
  }
}

void Splices::Add(std::int32_t at, std::int32_t removed, const String& text,
                  const String& context) {
  log_.push_back({at, removed, text, context});
  length_ += text.Len() - removed;
  composed_ = false;
}

SegmentList Splices::Segments(const String& context) const {
  struct Stage {
    const Splices* splices;
    std::size_t count;
  };
  std::vector<Stage> stages;
  Stage stage = {this, log_.size()};
  for (; stage.splices->outer_ != nullptr;
       stage = {stage.splices->outer_, stage.splices->outer_count_}) {
    stages.push_back(stage);
  }
  stages.push_back(stage);

  SegmentList segments(stage.splices->original_, context);
  for (auto next = stages.rbegin(); next != stages.rend(); ++next) {
    for (std::size_t i = 0; i < next->count; ++i) {
      const Record& record = next->splices->log_[i];
      segments.Splice(record.at, record.removed, record.text, record.context);
    }
  }
  return segments;
}

}  // namespace ixomep
